// Alerts that stood open when their process ended, by force or killed, in the whole application
// with its true handlers.
#include "HandlerTestBase.h"
#include "core/delivery/EventDelivery.h"

namespace kestrin {
namespace {

class AppAlertsTest : public TrueHandlersTest {
 protected:
  /// Every day at 9:00; it nags since 10:00.
  static EventRecord Nagging() {
    EventRecord record = DailyAt(Sunday + 9 * Hour);
    record.NagMessage = "Pour it.";
    record.ApplyNag = true;
    record.NagRepeatTime = 1;
    record.NagRepeatType = Hours;
    record.Status = WaitingToNag;
    record.NextEventTime = Sunday + 10 * Hour;
    return record;
  }
};

TEST_F(AppAlertsTest, AfterItsProcessHasEndedItsButtonActsUnlessItsOccurrenceIsOver) {
  for (const bool isOver : {false, true})
    for (const bool killed : {false, true}) {
      Now = Sunday + 10 * Hour;
      StartWith({Nagging()});
      if (!killed) Post(Message(FORCED_QUIT));
      EventRecord next = Nagging();
      for (int32* time : {&next.NextEventTime, &next.ActualEventTime, &next.EventTime})
        *time += Day;
      if (isOver) WriteSet(Work, {next});
      Now += 10 * Minute;
      Wake(false);
      Start();
      EXPECT_THAT(Alerts(),
                  ElementsAre("The event \"Tea\" occurred at 9:00 AM today.\n\nPour it."));
      ASSERT_EQ(Ui().Alerts[0].Request.Title, "Kestrin nag");
      EXPECT_EQ(Ui().Alerts[0].Request.ComesAgain, isOver ? 0 : Sunday + 11 * Hour);
      Answer(0);
      EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + Day + (isOver ? 10 : 9) * Hour);
      EXPECT_EQ(It->World.Holding.Count(), 1) << "the window";
      Start();
      EXPECT_THAT(Alerts(), IsEmpty()) << "it was answered";
    }
}

TEST_F(AppAlertsTest, APrewarningStandsAgainWithItsButtonAndItsBound) {
  EventRecord warned = DailyAt(Sunday + 12 * Hour);
  warned.ApplyPrewarn = warned.ApplyPrewarnRepeat = true;
  warned.Status = WaitingForPrewarning;
  warned.NextEventTime = Sunday + 9 * Hour;
  Now = Sunday + 9 * Hour;
  StartWith({warned});
  Post(Message(FORCED_QUIT));
  Start();
  ASSERT_EQ(Alerts().size(), 1u);
  const AlertRequest request = Ui().Alerts[0].Request;
  EXPECT_THAT(request.Buttons, ElementsAre("No more prewarnings", "OK"));
  EXPECT_EQ(request.Begins, Sunday + 12 * Hour);
  Answer(0);
  EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + 12 * Hour);
  EXPECT_EQ(It->World.Holding.Count(), 1) << "the window";
}

TEST_F(AppAlertsTest, WhatWasRecordedBeforeThereWasAJournalIsTakenOver) {
  Now = Sunday + 9 * Hour + Minute;
  StartWith({Nagging()});
  Crash();
  Message old;
  old.Set("Text", std::string("Pour it."));
  old.Set("Role", static_cast<int32>(AlertRole::Nag));
  old.Set("Button0", std::string("No more nagging"));
  old.Set("Button1", std::string("OK"));
  old.Set("EventSet", std::string(Work));
  old.Set("Event", std::string("Tea"));
  old.Set("Occurrence", Sunday + 9 * Hour);
  Disk.Put("/state/open-alerts.json", "damage\n" + old.Flatten() + "\n");
  Start();
  for (int start = 0; start < 2; ++start) {
    EXPECT_THAT(Alerts(), ElementsAre("Pour it."));
    EXPECT_FALSE(Disk.Bytes("/state/open-alerts.json"));
    if (start == 0) Start();
  }
  Answer(0);
  EXPECT_EQ(FirstEvent(Work).GetStatus(), WaitingForEvent);
}

TEST_F(AppAlertsTest, AButtonActsInTheSetThatItsAlertIsAboutWhicheverWasOpenedFirst) {
  Now = Sunday + 10 * Hour;
  WriteSet(Home, {});
  WriteSet(Work, {Nagging()});
  Remember({Home, Work});
  Start();
  ASSERT_EQ(Alerts().size(), 1u);
  Answer(0);
  EXPECT_EQ(FirstEvent(Work).GetStatus(), WaitingForEvent);
  EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), Sunday + Day + 9 * Hour);
}

TEST_F(AppAlertsTest, AQuestionIsAskedAnewAndADeliveryOnlyShown) {
  for (const int answer : {0, 1}) {
    Now = Sunday + 6 * Hour;
    StartWith({DailyAt(Sunday + 7 * Hour, "Asks"), DailyAt(Sunday + 7 * Hour, "Says"),
               DailyAt(Sunday + 7 * Hour + 30 * Minute, "Late")});
    MakeQuestion(FirstEvent(Work), "brew");
    Set(Work)->SaveData();
    DeliverAt(Sunday + 7 * Hour);
    ASSERT_EQ(Alerts().size(), 2u);
    Post(Message(FORCED_QUIT));
    EXPECT_THAT(It->World.Machine.Commands, IsEmpty());
    Now = Sunday + 8 * Hour;
    Start();
    EXPECT_THAT(Alerts(),
                ElementsAre("Kestrin event:  Asks\n\nKestrin is about to execute a shell command: "
                            "\"brew\".  Should the command be executed?",
                            "Kestrin event:  Says\n\n",
                            "Kestrin event:  Late\nThe event was missed.  It occurred Sun, Nov 15 "
                            "2026, 07:30:00 AM\n\n"))
        << "what stood open first";
    ASSERT_TRUE(Answer(answer));
    EXPECT_EQ(It->World.Machine.Commands.size(), static_cast<size_t>(answer));
    ASSERT_TRUE(Answer(0) && Answer(0));
    EXPECT_EQ(It->World.Holding.Count(), 1);
    Start();
    EXPECT_THAT(It->World.Machine.Commands, IsEmpty()) << "neither again nor after all";
  }
}

TEST_F(AppAlertsTest, APutOffQuestionThatIsNoneAnyMoreIsCarriedOutOnce) {
  Now = Sunday + 6 * Hour;
  StartWith({DailyAt(Sunday + 7 * Hour)});
  CommandDataHandler& command = MakeQuestion(FirstEvent(Work), "brew");
  DeliverAt(Sunday + 7 * Hour);
  ASSERT_EQ(It->World.Alerts.PutOff(Ui().Alerts.at(0).Id, {Sunday + 8 * Hour, false, {}}), "");
  command.SetVerify(false);
  Set(Work)->SaveData();
  DeliverAt(Sunday + 8 * Hour);
  EXPECT_THAT(It->World.Machine.Commands, ElementsAre("brew"));
  Now = Sunday + 9 * Hour;
  Start();
  EXPECT_THAT(It->World.Machine.Commands, IsEmpty());
  Remember({});
  Start({Work});
  ActAgain(FirstEvent(Work), RecordKind::Event);
  Run();
  EXPECT_THAT(It->World.Machine.Commands, ElementsAre("brew")) << "of a set that was saved here";
}

}  // namespace
}  // namespace kestrin
