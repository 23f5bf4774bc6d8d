#include "core/Notices.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <thread>

#include "fakes/TestContext.h"

namespace kestrin {
namespace {

using testing::ElementsAre;

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
