// How the application starts, what a second start does, and how it ends.
#include <filesystem>

#include "SystemTest.h"

namespace kestrin {
namespace {

using testing::Contains;
using testing::Field;
using testing::Not;
using testing::StartsWith;

class RolesTest : public SystemTest {
 protected:
  /// A set with a message that comes in an hour.
  std::string MakeSet(const std::string& name) const {
    const std::string path = Path(name);
    WriteTea(path, Now() + 3600, Now());
    return path;
  }
  auto HasWindow(const std::string& title) {
    return Contains(Field(&Screen::ShownWindow::title, StartsWith(title)));
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
  EXPECT_THAT(TheScreen().Windows(), Not(HasWindow("day")));
  const pid_t process = ProcessOf(ApplicationBusName);
  EXPECT_EQ(Start({})->Wait(), 0);
  WaitForWindow("day");

  Press(alert, "Ok");
  EXPECT_EQ(Start({MakeSet("other.kestrin")})->Wait(), 0);
  WaitForWindow("other");
  EXPECT_THAT(TheScreen().Windows(), HasWindow("day"));
  EXPECT_EQ(ProcessOf(ApplicationBusName), process);
}

TEST_F(RolesTest, TellsOnceThatTheDelivererIsMissing) {
  const std::string alone = Path("kestrin");
  std::filesystem::copy_file(KESTRIN, alone);
  const auto application = Start({MakeSet("one.kestrin")}, true, alone);
  const Reader::Alert alert =
      WaitForAlert("Kestrin was unable to locate its background executable");
  EXPECT_EQ(TheReader().Alerts().size(), 1u);
  Press(alert, "Continue");
  WaitForWindow("one");

  // Opening another set sends its time, and so does quitting: an alert would keep it from that.
  EXPECT_EQ(Start({MakeSet("two.kestrin")}, true, alone)->Wait(), 0);
  PressKeys("two", "ctrl+q");
  EXPECT_EQ(application->Wait(), 0) << application->Errors();
  EXPECT_FALSE(HasOwner(BackgroundBusName));
}

TEST_F(RolesTest, ADamagedFileIsNamedAndLeftAsItIs) {
  const std::string good = MakeSet("good.kestrin"), damaged = MakeSet("damaged.kestrin");
  const std::string bytes = ReadFile(damaged).substr(0, ReadFile(damaged).size() / 2);
  WriteFile(damaged, bytes);
  const auto application = StartWithWindow({damaged, good}, "good");
  const Reader::Alert alert = WaitForAlert("Kestrin: Attempt to read event set");
  EXPECT_EQ(alert.text, "Kestrin: Attempt to read event set " + damaged +
                            " failed because a file error occurred.  The file may be corrupted.");
  Press(alert, alert.Labels().at(0));
  PressKeys("good", "ctrl+q");
  EXPECT_EQ(application->Wait(), 0) << application->Errors();
  EXPECT_EQ(ReadFile(damaged), bytes);
}

}  // namespace
}  // namespace kestrin
