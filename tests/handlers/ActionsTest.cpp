// What the built-in handlers do when their event comes due, and that every road gives back exactly
// the holds it took.
#include "HandlerTestBase.h"
#include "handlers/ActOnFileDataHandler.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/MessageDataHandler.h"

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
};

TEST_F(ActionsTest, AMessageIsAnAlertThatHoldsTheApplicationUntilItIsClosed) {
  Select<MessageDataHandler>("Message").SetMessage("Pour it.");
  Deliver();
  ASSERT_EQ(OnlyText(), Head + "\n\nPour it.");
  const AlertRequest& request = World.Ui.Alerts[0].Request;
  EXPECT_EQ(request.Title, "");
  EXPECT_EQ(request.Buttons, std::vector<std::string>{"Ok"});
  EXPECT_EQ(request.Role, AlertRole::Delivery);
  EXPECT_TRUE(World.Alerts.AnyFor(Set->GetHandle()));
  EXPECT_EQ(World.Holding.Count(), 1);
  Answer(0);
}

TEST_F(ActionsTest, AMissedEventSaysWhenItOccurred) {
  const struct {
    const char* Zone;
    int32 When;
    const char* Line;
  } rows[] = {
      {"UTC", 1794700805, "Sun, Nov 15 2026, 12:00:05 AM"},
      {"Asia/Tokyo", 1794773322, "Mon, Nov 16 2026, 05:08:42 AM"},
  };
  Select<MessageDataHandler>("Message").SetMessage("");
  for (const auto& row : rows) {
    World.Core.zone = Zone::Load(row.Zone).value();
    World.Time.JumpTo(row.When - 1000);
    Subject->SetEventTime(row.When, true);
    Deliver(true);
    EXPECT_EQ(OnlyText(), Head + "\nThe event was missed.  It occurred " + row.Line + "\n\n");
    Answer(0);
  }
}

TEST_F(ActionsTest, ACommandRunsUnasked) {
  Command(false).SetCommand("");
  Deliver();
  EXPECT_TRUE(World.Threads.Started.empty());
  Command(false);
  World.Threads.How = FakeWorkers::Mode::Deferred;
  Deliver();
  EXPECT_EQ(World.Holding.Count(), 1);
  Command(false).SetCommand("changed meanwhile");
  World.Threads.RunPending();
  World.RunMessages();
  EXPECT_EQ(World.Machine.Commands, std::vector<std::string>{"brew"});
  EXPECT_TRUE(World.Ui.History.empty());
}

TEST_F(ActionsTest, AQuestionHoldsItsSetAndWhatItStartsHoldsNobody) {
  Command(true);
  World.Threads.How = FakeWorkers::Mode::Deferred;
  for (const int which : {0, 1}) {
    Deliver();
    ASSERT_EQ(OnlyText(), CommandQuestion);
    EXPECT_EQ(World.Ui.Alerts[0].Request.Buttons, (std::vector<std::string>{"Cancel", "Ok"}));
    EXPECT_EQ(World.Ui.Alerts[0].Request.HarmlessButton, 0);
    EXPECT_EQ(World.Holding.CountFor(Set->GetHandle()), 1);
    EXPECT_TRUE(World.Threads.Started.empty());
    Answer(which);
    EXPECT_EQ(World.Holding.CountFor(Set->GetHandle()), 0);
    EXPECT_EQ(World.Holding.Count(), which);
  }
  EXPECT_EQ(World.CountMessages(QUIT_REQUESTED), 1) << "none between question and command";
  World.Threads.RunPending();
  World.RunMessages();
  EXPECT_EQ(World.Machine.Commands, std::vector<std::string>{"brew"});
}

TEST_F(ActionsTest, TheAnswerIsCarriedOutWhenTheEventHasGone) {
  Command(true);
  Deliver();
  Set->RemoveEvent(Subject);
  Answer(1);
  EXPECT_EQ(World.Machine.Commands, std::vector<std::string>{"brew"});
}

TEST_F(ActionsTest, AForcedEndStartsNothing) {
  Command(true);
  Deliver();
  World.Alerts.EndByForce();
  Deliver();
  EXPECT_TRUE(World.Machine.Commands.empty());
}

