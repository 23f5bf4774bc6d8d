#include "core/Notices.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <future>
#include <thread>

#include "fakes/TestContext.h"

namespace kestrin {
namespace {

using testing::ElementsAre;

TEST(NoticesTest, EachKindHasItsTitleButtonAndText) {
  struct Case {
    std::function<void(Notices&)> tell;
    const char* title;
    const char* text;
    const char* button;
    AlertKind kind;
  };
  const Case cases[] = {
      {[](Notices& n) { n.ReportError("Bad."); }, "Kestrin recoverable error", "Bad.", "Continue",
       AlertKind::Warning},
      {[](Notices& n) { n.ReportCompoundError("Could not open \"", "a", "\"."); },
       "Kestrin recoverable error", "Could not open \"a\".", "Continue", AlertKind::Warning},
      {[](Notices& n) { n.InformUser("Good."); }, "Kestrin", "Good.", "OK", AlertKind::Information},
      {[](Notices& n) { n.Inform("Help file error", "None.", "Cancel"); }, "Help file error",
       "None.", "Cancel", AlertKind::Information},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.text);
    TestContext context;
    each.tell(context.Notes);
    EXPECT_EQ(context.Holding.Count(), 1) << "the application stays until the user has read it";
    context.RunMessages();
    const AlertRequest request = context.Ui.Alerts.at(0).Request;
    EXPECT_EQ(request.Title, each.title);
    EXPECT_EQ(request.Text, each.text);
    EXPECT_THAT(request.Buttons, ElementsAre(each.button));
    EXPECT_EQ(request.Kind, each.kind);
    context.Ui.AnswerFirst(0);
    EXPECT_EQ(context.Holding.Count(), 0);
    EXPECT_TRUE(context.Queue.Holds(QUIT_REQUESTED));
  }
}

struct WorkerNoticesTest : testing::Test {
  TestContext context;
  std::promise<void> asked;
  std::atomic<bool> returned = false;
  std::thread worker;

  void AskInAThread() {
    context.Queue.SetWakeUp([this] { asked.set_value(); });
    worker = std::thread([this] {
      context.Notes.ReportError("From a worker.");
      returned = true;
    });
    asked.get_future().wait();
    context.Queue.SetWakeUp(nullptr);
  }
};

TEST_F(WorkerNoticesTest, AWorkerWaitsForTheButton) {
  AskInAThread();
  context.RunMessages();
  EXPECT_EQ(context.Holding.Count(), 1);
  EXPECT_FALSE(returned);
  EXPECT_TRUE(context.Ui.AnswerText("From a worker.", 0));
  worker.join();
  EXPECT_TRUE(returned);
  EXPECT_EQ(context.Holding.Count(), 0);
}

TEST_F(WorkerNoticesTest, AForcedEndBreaksTheWaitAndLaterOnesDoNotBegin) {
  AskInAThread();
  context.RunMessages();
  EXPECT_FALSE(returned);
  EXPECT_EQ(context.Alerts.EndByForce().size(), 1u);
  worker.join();
  std::thread([this] { context.Notes.InformUser("Too late."); }).join();
  EXPECT_EQ(context.Holding.Count(), 0);
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
