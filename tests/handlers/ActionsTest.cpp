// What the built-in handlers do when their event comes due, and that every road gives back exactly
// the holds it took.
#include <algorithm>

#include "HandlerTestBase.h"
#include "core/files/OwnSets.h"
#include "handlers/DeliveryWork.h"
#include "handlers/UnknownDataHandler.h"

namespace kestrin {
namespace {

const std::string Head = "Kestrin event:  Tea";
const std::string CommandQuestion =
    Head +
    "\n\nKestrin is about to execute a shell command: \"brew\".  Should the command be executed?";
const std::string CommandFailure =
    Head +
    "\n\nKestrin attempted to execute a shell command: \"brew\".  The command failed to execute.";

class ActionsTest : public HandlerTestBase {
 protected:
  ~ActionsTest() override { EXPECT_EQ(World.Holding.Count(), 0); }

  CommandDataHandler& Command(bool verify) {
    auto& data = Select<CommandDataHandler>("Command");
    data.SetCommand("brew");
    data.SetVerify(verify);
    return data;
  }
  ActOnFileDataHandler& File(bool verify) {
    auto& data = Select<ActOnFileDataHandler>("Act on file");
    data.SetFileName("/pot");
    data.SetVerify(verify);
    return data;
  }
  void RunWorkers() { World.Threads.RunPending(), World.RunMessages(); }
  /// Under a record of its own, which is told.
  std::string DeliverRecorded(JournalRecord record = {}) {
    record.Act = ActStage::Acting;
    std::string id = World.Record.Begin(record);
    Subject->SetDelivery(id);
    Deliver();
    Subject->SetDelivery("");
    return id;
  }
};

TEST_F(ActionsTest, AMessageIsAnAlertThatHoldsTheApplicationUntilItIsClosed) {
  Select<MessageDataHandler>("Message").SetMessage("Pour it.");
  Deliver();
  ASSERT_EQ(OnlyText(), Head + "\n\nPour it.");
  const AlertRequest& request = World.Ui.Alerts[0].Request;
  EXPECT_THAT(request.Buttons, ElementsAre("Ok"));
  EXPECT_EQ(request.Role, AlertRole::Delivery);
  EXPECT_EQ(World.Holding.Count(), 1);
  Answer(0);
  World.Core.zone = Zone::Load("Asia/Tokyo").value();
  Subject->SetEventTime(1794773322, true);
  Deliver(true);
  EXPECT_EQ(OnlyText(), Head +
                            "\nThe event was missed.  It occurred Mon, Nov 16 2026, 05:08:42 AM"
                            "\n\nPour it.");
  Answer(0);
  World.Settings.Time24Hour = true;
  Deliver(true);
  EXPECT_THAT(OnlyText(), testing::HasSubstr("It occurred Mon, Nov 16 2026, 05:08:42\n"));
  Answer(0);
}

TEST_F(ActionsTest, ACommandRunsUnasked) {
  Command(false);
  World.Threads.How = FakeWorkers::Mode::Deferred;
  Deliver();
  EXPECT_THAT(World.Machine.Commands, ElementsAre("brew")) << "before the delivery counts as made";
  EXPECT_EQ(World.Holding.Count(), 1) << "until it has ended";
  Command(false).SetCommand("");
  Deliver();
  RunWorkers();
  EXPECT_THAT(World.Machine.Commands, ElementsAre("brew"));
  EXPECT_THAT(World.Ui.History, IsEmpty());
}

TEST_F(ActionsTest, AQuestionAndWhatItStartsHoldTheApplication) {
  Command(true);
  World.Threads.How = FakeWorkers::Mode::Deferred;
  for (const int which : {0, 1}) {
    Deliver();
    ASSERT_EQ(OnlyText(), CommandQuestion);
    EXPECT_THAT(World.Ui.Alerts[0].Request.Buttons, ElementsAre("Cancel", "Ok"));
    EXPECT_EQ(World.Ui.Alerts[0].Request.HarmlessButton, 0);
    EXPECT_EQ(World.Holding.Count(), 1);
    EXPECT_TRUE(World.Threads.Started.empty());
    if (which == 1) Set->RemoveEvent(Subject);
    Answer(which);
    EXPECT_EQ(World.Holding.Count(), which);
  }
  EXPECT_EQ(World.CountMessages(QUIT_REQUESTED), 1) << "none between question and command";
  RunWorkers();
  EXPECT_THAT(World.Machine.Commands, ElementsAre("brew"));
}

TEST_F(ActionsTest, ACommandNeedsAShellAndAFileAThread) {
  World.Threads.How = FakeWorkers::Mode::Refuse;
  for (const bool verify : {false, true}) {
    World.Machine.ShellWorks = verify;
    Command(verify);
    const std::string id = DeliverRecorded();
    if (verify) Answer(1);
    EXPECT_EQ(World.Record.Find(id)->Act, verify ? ActStage::Acted : ActStage::Failed);
    EXPECT_EQ(OnlyText(), verify ? "0 alerts" : CommandFailure);
    EXPECT_EQ(World.Holding.Count(), verify ? 0 : 1);
    if (!verify) Answer(0);
  }
  EXPECT_THAT(World.Machine.Commands, ElementsAre("brew")) << "though nobody learns how it ends";
  File(true);
  Deliver();
  EXPECT_THAT(OnlyText(), testing::HasSubstr("Kestrin failed to open the file \"/pot\""));
  Answer(0);
}

TEST_F(ActionsTest, ManyCommandsTakeTurnsAndAreInTheJournalUntilThen) {
  Command(false);
  World.Threads.How = FakeWorkers::Mode::Deferred;  // all of them run on
  World.Machine.Exit = 3;
  std::vector<std::string> records;
  for (int i = 0; i < 39; ++i) {
    JournalRecord record;
    record.Event = {"Tea " + std::to_string(i), "Command", 0};
    records.push_back(DeliverRecorded(record));
  }
  const auto count = [&](ActStage stage) {
    return std::count_if(records.begin(), records.end(),
                         [&](const auto& id) { return World.Record.Find(id)->Act == stage; });
  };
  World.Machine.WhenCommand = [&] {
    EXPECT_LE(count(ActStage::Acted), static_cast<int64>(World.Machine.Commands.size()))
        << "none counts before its shell runs";
  };
  size_t begun = CommandQueue::MostInASecond;
  for (; begun < records.size(); begun += CommandQueue::MostInASecond) {
    ASSERT_EQ(World.Machine.Commands.size(), begun);
    EXPECT_EQ(count(ActStage::Acted), static_cast<int64>(begun));
    EXPECT_EQ(count(ActStage::Queued), static_cast<int64>(records.size() - begun));
    World.Ticks.RunOut();
    World.RunMessages();
    ASSERT_EQ(World.Machine.Commands.size(), begun) << "no second has passed";
    World.Time.Advance(1);
    if (begun == CommandQueue::MostInASecond) Deliver();
    ASSERT_EQ(World.Machine.Commands.size(), begun) << "one more stands behind those that wait";
    World.Ticks.RunOut();
    World.RunMessages();
  }
  EXPECT_EQ(World.Machine.Commands.size(), records.size() + 1);
  EXPECT_TRUE(World.Ticks.Waiting.empty());
  RunWorkers();
  World.Record.Sync();
  Journal later(Disk, World.Who, World.Time, "/state", [](const std::string&) {});
  later.Read();
  for (const std::string& id : records) EXPECT_EQ(later.Find(id)->Exit, 3);
}

TEST_F(ActionsTest, ADiskThatDoesNotAnswerDelaysNothingElse) {
  World.Machine.Files["/pot"] = {true, false, "Kettle"};
  World.Threads.How = FakeWorkers::Mode::Deferred;
  for (const bool verify : {false, true}) {
    JournalRecord record;
    record.Open = "/pot";
    File(verify);
    const std::string id = DeliverRecorded(record);
    EXPECT_EQ(World.Record.Find(id)->Act, ActStage::Queued) << "no crash loses it";
    Select<MessageDataHandler>("Message").SetMessage("Pour it.");
    Deliver();
    EXPECT_EQ(OnlyText(), Head + "\n\nPour it.");
    Answer(0);
    RunWorkers();
    EXPECT_EQ(World.Machine.Launched.size(), verify ? 1u : 0u) << "opened elsewhere, too";
    RunWorkers();
    EXPECT_EQ(World.Machine.Launched.size(), 1u);
    EXPECT_EQ(World.Record.Find(id)->Act, ActStage::Acted);
    if (!verify) continue;
    EXPECT_THAT(OnlyText(), testing::HasSubstr("with the application Kettle."));
    Answer(0);
    // An earlier process has died before its disk answered.
    World.Record.Stage(id, ActStage::Queued, World.Record.Find(id)->Why);
  }
}

TEST_F(ActionsTest, WhatAnotherSessionHasTakenUpIsNotDoneHere) {
  World.Machine.Files["/pot"] = {true, false, ""};
  World.Threads.How = FakeWorkers::Mode::Deferred;
  const FakeProcesses other(77);
  Journal theirs(Disk, other, World.Time, "/state", {});
  for (const bool isFile : {false, true}) {
    JournalRecord record;
    record.Event = {isFile ? "file" : "command", "", 0};
    record.From = EventState{1, 1, 1, false};
    isFile ? void(File(false)) : void(Command(true));
    DeliverRecorded(record);
    theirs.Read();
    ASSERT_TRUE(theirs.Claim(record));
    if (!isFile) Answer(1);
    RunWorkers();
  }
  EXPECT_THAT(World.Machine.Commands, IsEmpty());
  EXPECT_THAT(World.Machine.Launched, IsEmpty());
}

TEST_F(ActionsTest, AFileIsDescribedAskedForAndLaunched) {
  const struct {
    FileDescription File;
    const char *Question, *Failure;
  } rows[] = {
      {{true, true, "Kettle"}, "launch the application Kettle.", "launch the application  Kettle."},
      {{true, true, ""}, "launch the application /pot.", "launch the application  /pot."},
      {{true, false, "Kettle"},
       "open the file \"/pot\" with the application Kettle.",
       "open the file \"/pot\" with the application Kettle."},
      {{true, false, ""},
       "open the file \"/pot\" with its default application.",
       "open the file \"/pot\" with its default application."},
  };
  for (const auto& row : rows) {
    World.Machine.Files["/pot"] = row.File;
    World.Machine.LaunchWorks = true;
    World.Machine.Launched.clear();
    File(true);
    Deliver();
    EXPECT_EQ(OnlyText(), Head + "\n\nKestrin is about to " + row.Question);
    Answer(0);
    EXPECT_THAT(World.Machine.Launched, IsEmpty());

    File(false);
    Deliver();
    EXPECT_THAT(World.Machine.Launched, ElementsAre("/pot"));
    EXPECT_EQ(World.Holding.Count(), 0);
    World.Machine.LaunchWorks = false;
    Deliver();
    EXPECT_EQ(OnlyText(), Head + "\n\nKestrin failed to " + row.Failure);
    EXPECT_EQ(World.Holding.Count(), 1);
    Answer(0);
  }
  World.Machine.Files.clear();
  Deliver();
  EXPECT_EQ(OnlyText(), Head +
                            "\n\nKestrin was about to act on a file: \"/pot\".  Kestrin was unable "
                            "to locate the file.");
  Answer(0);
  File(true).SetFileName("");
  Deliver();
  EXPECT_THAT(World.Ui.Alerts, IsEmpty()) << "none is passed over";
}

TEST_F(ActionsTest, OnlyWhatIsThePersonsOwnActsUnasked) {
  const std::string path = "/sets/set";
  std::vector<std::string> reports;
  const auto report = [&reports](const std::string& words) { reports.push_back(words); };
  Command(false);
  ASSERT_TRUE(Set->SaveData()) << "by another program, as far as anybody knows";
  const std::string foreign = *Disk.Bytes(path);
  OwnSets own(Disk, "/state", report);
  own.Read({});
  World.Core.ownSets = &own;
  const auto asks = [&] {
    Set = Read(path);
    Subject = Set->Events().at(0).get();
    return dynamic_cast<CommandDataHandler&>(*Subject->GetAddOnData()).NeedsScreen();
  };
  EXPECT_TRUE(asks());
  World.Settings.RememberSet(path);
  EXPECT_FALSE(asks());
  Disk.SetAttribute(path, "user.xdg.origin.url", "https://example.org/set");
  EXPECT_TRUE(asks()) << "the mark counts for more";
  Disk.RemoveAttribute(path, "user.xdg.origin.url");
  EXPECT_FALSE(IsTrusted(*Set)) << "no delivery looks at the disk for it";
  World.Settings.ForgetSet(path);

  const auto save = [&](EventSet::SavedBy by, const char* comment) {
    asks();
    Subject->SetComment(comment);
    ASSERT_TRUE(Set->SaveData(by));
  };
  save(EventSet::SavedBy::Itself, "a delivery");
  EXPECT_TRUE(asks()) << "the program's own saves are no consent";
  save(EventSet::SavedBy::User, "mine");
  EXPECT_FALSE(asks());
  save(EventSet::SavedBy::Itself, "another delivery");
  EXPECT_FALSE(asks()) << "they keep it";
  Disk.Put(path, foreign);
  EXPECT_TRUE(asks()) << "somebody has put another one in its place";
  save(EventSet::SavedBy::Itself, "a third one");
  EXPECT_TRUE(asks());
  const auto untitled = kestrin::NewSet(World.Core, "made here");
  EXPECT_TRUE(IsTrusted(*untitled));

  OwnSets other(Disk, "/state", report);
  other.Read({path});
  EXPECT_FALSE(other.IsOwn(path, foreign)) << "the list exists: what is remembered proves nothing";
  other.Saved("/sets/theirs", "1");
  own.Saved("/sets/ours", "2");
  for (const bool damaged : {false, true}) {
    if (damaged) Disk.Put("/state/mine", *Disk.Bytes("/state/mine") + "{");
    OwnSets third(Disk, "/state", report);
    third.Read({});
    EXPECT_TRUE(third.IsOwn("/sets/theirs", "1") && third.IsOwn("/sets/ours", "2"));
    EXPECT_EQ(reports.size(), damaged ? 1u : 0u);
  }
  OwnSets first(Disk, "/elsewhere", report);
  first.Read({path, "/sets/gone"});
  EXPECT_TRUE(first.IsOwn(path, *Disk.Bytes(path))) << "remembered before there was a list";
  Disk.Put("/blind/mine", "nobody may read it", 0200);
  OwnSets blind(Disk, "/blind", report);
  blind.Read({});
  blind.Saved(path, "1");
  EXPECT_EQ(Disk.Bytes("/blind/mine"), "nobody may read it") << "nor is it written over";
  World.Core.ownSets = nullptr;
}

TEST_F(ActionsTest, TheQuestionShowsAllOfTheCommand) {
  Command(true).SetCommand(
      ("one\ntwo\t\x1b[2K" + std::string(60, '\n') + "rm -r \xe2\x80\xae ~ caf\xc3\xa9\n").c_str());
  Deliver();
  EXPECT_THAT(OnlyText(),
              testing::HasSubstr("\"one\xe2\x90\x8a\ntwo\xe2\x90\x89\xe2\x90\x9b[2K\xe2"));
  EXPECT_THAT(OnlyText(),
              testing::HasSubstr("\nrm -r <U+202E> ~ caf\xc3\xa9\xe2\x90\x8a\".  Should"));
  const std::string text = OnlyText();
  EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 4);
  EXPECT_EQ(World.Ui.Alerts[0].Request.DefaultButton, 0);
  Answer(0);
  Command(true).SetCommand(
      "\u200a\u200b\u200f\u2010\u2027\u2028\u202e\u202f\u205f\u2060\u206f\u2070\ufefe\ufeff");
  Deliver();
  EXPECT_THAT(OnlyText(),
              testing::HasSubstr("\"\u200a<U+200B><U+200F>\u2010\u2027<U+2028><U+202E>\u202f\u205f"
                                 "<U+2060><U+206F>\u2070\ufefe<U+FEFF>\""));
  Answer(0);
}

TEST_F(ActionsTest, AMissingHandlerIsNamed) {
  auto data = std::make_unique<UnknownDataHandler>(Subject);
  data->SetOriginalHandler("Samovar");
  Subject->AdoptAddOnData(UnknownHandler, std::move(data));
  Deliver();
  EXPECT_EQ(OnlyText(),
            Head +
                "\n\nThe event occurred, but the add-on event handler which owns it is not "
                "loaded.  The handler is called \"Samovar\".  Add-on event handlers should be "
                "stored in \"~/.local/lib/kestrin/add-ons\" or in the add-ons folder in the "
                "Kestrin application folder.");
  Answer(0);
}

TEST_F(ActionsTest, WithoutAScreenOnlyWhatNeedsNoneIsDelivered) {
  const int32 due = static_cast<int32>(World.Time.Now()) + 3600;
  World.Machine.Files["/there"] = {true, false, ""};
  World.Ui.Screen = false;
  const struct {
    const char *Handler, *Text;
    bool Verify, Able;
  } rows[] = {{"Do nothing", "", false, true},       {"Message", "", false, false},
              {"Command", "brew", false, true},      {"Command", "brew", true, false},
              {"Command", "", true, true},           {"Act on file", "/there", false, true},
              {"Act on file", "/gone", false, true}, {"Act on file", "/there", true, false},
              {"Act on file", "", true, true}};
  Subject->SetEventTime(due, true);
  HandlerActions actions;
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.Handler) + " " + row.Text);
    Subject->SetSelectedHandler(World.Handlers.Find(row.Handler));
    if (auto* command = dynamic_cast<CommandDataHandler*>(Subject->GetAddOnData()))
      command->SetCommand(row.Text), command->SetVerify(row.Verify);
    if (auto* file = dynamic_cast<ActOnFileDataHandler*>(Subject->GetAddOnData()))
      file->SetFileName(row.Text), file->SetVerify(row.Verify);
    EXPECT_EQ(actions.CanDeliver(*Subject), row.Able);
    EXPECT_EQ(actions.PlanOf(*Subject).OneSession, row.Able && *row.Text) << "of several";
  }
  EventRecord record = DailyAt(due);
  record.Status = WaitingToNag;
  Event& nagging = Add(*Set, record);
  nagging.SetSelectedHandler(World.Handlers.Find("Do nothing"));
  EXPECT_FALSE(actions.CanDeliver(nagging)) << "a nag is an alert whatever the handler does";
  Subject->SetSelectedHandler(World.Handlers.Find("Do nothing"));
  Subject->SetApplyPrewarn(true);
  Subject->SetPrewarnType(Minutes);
  Subject->SetPrewarnTime(30);
  ASSERT_EQ(Subject->GetStatus(), WaitingForPrewarning);
  EXPECT_FALSE(actions.CanDeliver(*Subject)) << "a prewarning is due";
  World.Time.JumpTo(due);
  EXPECT_TRUE(actions.CanDeliver(*Subject)) << "the event itself has come";
}

