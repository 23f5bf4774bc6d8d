// Processes that end in the wrong moment.
#include <gmock/gmock.h>
#include <signal.h>

#include "SetMaker.h"
#include "SystemTest.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class LossTest : public SystemTest {
 protected:
  std::string Set() const { return Path("day.kestrin"); }
};

TEST_F(LossTest, AKilledApplicationDeliversAgain) {
  const int64 when = Now() + 3;
  WriteMessageSet(Set(), "Tea", "Put the kettle on.", when, Now());
  Remember({Set()});
  ASSERT_NO_FATAL_FAILURE(HandOver(when));
  WaitForAlert("Tea");
  const std::string before = ReadFile(Set());
  kill(ProcessOf(ApplicationName), SIGKILL);
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(ReadFile(Set()), before);
  EXPECT_EQ(EventIn(Dump(Set()), "Tea").at("NextEventTime"), when);

  // The same file as it would be found more than a minute later.
  const int64 earlier = Now() - 100;
  WriteMessageSet(Set(), "Tea", "Put the kettle on.", earlier, earlier - 1);
  const auto application = StartWithWindow({}, "day");
  const Reader::Alert alert = WaitForAlert("Tea");
  EXPECT_THAT(alert.text, StartsWith("Kestrin event:  Tea\nThe event was missed.  It occurred "));
  Press(alert, "Ok");
  EXPECT_TRUE(Until(
      [&] { return EventIn(Dump(Set()), "Tea").at("NextEventTime") == earlier + SecondsPerDay; }));
}

TEST_F(LossTest, AKilledDelivererStillKnowsItsTime) {
  const int64 when = Now() + 3600;
  WriteMessageSet(Set(), "Tea", "Put the kettle on.", when, Now());
  Remember({Set()});
  ASSERT_NO_FATAL_FAILURE(HandOver(when));
  const pid_t killed = ProcessOf(BackgroundName);
  kill(killed, SIGKILL);
  ASSERT_TRUE(WaitForEnd(BackgroundName));
  EXPECT_EQ(When(), when) << "the bus starts it when it is asked";
  EXPECT_NE(ProcessOf(BackgroundName), killed);
}

TEST_F(LossTest, AnAlertOutlivesTheEndOfTheSession) {
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
    maker.Save(Set());
  }
  Remember({Set()});
  std::string text;
  {
    const auto application = StartWithWindow({}, "day");
    const Reader::Alert alert = WaitForAlert("Buy some.");
    text = alert.text;
    EXPECT_THAT(alert.Labels(), ElementsAre("No more prewarnings", "OK"));
    application->Signal(SIGTERM);
    EXPECT_EQ(application->Wait(), 0) << application->Errors();
  }
  const nlohmann::json saved = EventIn(Dump(Set()), "Tea");
  EXPECT_EQ(saved.at("Status"), WaitingForPrewarning);

  const auto application = StartWithWindow({}, "day");
  const Reader::Alert again = WaitForAlert("Buy some.");
  EXPECT_EQ(again.text, text);
  Press(again, "No more prewarnings");
  EXPECT_TRUE(Until([&] { return EventIn(Dump(Set()), "Tea").at("Status") == WaitingForEvent; }));
  EXPECT_EQ(EventIn(Dump(Set()), "Tea").at("NextEventTime"), when);
  EXPECT_EQ(When(), when);
}

}  // namespace
}  // namespace kestrin