TEST_F(ActionsTest, NoThreadIsToldInsteadOfTheCommand) {
  World.Threads.How = FakeWorkers::Mode::Refuse;
  for (const bool verify : {false, true}) {
    Command(verify);
    Deliver();
    if (verify) Answer(1);
    ASSERT_EQ(OnlyText(), CommandFailure);
    EXPECT_TRUE(World.Alerts.AnyFor(Set->GetHandle()));
    EXPECT_EQ(World.Holding.Count(), 1);
    Answer(0);
    EXPECT_EQ(World.Holding.Count(), 0);
  }
}

TEST_F(ActionsTest, AFileIsDescribedAskedForAndLaunched) {
  const struct {
    FileDescription File;
    const char* Question;
    const char* Failure;
  } rows[] = {
      {{true, true, "Kettle"},
       "\n\nKestrin is about to launch the application Kettle.",
       "\n\nKestrin failed to launch the application  Kettle."},
      {{true, true, ""},
       "\n\nKestrin is about to launch the application /pot.",
       "\n\nKestrin failed to launch the application  ."},
      {{true, false, "Kettle"},
       "\n\nKestrin is about to open the file \"/pot\" with the application Kettle.",
       "\n\nKestrin failed to open the file \"/pot\" with the application Kettle."},
      {{true, false, ""},
       "\n\nKestrin is about to open the file \"/pot\" with its default application.",
       "\n\nKestrin failed to open the file \"/pot\" with the application ."},
  };
  for (const auto& row : rows) {
    World.Machine.Files["/pot"] = row.File;
    World.Machine.LaunchWorks = true;
    World.Machine.Launched.clear();
    File(true);
    Deliver();
    EXPECT_EQ(OnlyText(), Head + row.Question);
    Answer(0);
    EXPECT_TRUE(World.Machine.Launched.empty());

    File(false);
    Deliver();
    EXPECT_EQ(World.Machine.Launched, std::vector<std::string>{"/pot"});
    EXPECT_TRUE(World.Ui.Alerts.empty());
    EXPECT_EQ(World.Holding.Count(), 0);

    World.Machine.LaunchWorks = false;
    for (const auto how : {FakeWorkers::Mode::Refuse, FakeWorkers::Mode::Inline}) {
      World.Threads.How = how;
      Deliver();
      EXPECT_EQ(OnlyText(), Head + row.Failure);
      EXPECT_EQ(World.Holding.Count(), 1);
      Answer(0);
    }
  }
}

TEST_F(ActionsTest, AFileThatIsGoneIsToldAndNoneIsPassedOver) {
  File(true);
  Deliver();
  EXPECT_EQ(OnlyText(), Head +
                            "\n\nKestrin was about to act on a file: \"/pot\".  Kestrin was unable "
                            "to locate the file.");
  Answer(0);
  File(true).SetFileName("");
  Deliver();
  EXPECT_TRUE(World.Ui.Alerts.empty());
  EXPECT_TRUE(World.Threads.Started.empty());
}

TEST_F(ActionsTest, ADownloadedSetAsksBeforeEverything) {
  World.Machine.Files["/pot"] = {true, true, "pot"};
  Files.SetAttribute("/home/set", "user.xdg.origin.url", "https://example.org/set");
  auto& command = Command(false);
  EXPECT_TRUE(command.NeedsScreen());
  Deliver();
  EXPECT_EQ(OnlyText(), CommandQuestion);
  Answer(0);
  EXPECT_TRUE(File(false).NeedsScreen());
  Deliver();
  EXPECT_EQ(World.Ui.Alerts.size(), 1u);
  Answer(0);
  Files.RemoveAttribute("/home/set", "user.xdg.origin.url");
  Deliver();
  EXPECT_EQ(World.Machine.Launched, std::vector<std::string>{"/pot"});
}

