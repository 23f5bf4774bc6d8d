// The whole application with its true handlers: from an event that comes due to the alert on the
// screen, its answer, and what is left of both when the program ends.
#include "fakes/AppTestBase.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/HandlerActions.h"
#include "handlers/LoadEventHandlers.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppAlertsTest : public AppTestBase {
 protected:
  AppAlertsTest() { OwnActions = &Real; }

  void LoadHandlers(Context& context) override { LoadBuiltInHandlers(context); }

  /// Every day at 9:00, with prewarnings each half hour from 8:00 on, or with nags.
  static EventRecord Reminding(bool nags) {
    EventRecord record = DailyAt(Sunday + 9 * Hour);
    record.ApplyPrewarn = record.ApplyPrewarnRepeat = true;
    record.PrewarnTime = 1;
    record.PrewarnType = Hours;
    record.PrewarnRepeatTime = 30;
    record.PrewarnRepeatType = Minutes;
    record.PrewarnMessage = "Boil the water.";
    record.NagMessage = "Pour it.";
    record.ApplyNag = nags;
    record.NagRepeatTime = 1;
    record.NagRepeatType = Hours;
    record.Status = nags ? WaitingToNag : WaitingForPrewarning;
    record.NextEventTime = Sunday + (nags ? 10 : 8) * Hour;
    return record;
  }
  void Remembered(const std::vector<EventRecord>& records) {
    WriteSet(Work, records);
    Remember({Work});
  }
  const AlertRequest& OnlyAlert() {
    EXPECT_EQ(Ui().Alerts.size(), 1u);
    return Ui().Alerts.at(0).Request;
  }

  HandlerActions Real;
};

const std::string PrewarningText =
    "The event \"Tea\" will occur at 9:00 AM today.\n\nBoil the water.";
const std::string NagText = "The event \"Tea\" occurred at 9:00 AM today.\n\nPour it.";

TEST_F(AppAlertsTest, APrewarningAndANagSayWhatTheySayAndHoldUntilAnswered) {
  const struct {
    bool nags;
    const char* title;
    const char* stop;
    std::string text;
    int32 at, onTime, stopped;
  } rows[] = {
      {false, "Kestrin prewarning", "No more prewarnings", PrewarningText, Sunday + 8 * Hour,
       Sunday + 8 * Hour + 30 * Minute, Sunday + 9 * Hour},
      {true, "Kestrin nag", "No more nagging", NagText, Sunday + 10 * Hour, Sunday + 11 * Hour,
       Sunday + Day + 8 * Hour},
  };
  for (const auto& row : rows)
    for (const int which : {0, 1}) {
      SCOPED_TRACE(std::string(row.title) + ", button " + std::to_string(which));
      Remembered({Reminding(row.nags)});
      const std::string before = *Disk.Bytes(Work);
      Now = row.at;
      Wake();
      EXPECT_EQ(OnlyAlert().Title, row.title);
      EXPECT_EQ(OnlyAlert().Text, row.text);
      EXPECT_EQ(OnlyAlert().Buttons, (std::vector<std::string>{row.stop, "OK"}));
      EXPECT_EQ(OnlyAlert().HarmlessButton, 1);
      EXPECT_EQ(OnlyAlert().Kind, AlertKind::Information);
      EXPECT_EQ(It->Background.Times.back(), row.onTime);
      EXPECT_FALSE(It->Ended);
      EXPECT_EQ(Disk.Bytes(Work), before) << "a crash delivers again, rather than never";
      Answer(which);
      EXPECT_TRUE(It->Ended);
      EXPECT_EQ(It->Background.Times.back(), which == 0 ? row.stopped : row.onTime);
      Start();
      EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), which == 0 ? row.stopped : row.onTime);
    }
}

TEST_F(AppAlertsTest, AnAlertThatStandsOpenIsBroughtUpToDate) {
  Remembered({Reminding(false)});
  Wake();
  for (const int minutes : {30, 60}) {
    It->World.Time.JumpTo(Sunday + 8 * Hour + minutes * Minute);
    Post(Message(DELIVER_EVENTS));
  }
  EXPECT_THAT(Alerts(), ElementsAre(PrewarningText, "Kestrin event:  Tea\n\n"));
  EXPECT_EQ(It->World.Holding.Count(), 2) << "one for each alert that is open";
  EXPECT_EQ(Ui().History.size(), 3u);
  Answer(0);
  EXPECT_EQ(FirstEvent(Work).GetStatus(), WaitingForPrewarning) << "its occurrence is over";
  Answer(0);
  EXPECT_TRUE(It->Ended);
}

