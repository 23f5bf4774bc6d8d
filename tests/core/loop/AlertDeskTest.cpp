// Alerts that wait, stand open and are answered, and the notices that become alerts.
#include "core/loop/AlertDesk.h"

#include <atomic>
#include <future>
#include <set>
#include <thread>

#include "harness/TestContext.h"

namespace kestrin {
namespace {

using testing::Pair;
using namespace std::string_literals;

struct AlertDeskTest : testing::Test {
  TestContext context;
  AlertDesk& desk = context.Alerts;
  FakeUserInterface& ui = context.Ui;
  std::vector<std::pair<std::string, int>> answers;  ///< text of the alert, button

  AlertRequest Request(const std::string& text, AlertRole role = AlertRole::Notice,
                       uint64 event = 0) {
    AlertRequest request;
    request.Text = text;
    request.Buttons = {"Stop", "OK"};
    request.HarmlessButton = 1;
    request.Role = role;
    request.Set = event ? 900 : 0;
    request.Event = event;
    request.Done = [this, text](int which) { answers.emplace_back(text, which); };
    return request;
  }
};

TEST_F(AlertDeskTest, WindowsOpenOnALaterTurnAndNeverMoreThanTheLimit) {
  for (int i = 0; i < 30; ++i) desk.Show(Request(std::to_string(i)));
  EXPECT_THAT(ui.Alerts, IsEmpty());
  context.RunMessages();
  ASSERT_EQ(ui.Alerts.size(), 24u);
  std::set<int32> places;
  for (const auto& alert : ui.Alerts) places.insert(alert.Place);
  EXPECT_EQ(places.size(), 24u);
  EXPECT_EQ(*places.rbegin(), 23);

  ui.AnswerText("5", 0);
  context.RunMessages();
  EXPECT_EQ(ui.Alerts.back().Request.Text, "24") << "in order";
  EXPECT_EQ(ui.Alerts.back().Place, 5) << "the place that became free";
  while (ui.CloseFirst()) context.RunMessages();
  EXPECT_EQ(answers.size(), 30u);
  EXPECT_TRUE(desk.Empty());
}

TEST_F(AlertDeskTest, AReminderReplacesOnlyAReminderOfTheSameEvent) {
  using enum AlertRole;
  const struct {
    AlertRole first, second;
    uint64 firstEvent, secondEvent;
    bool replaces;
  } cases[] = {
      {Prewarning, Nag, 7, 7, true}, {Nag, Nag, 7, 8, false},
      {Nag, Nag, 0, 0, false},       {Prewarning, Delivery, 7, 7, false},
      {Notice, Notice, 7, 7, false}, {Delivery, Prewarning, 7, 7, false},
  };
  for (const bool firstIsOpen : {true, false})
    for (const auto& each : cases) {
      SCOPED_TRACE(testing::Message() << (&each - cases) << (firstIsOpen ? " open" : " waiting"));
      answers.clear();
      desk.Show(Request("old", each.first, each.firstEvent));
      if (firstIsOpen) context.RunMessages();
      desk.Show(Request("new", each.second, each.secondEvent));
      context.RunMessages();
      EXPECT_EQ(ui.Texts().size(), each.replaces ? 1u : 2u);
      EXPECT_EQ(answers.size(), each.replaces ? 1u : 0u);
      while (ui.AnswerFirst(0)) continue;
      EXPECT_THAT(answers, ElementsAre(Pair("old", each.replaces ? 1 : 0), Pair("new", 0)));
    }
}

TEST_F(AlertDeskTest, WhatComesForAnUnreadAlertStandsInIt) {
  using enum AlertRole;
  for (const bool isQuestion : {false, true}) {
    answers.clear();
    AlertRequest first = Request("unread", isQuestion ? Question : Delivery, 7);
    first.Buttons = isQuestion ? std::vector<std::string>{"Cancel", "Ok"} : std::vector{"Ok"s};
    first.HarmlessButton = 0;
    desk.Show(first);
    context.RunMessages();
    for (const std::string nag : {"nag 1", "nag 2"}) {
      desk.Show(Request(nag, Nag, 7));
      context.RunMessages();
      EXPECT_THAT(ui.Texts(), ElementsAre("unread\n\n" + nag));
    }
    EXPECT_THAT(answers, ElementsAre(Pair("nag 1", 1)));
    EXPECT_EQ(ui.Alerts[0].Request.Buttons[1], isQuestion ? "Ok" : "OK");
    EXPECT_EQ(ui.Alerts[0].Request.HarmlessButton, isQuestion ? 0 : 1);
    EXPECT_EQ(desk.Asks(7), isQuestion);
    EXPECT_FALSE(desk.Asks(8));
    if (isQuestion) desk.Show(first);
    context.RunMessages();
    EXPECT_EQ(ui.Alerts.size(), 1u) << "a second question waits";
    answers.clear();
    ui.AnswerFirst(isQuestion ? 1 : 0);
    EXPECT_THAT(answers,
                ElementsAre(Pair("unread", isQuestion ? 1 : 0), Pair("nag 2", isQuestion ? 1 : 0)));
    context.RunMessages();
    EXPECT_EQ(ui.CloseFirst(), isQuestion) << "now it is asked";
  }
}

TEST_F(AlertDeskTest, MoreRemindersThanBoxesAreRowsUntilTheLastIsAnswered) {
  using enum AlertRole;
  ui.MostBoxes = 2;
  ui.Busy = "busy";
  const auto places = [this] {
    std::vector<std::pair<std::string, int32>> found;
    for (const auto& alert : ui.Alerts) found.emplace_back(alert.Request.Text, alert.Place);
    return found;
  };
  const auto show = [this](const char* text, AlertRole role = Delivery) {
    desk.Show(Request(text, role));
    context.RunMessages();
  };
  show("an error", Notice);
  show("busy", Question);
  show("a");
  EXPECT_THAT(places(), ElementsAre(Pair("an error", 0), Pair("busy", 1), Pair("a", 2)));
  show("b");
  EXPECT_THAT(places(), ElementsAre(Pair("an error", 0), Pair("busy", 1), Pair("a", RowPlace),
                                    Pair("b", RowPlace)));
  ui.AnswerText("busy", 1);
  ui.AnswerText("a", 1);
  show("c", Prewarning);
  EXPECT_EQ(ui.Alerts.back().Place, RowPlace) << "the window stays while it has a row";
  for (int i = 0; i < 100; ++i) desk.Show(Request("heap", Delivery));
  context.RunMessages();
  EXPECT_EQ(ui.Alerts.size(), 103u) << "rows need no place";
  while (ui.Alerts.size() > 1) ui.AnswerText(ui.Alerts.back().Request.Text, 1);
  show("d");
  EXPECT_EQ(ui.Alerts.back().Place, 1);
}

TEST_F(AlertDeskTest, AHeapIsShownTogether) {
  ui.MostBoxes = 1;
  desk.Show(Request("first", AlertRole::Delivery));
  context.RunMessages();
  desk.Show(Request("second", AlertRole::Delivery));
  context.Queue.Post(Message(EVENT_DEALT_WITH));
  for (int turn = 0; turn < 5000; ++turn) desk.OpenWaiting();
  EXPECT_EQ(ui.Alerts.size(), 1u) << "more may come";
  desk.OpenWaiting();
  EXPECT_EQ(ui.Alerts.size(), 2u) << "but not for ever";
  desk.Show(Request("third", AlertRole::Delivery));
  desk.OpenWaiting();
  EXPECT_EQ(ui.Alerts.size(), 2u) << "each heap anew";
  context.RunMessages();
  EXPECT_EQ(ui.Alerts.size(), 3u);
}

TEST_F(AlertDeskTest, AnAnswerCountsOnceAndAnImpossibleOneIsHarmless) {
  desk.Show(Request("a"));
  context.RunMessages();
  const AlertId id = ui.Alerts[0].Id;
  desk.Answered(id + 1, 0);
  EXPECT_THAT(answers, IsEmpty());
  desk.Answered(id, 2);
  desk.Answered(id, 0);
  EXPECT_THAT(answers, ElementsAre(Pair("a", 1)));
}

TEST_F(AlertDeskTest, WithoutAScreenTheTextGoesToStandardError) {
  ui.Screen = false;
  desk.Show(Request("nobody sees this"));
  testing::internal::CaptureStderr();
  context.RunMessages();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Kestrin: nobody sees this\n");
  EXPECT_THAT(answers, ElementsAre(Pair("nobody sees this", 1)));
  EXPECT_THAT(ui.History, IsEmpty());
  EXPECT_TRUE(desk.Empty());
}

class FakeRecorder final : public AlertRecorder {
 public:
  void Shown(AlertRequest& request) override { Open.insert(request.Text); }
  void Opening() override {}
  void Answered(const AlertRequest& request, int) override { Open.erase(request.Text); }
  void PutOff(const AlertRequest& request) override { Open.erase(request.Text); }
  std::set<std::string> Open;
};

TEST_F(AlertDeskTest, AForcedEndAnswersEverythingHarmlesslyAndNothingAsFarAsTheRecordGoes) {
  FakeRecorder recorder;
  desk.RecordWith(&recorder);
  desk.Show(Request("given up", AlertRole::Prompt));
  desk.DismissPrompts();
  std::thread([this] { desk.Show(Request("from a worker", AlertRole::Delivery)); }).join();
  for (int i = 0; i < 25; ++i) desk.Show(Request(std::to_string(i), AlertRole::Nag, 1u + i));
  context.RunMessages();
  desk.Show(Request("late", AlertRole::Nag, 1));
  AlertRequest stubborn = Request("stubborn");
  stubborn.Done = [this](int) { desk.Show(Request("after all")); };
  desk.Show(stubborn);
  ASSERT_TRUE(ui.AnswerText("22", 0));

  desk.EndByForce();
  EXPECT_EQ(recorder.Open.size(), 28u) << "with the prompt, of which nothing is recorded elsewhere";
  EXPECT_TRUE(recorder.Open.contains("from a worker"));
  EXPECT_TRUE(recorder.Open.contains("late"));
  EXPECT_FALSE(recorder.Open.contains("0")) << "a later one took its place";
  EXPECT_FALSE(recorder.Open.contains("22"));
  EXPECT_THAT(ui.Alerts, IsEmpty());
  EXPECT_TRUE(desk.Empty());
  EXPECT_EQ(answers.size(), 29u);
  for (const auto& [text, which] : answers) EXPECT_EQ(which, text == "22" ? 0 : 1) << text;
  EXPECT_THAT(answers.back(), Pair("after all", 1));
}

TEST_F(AlertDeskTest, APromptWaitsForNobodyAndIsRaisedWhenItIsAskedForAgain) {
  desk.Show(Request("early", AlertRole::Prompt));
  desk.DismissPrompts();
  for (int i = 0; i < AlertDesk::MaxOpenAlerts + 5; ++i) desk.Show(Request("reminder"));
  context.RunMessages();
  AlertRequest prompt = Request("Save?", AlertRole::Prompt);
  prompt.Set = 7;
  EXPECT_FALSE(desk.RaisePrompt(7));
  desk.Show(prompt);
  EXPECT_TRUE(desk.RaisePrompt(7)) << "it is on its way";
  context.RunMessages();
  EXPECT_EQ(ui.Texts().back(), "Save?");
  EXPECT_EQ(ui.Alerts.size(), AlertDesk::MaxOpenAlerts + 1u);
  EXPECT_TRUE(desk.RaisePrompt(7));
  EXPECT_THAT(ui.Calls, ElementsAre("RaiseAlert"));
  EXPECT_FALSE(desk.RaisePrompt(8));

  desk.Show(Request("another", AlertRole::Prompt));
  desk.DismissPrompts();
  EXPECT_THAT(answers, ElementsAre(Pair("early", 1), Pair("Save?", 1), Pair("another", 1)));
  context.RunMessages();
  EXPECT_EQ(ui.Alerts.size(), 24u);
  while (ui.CloseFirst()) context.RunMessages();
  EXPECT_EQ(answers.size(), 32u);
}

TEST(MessageQueueTest, WhatOnlyTellsThatSomethingHasChangedWaitsOnce) {
  for (const MessageCode code : {EVENT_SETS_CHANGED, ALERTS_WAITING, SETTINGS_CHANGED,
                                 EDITS_CHANGED, PASSES_AT_REST, SETS_OPENED, DELIVER_EVENTS}) {
    TestContext context;
    for (int i = 0; i < 2; ++i) context.Queue.Post(code);
    int taken = 0;
    while (context.Queue.Take()) ++taken;
    EXPECT_EQ(taken, code == DELIVER_EVENTS ? 2 : 1) << code;
  }
}

TEST(NoticesTest, EachKindHasItsTitleAndButtonAndHoldsTheApplication) {
  TestContext context;
  context.Notes.ReportCompoundError("Could not open \"", "a", "\".");
  context.Notes.InformUser("Good.");
  context.Notes.Inform("Help file error", "None.", "Cancel");
  EXPECT_EQ(context.Holding.Count(), 3);
  context.RunMessages();
  std::vector<std::string> said;
  for (const auto& [id, request, place] : context.Ui.Alerts)
    said.push_back(request.Title + ": " + request.Text + " [" + request.Buttons.at(0) + "]");
  EXPECT_THAT(said, ElementsAre("Kestrin recoverable error: Could not open \"a\". [Continue]",
                                "Kestrin: Good. [OK]", "Help file error: None. [Cancel]"));
  while (context.Ui.CloseFirst()) continue;
  EXPECT_EQ(context.Holding.Count(), 0);
  EXPECT_TRUE(context.Queue.Holds(QUIT_REQUESTED));
}

TEST(WorkerNoticesTest, AWorkerWaitsForTheButtonOrAForcedEnd) {
  for (const bool byForce : {false, true}) {
    TestContext context;
    std::promise<void> asked;
    std::atomic<bool> returned = false;
    context.Queue.SetWakeUp([&asked] { asked.set_value(); });
    std::thread worker([&] {
      context.Notes.ReportError("From a worker.");
      returned = true;
    });
    asked.get_future().wait();
    context.Queue.SetWakeUp(nullptr);
    context.RunMessages();
    EXPECT_EQ(context.Holding.Count(), 1);
    EXPECT_FALSE(returned);
    if (byForce)
      context.Alerts.EndByForce();
    else
      EXPECT_TRUE(context.Ui.AnswerText("From a worker.", 0));
    worker.join();
    if (byForce) std::thread([&] { context.Notes.InformUser("Too late: not waited for."); }).join();
    EXPECT_EQ(context.Holding.Count(), 0);
  }
}

TEST(NoticesDeathTest, AFatalErrorEndsTheProcessWithoutItsCleaningUp) {
  for (const bool screen : {true, false})
    EXPECT_EXIT(
        {
          std::atexit([] { std::_Exit(9); });
          TestContext context;
          context.Ui.Screen = screen;
          std::thread([&context] { context.Notes.HandleErrorAndExit("It is over."); }).join();
        },
        testing::ExitedWithCode(0), "Kestrin error: It is over\\.");
}

}  // namespace
}  // namespace kestrin
