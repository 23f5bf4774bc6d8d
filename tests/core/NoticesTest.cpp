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
  const struct {
    std::function<void(Notices&)> tell;
    const char *title, *text, *button;
  } cases[] = {
      {[](Notices& n) { n.ReportCompoundError("Could not open \"", "a", "\"."); },
       "Kestrin recoverable error", "Could not open \"a\".", "Continue"},
      {[](Notices& n) { n.InformUser("Good."); }, "Kestrin", "Good.", "OK"},
      {[](Notices& n) { n.Inform("Help file error", "None.", "Cancel"); }, "Help file error",
       "None.", "Cancel"},
  };
  for (const auto& each : cases) {
    TestContext context;
    each.tell(context.Notes);
    EXPECT_EQ(context.Holding.Count(), 1) << "the application stays until the user has read it";
    context.RunMessages();
    const AlertRequest request = context.Ui.Alerts.at(0).Request;
    EXPECT_EQ(request.Title, each.title);
    EXPECT_EQ(request.Text, each.text);
    EXPECT_THAT(request.Buttons, ElementsAre(each.button));
    context.Ui.AnswerFirst(0);
    EXPECT_EQ(context.Holding.Count(), 0);
    EXPECT_TRUE(context.Queue.Holds(QUIT_REQUESTED));
  }
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
    EXPECT_TRUE(byForce ? context.Alerts.EndByForce().size() == 1
                        : context.Ui.AnswerText("From a worker.", 0));
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