TEST_F(AppAlertsTest, AfterAForcedEndTheAlertsStandThereAgainAndTheirButtonsWork) {
  for (const bool nags : {false, true})
    for (const int which : {0, 1}) {
      SCOPED_TRACE(testing::Message() << (nags ? "nag" : "prewarning") << ", button " << which);
      Remembered({Reminding(nags)});
      Now = Sunday + (nags ? 10 : 8) * Hour;
      Wake();
      Post(Message(FORCED_QUIT));
      EXPECT_TRUE(It->Ended);
      Now += 10 * Minute;
      Start();
      EXPECT_THAT(Alerts(), ElementsAre(nags ? NagText : PrewarningText));
      EXPECT_EQ(OnlyAlert().Title, nags ? "Kestrin nag" : "Kestrin prewarning");
      const int32 before = FirstEvent(Work).GetNextEventTime();
      Answer(which);
      const int32 stopped = nags ? Sunday + Day + 8 * Hour : Sunday + 9 * Hour;
      EXPECT_EQ(FirstEvent(Work).GetNextEventTime(), which == 0 ? stopped : before);
      EXPECT_EQ(It->World.Holding.Count(), 1) << "the window";
      EXPECT_FALSE(Disk.Bytes(AlertFile));
    }
}

TEST_F(AppAlertsTest, AnAlertWhoseOccurrenceIsOverIsShownAgainWithoutEffect) {
  Remembered({Reminding(false)});
  Wake();
  Post(Message(FORCED_QUIT));
  WriteSet(Work, {DailyAt(Sunday + Day + 9 * Hour)});
  Start();
  EXPECT_THAT(Alerts(), ElementsAre(PrewarningText));
  const std::string before = *Disk.Bytes(Work);
  Answer(0);
  EXPECT_EQ(Disk.Bytes(Work), before);
  EXPECT_EQ(It->World.Holding.Count(), 1);
}

TEST_F(AppAlertsTest, AQuestionIsAskedAnewAndADeliveryOnlyShown) {
  Remembered({DailyAt(Sunday + 7 * Hour, "Asks"), DailyAt(Sunday + 7 * Hour, "Says")});
  Now = Sunday + 6 * Hour;
  Start();
  FirstEvent(Work).SetSelectedHandler(FindHandler("Command"));
  auto& command = dynamic_cast<CommandDataHandler&>(*FirstEvent(Work).GetAddOnData());
  command.SetCommand("brew");
  command.SetVerify(true);
  Set(Work)->SaveData();
  It->World.Time.JumpTo(Sunday + 7 * Hour);
  Post(Message(DELIVER_EVENTS));
  ASSERT_EQ(Alerts().size(), 2u);
  Post(Message(FORCED_QUIT));
  EXPECT_THAT(It->World.Machine.Commands, IsEmpty());
  Now = Sunday + 8 * Hour;
  Start();
  EXPECT_THAT(Alerts(),
              ElementsAre("Kestrin event:  Asks\n\nKestrin is about to execute a shell command: "
                          "\"brew\".  Should the command be executed?",
                          "Kestrin event:  Says\n\n"));
  ASSERT_TRUE(Answer(1));
  EXPECT_THAT(It->World.Machine.Commands, ElementsAre("brew"));
  ASSERT_TRUE(Answer(0));
  EXPECT_EQ(It->World.Holding.Count(), 1);
  EXPECT_FALSE(Disk.Bytes(AlertFile));
}

TEST_F(AppAlertsTest, WithoutADisplayCommandsRunAndMessagesStayDue) {
  Remembered({DailyAt(Sunday + 7 * Hour, "Says"), DailyAt(Sunday + 7 * Hour, "Runs")});
  Now = Sunday + 6 * Hour;
  Start();
  Event& runs = *Set(Work)->Events().at(1);
  runs.SetSelectedHandler(FindHandler("Command"));
  dynamic_cast<CommandDataHandler&>(*runs.GetAddOnData()).SetCommand("brew");
  CloseWindow();
  Now = Sunday + 8 * Hour;
  testing::internal::CaptureStderr();
  Wake(false);
  testing::internal::GetCapturedStderr();
  EXPECT_THAT(It->World.Machine.Commands, ElementsAre("brew"));
  EXPECT_TRUE(It->Ended);
  EXPECT_EQ(It->Background.Times.back(), Now + 60);
  Wake();
  EXPECT_THAT(It->World.Machine.Commands, IsEmpty());
  EXPECT_THAT(Alerts(), ElementsAre("Kestrin event:  Says\n\n"));
}

}  // namespace
}  // namespace kestrin
