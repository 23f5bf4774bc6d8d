// Reminders that were put off, in the whole application with its true handlers.
#include "handlers/CommandDataHandler.h"
#include "handlers/HandlerActions.h"
#include "handlers/LoadEventHandlers.h"
#include "harness/AppTestBase.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PutOffTest : public AppTestBase {
 protected:
  PutOffTest() { OwnActions = &Real; }
  void LoadHandlers(Context& context) override { LoadBuiltInHandlers(context); }

  /// Starts an hour before 9:00 and delivers what is due then.
  void Deliver(const EventRecord& record) {
    Now = Sunday + 8 * Hour;
    StartWith({record});
    DeliverAt(Sunday + 9 * Hour);
    ASSERT_EQ(Alerts().size(), 1u);
  }
  void PutOff(int32 until) {
    const AlertId id = Ui().Alerts.at(0).Id;
    ASSERT_EQ(It->World.Alerts.PutOff(id, {until, false, {}}), "");
    Ui().CloseAlert(id);
    Run();
  }
  /// Everything but the deliverer is killed, which wakes a new process at its time.
  void KillAndWake() {
    Now = It->Background.Times.back();
    Wake();
  }

  HandlerActions Real;
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

TEST_F(PutOffTest, TheNextOccurrenceEndsItAndSaysSo) {
  Deliver(DailyAt(Sunday + 9 * Hour));
  PutOff(Sunday + 7 * Day);
  DeliverAt(Sunday + Day + 9 * Hour);
  EXPECT_THAT(Alerts(), ElementsAre("Kestrin event:  Tea\n\n\n\nAlso unanswered: Sun 09:00 AM"));
  Answer(0);
  EXPECT_EQ(It->Background.Times.back(), Sunday + 2 * Day + 9 * Hour);
}

TEST_F(PutOffTest, ANagIsSilentUntilThenAndStandsWithBothButtons) {
  EventRecord nagging = DailyAt(Sunday + 8 * Hour);
  nagging.ApplyNag = true;
  nagging.NagRepeatTime = 1;
  nagging.NagRepeatType = Hours;
  nagging.Status = WaitingToNag;
  nagging.NextEventTime = Sunday + 9 * Hour;
  Deliver(nagging);
  PutOff(Sunday + 12 * Hour + Minute);
  EXPECT_EQ(It->Background.Times.back(), Sunday + 12 * Hour + Minute) << "nobody is woken between";
  KillAndWake();
  ASSERT_EQ(Alerts().size(), 1u);
  EXPECT_THAT(Ui().Alerts[0].Request.Buttons, ElementsAre("No more nagging", "OK"));
  EXPECT_EQ(Ui().Alerts[0].Request.ComesAgain, Sunday + 13 * Hour);
  Answer(0);
  Start();
  EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + Day + 8 * Hour);
}

TEST_F(PutOffTest, AQuestionIsAskedAnewWithTheCommandAsItIsThenAndRunsOnce) {
  WriteSet(Work, {DailyAt(Sunday + 9 * Hour)});
  Remember({Work});
  Now = Sunday + 8 * Hour;
  Start();
  FirstEvent(Work).SetSelectedHandler(It->World.Handlers.Find("Command"));
  auto& command = dynamic_cast<CommandDataHandler&>(*FirstEvent(Work).GetAddOnData());
  command.SetCommand("brew");
  command.SetVerify(true);
  Set(Work)->SaveData();
  DeliverAt(Sunday + 9 * Hour);
  PutOff(Sunday + 10 * Hour);
  command.SetCommand("pour");
  DeliverAt(Sunday + 10 * Hour);
  EXPECT_THAT(Alerts(),
              ElementsAre("Kestrin event:  Tea\n\nKestrin is about to execute a shell command: "
                          "\"pour\".  Should the command be executed?"));
  EXPECT_THAT(It->World.Machine.Commands, IsEmpty());
  Answer(1);
  DeliverAt(Sunday + 11 * Hour);
  EXPECT_THAT(It->World.Machine.Commands, ElementsAre("pour"));
}

TEST_F(PutOffTest, WhatAPersonChangesEndsIt) {
  const std::vector<std::function<void(Event&)>> changes = {
      [](Event& event) { event.SetActive(false); },
      [](Event& event) { event.SetTimeToApply(7 * Hour); },
      [](Event& event) { event.GetOwner()->RemoveEvent(&event); },
  };
  for (const auto& change : changes) {
    SCOPED_TRACE(&change - changes.data());
    Deliver(DailyAt(Sunday + 9 * Hour));
    PutOff(Sunday + 10 * Hour);
    change(FirstEvent(Work));
    Run();
    DeliverAt(Sunday + 10 * Hour);
    EXPECT_THAT(Alerts(), IsEmpty());
  }
}

}  // namespace
}  // namespace kestrin