TEST_F(ActionsTest, AMissingHandlerIsNamed) {
  auto data = std::unique_ptr<EventAddOnData>();
  Files.Put("/home/payload", std::string(5, '\0'));
  {
    EndianIndependentFile file(Files, "/home/payload", OpenReadOnly, 64);
    bool ok = false;
    data = MakeAddOnData(UnknownHandler, Subject, &file, &ok, nullptr);
  }
  dynamic_cast<KeepsOriginalHandler&>(*data).SetOriginalHandler("Samovar");
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
  const struct {
    const char *Handler, *Text;
    bool Verify, Able;
  } rows[] = {{"Do nothing", "", false, true},
              {"Message", "", false, false},
              {"Command", "brew", false, true},
              {"Command", "brew", true, false},
              {"Command", "", true, true},
              {"Act on file", "/there", false, true},
              {"Act on file", "/gone", false, false},
              {"Act on file", "/there", true, false},
              {"Act on file", "", true, true}};
  Subject->SetEventTime(due, true);
  Set->SaveData();
  HandlerActions actions;
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.Handler) + " " + row.Text);
    Subject->SetSelectedHandler(FindHandler(row.Handler));
    if (auto* command = dynamic_cast<CommandDataHandler*>(Subject->GetAddOnData()))
      command->SetCommand(row.Text), command->SetVerify(row.Verify);
    if (auto* file = dynamic_cast<ActOnFileDataHandler*>(Subject->GetAddOnData()))
      file->SetFileName(row.Text), file->SetVerify(row.Verify);
    World.Ui.Screen = false;
    EXPECT_EQ(actions.CanDeliver(*Subject), row.Able);
  }
  Subject->SetSelectedHandler(FindHandler("Do nothing"));
  Subject->SetApplyPrewarn(true);
  Subject->SetPrewarnType(Minutes);
  Subject->SetPrewarnTime(30);
  ASSERT_EQ(Subject->GetStatus(), WaitingForPrewarning);
  EXPECT_FALSE(actions.CanDeliver(*Subject)) << "a prewarning is due";
  World.Time.JumpTo(due);
  EXPECT_TRUE(actions.CanDeliver(*Subject)) << "the event itself has come";
}

TEST_F(ActionsTest, RemindersAreAnsweredByHandleAndOccurrence) {
  Subject->SetPrewarnMessage("Warm the pot.");
  Subject->SetNagMessage("Cold by now.");
  HandlerActions actions;
  const struct {
    void (HandlerActions::*Deliver)(Event&);
    AlertRole Role;
    const char *Title, *Stop;
    uint32 Reply;
    const char* UserText;
  } rows[] = {{&HandlerActions::DeliverPrewarnMessage, AlertRole::Prewarning, "Kestrin prewarning",
               "No more prewarnings", PREWARN_ALERT_REPLY, "Warm the pot."},
              {&HandlerActions::DeliverNagMessage, AlertRole::Nag, "Kestrin nag", "No more nagging",
               NAG_ALERT_REPLY, "Cold by now."}};
  World.OnMessage = [this](const Message& message) {
    if (message.Has("which"))
      World.Holding.ProcessDone(static_cast<uint64>(*message.Get<int64>("EventSet")));
  };
  for (const auto& row : rows) {
    (actions.*row.Deliver)(*Subject);
    World.RunMessages();
    ASSERT_EQ(World.Ui.Alerts.size(), 1u);
    const AlertRequest request = World.Ui.Alerts[0].Request;
    EXPECT_EQ(request.Title, row.Title);
    EXPECT_EQ(request.Buttons, (std::vector<std::string>{row.Stop, "OK"}));
    EXPECT_EQ(request.HarmlessButton, 1);
    EXPECT_EQ(request.Role, row.Role);
    EXPECT_EQ(request.Event, Subject->GetHandle());
    EXPECT_TRUE(request.Text.starts_with("The event \"Tea\" ")) << request.Text;
    EXPECT_TRUE(request.Text.ends_with(row.UserText)) << request.Text;
    EXPECT_EQ(World.Holding.CountFor(Set->GetHandle()), 1);

    World.Messages.clear();
    Answer(0);
    Message reply(row.Reply);
    reply.Set("which", int32{0});
    reply.Set("Event", static_cast<int64>(Subject->GetHandle()));
    reply.Set("EventSet", static_cast<int64>(Set->GetHandle()));
    reply.Set("Occurrence", Subject->GetActualEventTime());
    ASSERT_FALSE(World.Messages.empty());
    EXPECT_EQ(World.Messages[0], reply);
  }
}

}  // namespace
}  // namespace kestrin
