// How the application starts, what a second start does, and how it ends.
#include <algorithm>
#include <filesystem>

#include "SystemTest.h"

namespace kestrin {
namespace {

class RolesTest : public SystemTest {
 protected:
  /// A set with a message that comes in an hour.
  std::string MakeSet(const std::string& name) const {
    const std::string path = Path(name);
    WriteTea(path, Now() + 3600, Now());
    return path;
  }
  bool HasWindow(const std::string& title) {
    const auto windows = TheScreen().Windows();
    return std::any_of(windows.begin(), windows.end(),
                       [&](const auto& window) { return window.title.starts_with(title); });
  }
};

TEST_F(RolesTest, FullQuitEndsTheDeliverer) {
  Remember({MakeSet("day.kestrin")});
  const auto application = StartWithWindow({}, "day");
  ASSERT_TRUE(Until([&] { return When() != 0; }));
  PressKeys("day", "ctrl+shift+q");
  EXPECT_EQ(application->Wait(), 0) << application->Errors();
  EXPECT_TRUE(WaitForEnd(BackgroundBusName));
  EXPECT_EQ(When(), 0);
}

TEST_F(RolesTest, LaterStartsHandOverAndClosingTheLastWindowLeaves) {
  const std::string one = MakeSet("one.kestrin"), two = MakeSet("two.kestrin");
  const auto first = StartWithWindow({one}, "one");
  const pid_t process = ProcessOf(ApplicationBusName);
  EXPECT_EQ(Start({"-background"})->Wait(), 0);
  EXPECT_EQ(Start({})->Wait(), 0);
  std::filesystem::current_path(Path(""));
  EXPECT_EQ(Start({"two.kestrin"})->Wait(), 0);
  std::filesystem::current_path("/");
  WaitForWindow("two");
  EXPECT_EQ(TheScreen().Windows().size(), 2u);
  EXPECT_EQ(ProcessOf(ApplicationBusName), process);

  TheScreen().Close(WaitForWindow("one"));
  EXPECT_TRUE(Until([&] { return TheScreen().Windows().size() == 1; }));
  TheScreen().Close(WaitForWindow("two"));
  EXPECT_EQ(first->Wait(), 0) << first->Errors();
}

TEST_F(RolesTest, AStartDuringAWakeUpOpensTheUserInterface) {
  const int64 when = Soon();
  RememberTea(when);
  ASSERT_NO_FATAL_FAILURE(HandOver(when));
  const Reader::Alert alert = WaitForAlert("Tea");
  EXPECT_FALSE(HasWindow("day"));
  const pid_t process = ProcessOf(ApplicationBusName);
  EXPECT_EQ(Start({})->Wait(), 0);
  WaitForWindow("day");

  Press(alert, "Ok");
  EXPECT_EQ(Start({MakeSet("other.kestrin")})->Wait(), 0);
  WaitForWindow("other");
  EXPECT_TRUE(HasWindow("day"));
  EXPECT_EQ(ProcessOf(ApplicationBusName), process);
}

}  // namespace
}  // namespace kestrin
