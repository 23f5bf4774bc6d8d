// Reminders that were put off, in the whole application with its true handlers.
#include "HandlerTestBase.h"
#include "core/delivery/EventDelivery.h"
#include "core/editing/EditHistory.h"
#include "core/events/EventIdentity.h"
#include "core/journal/RecordWords.h"
#include "core/timing/LaterMoments.h"

namespace kestrin {
namespace {

class PutOffTest : public TrueHandlersTest {
 protected:
  /// Starts an hour before 9:00 and delivers what is due then.
  void Deliver(const EventRecord& record) {
    Now = Sunday + 8 * Hour;
    StartWith({record});
    DeliverAt(Sunday + 9 * Hour);
    ASSERT_EQ(Alerts().size(), 1u);
  }
  void PutOff(int32 until) { PutOff({until, false, {}}); }
  void PutOff(const PutOffMoment& when) {
    const AlertId id = Ui().Alerts.at(0).Id;
    ASSERT_EQ(It->World.Alerts.PutOff(id, when), "");
    Ui().CloseAlert(id);
    Run();
  }
  /// Everything but the deliverer is killed, which wakes a new process at its time.
  void KillAndWake() {
    Now = It->Background.Times.back();
    Wake();
  }

  std::vector<std::string> Outcomes() {
    status_t status = StatusOk;
    std::vector<std::string> outcomes;
    for (const PastDelivery& past : LookBack(Disk, "/state", status))
      outcomes.push_back(WordsOf(past, Zone(), true).Outcome);
    return outcomes;
  }
};

TEST_F(PutOffTest, AMessageComesBackByItselfOnceAfterAKillToo) {
  EventRecord once = DailyAt(Sunday + 9 * Hour);
  once.PeriodType = Once;
  for (const bool isDeleted : {false, true}) {
    once.DeleteOnceDelivered = isDeleted;
    Deliver(once);
    PutOff(Sunday + 11 * Hour);
    EXPECT_EQ(It->Background.Times.back(), Sunday + 11 * Hour);
    KillAndWake();
    EXPECT_THAT(Alerts(), ElementsAre("Kestrin event:  Tea\n\n"));
    EXPECT_EQ(Ui().Alerts[0].Request.Face.EventName, "Tea");
    Wake();
    EXPECT_EQ(Alerts().size(), 1u) << "killed while it stood open";
    Answer(0);
    Wake();
    EXPECT_THAT(Alerts(), IsEmpty());
  }
}

TEST_F(PutOffTest, WhatAPersonChangesEndsIt) {
  const std::vector<std::function<void(Event&)>> changes = {
      [](Event& event) {
        EditHistory history(*event.GetOwner());
        history.Remove({&event}, EditKind::Delete);
        EXPECT_TRUE(history.Undo());
      },
      [](Event& event) { event.SetActive(false); },
      [](Event& event) { event.SetTimeToApply(7 * Hour); },
      [](Event& event) { EditHistory(*event.GetOwner()).Remove({&event}, EditKind::Delete); },
  };
  for (const auto& change : changes) {
    SCOPED_TRACE(&change - changes.data());
    Deliver(DailyAt(Sunday + 9 * Hour));
    PutOff(Sunday + 10 * Hour);
    change(FirstEvent(Work));
    Run();
    DeliverAt(Sunday + 10 * Hour);
    EXPECT_THAT(Alerts(), testing::SizeIs(&change == &changes.front() ? 1 : 0)) << "undone";
    Answer(0);
  }
}

TEST_F(PutOffTest, PutOffToNextWeekTheNextDayRingsWhateverHappensMeanwhile) {
  constexpr int64 Tuesday = Sunday + 2 * Day, Monday = Sunday + 8 * Day;
  for (const std::string meanwhile : {"nothing", "deleted", "rename", "save as", "same name"})
    for (const bool killed : {false, true}) {
      SCOPED_TRACE(meanwhile + (killed ? ", killed" : ""));
      Crash();
      for (const char* file : {"/state/later", "/state/history"}) Disk.Remove(file);
      EventRecord daily = DailyAt(Tuesday + 9 * Hour);
      daily.Name = "Untitled";
      daily.DeleteOnceDelivered = meanwhile == "deleted";
      const size_t count = meanwhile == "same name" ? 2 : 1;
      Now = Tuesday + 8 * Hour;
      StartWith(std::vector<EventRecord>(count, daily));
      DeliverAt(Tuesday + 9 * Hour);
      ASSERT_EQ(Alerts().size(), count);
      for (const LaterOffer& offer : LaterOffers(Tuesday + 9 * Hour, SystemZone, {}, NextWeek))
        if (offer.choice == NextWeek) PutOff(offer.when);
      while (Answer(0)) continue;
      if (meanwhile == "rename") FirstEvent(Work).SetName("Coffee"), Set(Work)->SaveData();
      if (meanwhile == "save as") Set(Work)->SaveAs(Home, true);
      Run();
      const int64 next = daily.DeleteOnceDelivered ? Monday + 8 * Hour : Tuesday + Day + 9 * Hour;
      EXPECT_EQ(It->Background.Times.back(), next);
      if (killed)
        KillAndWake();
      else
        DeliverAt(next);
      EXPECT_THAT(Alerts(), testing::SizeIs(count));
      const size_t both = std::ranges::count_if(Alerts(), [](const std::string& text) {
        return text.ends_with("Also unanswered: Tue 09:00 AM");
      });
      EXPECT_EQ(both, daily.DeleteOnceDelivered ? 0u : 1u) << "one of them, and no other says so";
      while (Answer(0)) continue;
      if (daily.DeleteOnceDelivered) {
        EXPECT_THAT(Outcomes(), ElementsAre(testing::HasSubstr("then answered")));
      } else {
        EXPECT_THAT(Outcomes(), testing::SizeIs(2 * count));
        EXPECT_THAT(Outcomes(), testing::Contains("Put off")) << "and is told of both";
      }
      status_t status = StatusOk;
      EXPECT_THAT(ReadPutOff(Disk, "/state", status), IsEmpty()) << "it has ended";
    }
}

TEST_F(PutOffTest, AQuestionThatANagJoinsForAnHourIsStillAskedAndRunsOnce) {
  EventRecord nagging = DailyAt(Sunday + 9 * Hour);
  nagging.ApplyNag = true;
  nagging.NagRepeatTime = 5;
  nagging.NagRepeatType = Minutes;
  Now = Sunday + 8 * Hour;
  StartWith({nagging});
  MakeQuestion(FirstEvent(Work), "brew");
  Run();
  for (int minutes = 0; minutes <= 60; minutes += 5) {
    DeliverAt(Sunday + 9 * Hour + minutes * Minute);
    ASSERT_EQ(Alerts().size(), 1u);
    EXPECT_THAT(Ui().Alerts[0].Request.Buttons, ElementsAre("Cancel", "Ok"));
  }
  EXPECT_THAT(It->World.Machine.Commands, IsEmpty());
  PutOff(Sunday + 11 * Hour);
  MakeQuestion(FirstEvent(Work), "pour");
  DeliverAt(Sunday + 11 * Hour);
  Answer(1);
  EXPECT_THAT(It->World.Machine.Commands, ElementsAre("pour")) << "as it is then";
}

TEST_F(PutOffTest, ATrialActsAsADeliveryWouldAndChangesNothingElse) {
  EventRecord once = DailyAt(Sunday + 9 * Hour);
  once.DeleteOnceDelivered = true;
  Now = Sunday + 8 * Hour;
  StartWith({once});
  const EventState before = StateOf(FirstEvent(Work).Record());
  ActAgain(FirstEvent(Work), RecordKind::Event);
  Run();
  EXPECT_THAT(Alerts(), ElementsAre("Kestrin event:  Tea\n\n"));
  Answer(0);
  EXPECT_FALSE(Set(Work)->HasBeenModified());
  MakeQuestion(FirstEvent(Work), "brew").SetVerify(false);
  Set(Work)->SaveData();
  Crash();
  Disk.SetAttribute(Work, "user.xdg.origin.url", "https://example.org");
  Start();
  for (const int answer : {0, 1}) {
    ActAgain(FirstEvent(Work), RecordKind::Event);
    Run();
    ASSERT_EQ(Alerts().size(), 1u) << "it comes from elsewhere";
    Answer(answer);
  }
  EXPECT_THAT(It->World.Machine.Commands, ElementsAre("brew"));
  EXPECT_EQ(StateOf(FirstEvent(Work).Record()), before);
  EXPECT_THAT(Outcomes(), testing::Each(testing::StartsWith("Trial. Answered")));
  EXPECT_THAT(Outcomes(), testing::SizeIs(3));
  DeliverAt(Sunday + 9 * Hour);
  EXPECT_EQ(Alerts().size(), 1u) << "it is due all the same";
}

}  // namespace
}  // namespace kestrin