TEST_F(ActionsTest, RemindersAreAnsweredByHandleAndOccurrence) {
  Subject->SetEventTime(Sunday + 17 * Hour, true);
  World.Settings.Time24Hour = true;
  Subject->SetPrewarnMessage("Warm the pot.");
  Subject->SetNagMessage("Cold by now.");
  World.OnMessage = [this](const Message& message) {
    if (message.Has("which")) World.Holding.ProcessDone();
  };
  for (const bool nag : {false, true}) {
    World.Time.JumpTo(Subject->GetNextEventTime() + (nag ? 61 : 60));
    if (nag)
      HandlerActions().DeliverNagMessage(*Subject);
    else
      HandlerActions().DeliverPrewarnMessage(*Subject);
    World.RunMessages();
    const AlertRequest request = World.Ui.Alerts.at(0).Request;
    EXPECT_EQ(request.Title, nag ? "Kestrin nag" : "Kestrin prewarning");
    EXPECT_THAT(request.Buttons,
                ElementsAre(nag ? "No more nagging" : "No more prewarnings", "OK"));
    EXPECT_EQ(request.HarmlessButton, 1);
    EXPECT_TRUE(request.NamesTime);
    EXPECT_EQ(request.Away, nag) << "a minute is no absence";
    EXPECT_EQ(request.Role, nag ? AlertRole::Nag : AlertRole::Prewarning);
    EXPECT_EQ(request.Event, Subject->GetHandle());
    EXPECT_EQ(request.Text, nag ? "The event \"Tea\" occurred at 17:00 today.\n\nCold by now."
                                : "The event \"Tea\" will occur at 17:00 today.\n\nWarm the pot.");
    EXPECT_EQ(World.Holding.Count(), 1);

    World.Messages.clear();
    Answer(0);
    Message reply(nag ? NAG_ALERT_REPLY : PREWARN_ALERT_REPLY);
    reply.Set("which", int32{0});
    reply.Set("Event", static_cast<int64>(Subject->GetHandle()));
    reply.Set("EventSet", static_cast<int64>(Set->GetHandle()));
    reply.Set("Occurrence", Subject->GetActualEventTime());
    EXPECT_EQ(World.Messages.at(0), reply);
  }
}

}  // namespace
}  // namespace kestrin
