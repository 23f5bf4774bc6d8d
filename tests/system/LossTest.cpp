// Processes that end in the wrong moment.
#include <signal.h>

#include "SystemTest.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

using LossTest = SystemTest;

TEST_F(LossTest, AKilledApplicationDeliversAgain) {
  const int64 when = Soon();
  const std::string set = RememberTea(when);
  ASSERT_NO_FATAL_FAILURE(HandOver(when));
  WaitForAlert("Tea");
  const std::string before = ReadFile(set);
  kill(ProcessOf(ApplicationBusName), SIGKILL);
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(ReadFile(set), before);
  EXPECT_EQ(SavedTime(set), when);

  // The same file as it would be found more than a minute later.
  const int64 earlier = Now() - 100;
  WriteTea(set, earlier, earlier - 1);
  const auto application = StartWithWindow({}, "day");
  const Reader::Alert alert = WaitForAlert("Tea");
  EXPECT_THAT(alert.text, StartsWith("Kestrin event:  Tea\nThe event was missed.  It occurred "));
  Press(alert, "Ok");
  EXPECT_TRUE(Until([&] { return SavedTime(set) == earlier + SecondsPerDay; }));
}

TEST_F(LossTest, AnAlertOutlivesTheEndOfTheSession) {
  const std::string set = Path("day.kestrin");
  const int64 when = Now() + 3600;
  {
    SetMaker maker(Now() - 10);
    Event& event = maker.AddDaily("Tea", when);
    event.SetApplyPrewarn(true);
    event.SetPrewarnType(Minutes);
    event.SetPrewarnTime(60);
    event.SetApplyPrewarnRepeat(true);
    event.SetPrewarnRepeatType(Minutes);
    event.SetPrewarnRepeatTime(10);
    event.SetPrewarnMessage("Buy some.");
    maker.Save(set);
  }
  Remember({set});
  std::string text;
  {
    const auto application = StartWithWindow({}, "day");
    const Reader::Alert alert = WaitForAlert("Buy some.");
    text = alert.text;
    EXPECT_THAT(alert.Labels(), ElementsAre("No more prewarnings", "OK"));
    application->Signal(SIGTERM);
    EXPECT_EQ(application->Wait(), 0) << application->Errors();
  }
  EXPECT_EQ(SavedEvent(set, "Tea").at("Status"), WaitingForPrewarning);

  const auto application = StartWithWindow({}, "day");
  const Reader::Alert again = WaitForAlert("Buy some.");
  EXPECT_EQ(again.text, text);
  Press(again, "No more prewarnings");
  EXPECT_TRUE(Until([&] { return SavedEvent(set, "Tea").at("Status") == WaitingForEvent; }));
  EXPECT_EQ(SavedTime(set), when);
  EXPECT_EQ(When(), when);
}

}  // namespace
}  // namespace kestrin
