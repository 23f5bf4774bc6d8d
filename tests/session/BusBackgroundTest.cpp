#include "session/BusBackground.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/loop/MessageCodes.h"
#include "session/ActivationFile.h"
#include "session/BusNames.h"
#include "session/SessionBus.h"

namespace kestrin {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

class BusBackgroundTest : public SessionBus {
 protected:
  BusBackgroundTest() { next_.Set("When", int32{5}); }

  void EndDeliverer() {
    const auto id = CallBus("GetConnectionUnixProcessID", {BackgroundBusName}).arguments().value(0);
    ASSERT_NE(id.toInt(), 0);
    kill(id.toInt(), SIGKILL);
    while (HasOwner(BackgroundBusName)) continue;
  }

  std::string ActivationProgram(const char* name) {
    const std::string file = Bus().Folder() + "/services/" + name + ".service";
    return ActivatedProgram(ReadFile(file), name).value_or("none");
  }

  SystemFileDoor files_;
  // Longer than any test takes, on a busy machine too.
  static constexpr milliseconds Long{60'000};
  BusBackground background_{Client(), files_, Long};
  Message next_{NEXT_EVENT_MESSAGE};
};

TEST_F(BusBackgroundTest, ReachesTheDelivererByName) {
  Activatable(BackgroundBusName, Install("KestrinBackground"));
  background_.AskToQuit();
  EXPECT_FALSE(HasOwner(BackgroundBusName));
  EXPECT_EQ(background_.Launch(&next_), LaunchResult::Started);
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
  EXPECT_EQ(background_.Launch(nullptr), LaunchResult::AlreadyRunning);
  const Message nothingPending(NEXT_EVENT_MESSAGE);
  EXPECT_EQ(background_.Launch(&nothingPending), LaunchResult::AlreadyRunning);
  EXPECT_EQ(NextLine(), "deliverer got 53657445 ");
  background_.AskToQuit();
  EXPECT_EQ(NextLine(), "deliverer got 5f515251 ");
}

TEST_F(BusBackgroundTest, AFileStartedByPathIsKnownByNameAfterwards) {
  const fs::path program = Install("KestrinBackground", "it's a \"f\xc3\xbcr\" $x\\n #1\n");
  const int leaked = dup(0);
  EXPECT_EQ(background_.Launch(&next_), LaunchResult::Failed);
  EXPECT_EQ(background_.LaunchFile(program, &next_), LaunchResult::Started);
  close(leaked);
  EXPECT_EQ(NextLine(), "KestrinBackground up: 0 files own session DISPLAY=");
  EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
  background_.RegisterFile(program);
  EXPECT_EQ(ActivationProgram(BackgroundBusName), program);
  EXPECT_EQ(ActivationProgram(ApplicationBusName), program.parent_path() / "kestrin");
  const QStringList known = CallBus("ListActivatableNames").arguments().value(0).toStringList();
  EXPECT_TRUE(known.contains(BackgroundBusName) && known.contains(ApplicationBusName));

  EndDeliverer();
  EXPECT_EQ(background_.Launch(&next_), LaunchResult::Started);
  EXPECT_THAT(NextLine(), StartsWith("KestrinBackground up"));
  EXPECT_EQ(NextLine(), "deliverer got 53657445 5");
}

TEST_F(BusBackgroundTest, RegistersOnlyWhatTheBusDoesNotKnowOrWhatHasGone) {
  const fs::path program = Install("KestrinBackground"), application = Install("kestrin");
  Activatable(BackgroundBusName, program);
  Activatable(ApplicationBusName, application);
  background_.RegisterFile("/elsewhere/KestrinBackground");
  EXPECT_EQ(ActivationProgram(BackgroundBusName), program);
  fs::remove(program);
  background_.RegisterFile("/elsewhere/KestrinBackground");
  EXPECT_EQ(ActivationProgram(BackgroundBusName), "/elsewhere/KestrinBackground");
  EXPECT_EQ(ActivationProgram(ApplicationBusName), "/elsewhere/kestrin");
}

TEST_F(BusBackgroundTest, RefusesTheTrash) {
  Activatable(BackgroundBusName, Install("KestrinBackground", "data/Trash/files"));
  EXPECT_EQ(background_.Launch(&next_), LaunchResult::InTrash);
  EXPECT_TRUE(NoLine());
  for (const char* path : {"/.Trash-1000/files/k", "/mnt/x/.Trash/1000/files/a/k"})
    EXPECT_TRUE(LiesInTrash(files_, path)) << path;
  for (const char* path : {"/Trash/files/k", "/.Trash-x/k", "/.Trash-1000", "/.Trashes/1/k"})
    EXPECT_FALSE(LiesInTrash(files_, path)) << path;
}

TEST_F(BusBackgroundTest, AProgramThatIsMissingOrLeavesFailsAtOnce) {
  Activatable(BackgroundBusName, "/nonexistent/KestrinBackground");
  EXPECT_EQ(background_.Launch(nullptr), LaunchResult::Failed);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(background_.LaunchFile("/nonexistent/KestrinBackground", &next_), LaunchResult::Failed);
  EXPECT_EQ(background_.LaunchFile("/etc/passwd", &next_), LaunchResult::Failed);
  EXPECT_EQ(background_.LaunchFile(Install("Leaving"), &next_), LaunchResult::Failed);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, Long / 2);
  // The one child left is the bus; a zombie would be found first.
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), 0);
}

TEST_F(BusBackgroundTest, AProgramThatHangsStaysWithinTheBoundAndIsNotStartedTwice) {
  const fs::path hanging = Install("Hanging");
  Activatable(BackgroundBusName, hanging);
  BusBackground background(Client(), files_, milliseconds(300));
  const auto fails = [](const auto& call) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(call(), LaunchResult::Failed);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(2500));
  };
  fails([&] { return background.Launch(&next_); });
  EXPECT_THAT(NextLine(), HasSubstr("Hanging up"));
  fails([&] { return background.LaunchFile(hanging, &next_); });
  EXPECT_THAT(NextLine(), HasSubstr("Hanging up"));
  fails([&] { return background.LaunchFile(hanging, nullptr); });
  EXPECT_TRUE(NoLine());
}

TEST_F(BusBackgroundTest, WithoutABusEverythingFailsAtOnce) {
  BusBackground background(QDBusConnection("none"), files_);
  EXPECT_EQ(background.Launch(&next_), LaunchResult::Failed);
  EXPECT_EQ(background.LaunchFile(Install("KestrinBackground"), &next_), LaunchResult::Failed);
  background.RegisterFile("/elsewhere/KestrinBackground");
  EXPECT_EQ(ActivationProgram(BackgroundBusName), "none");
}

TEST(ActivationFile, ReadsWhatOthersWrite) {
  const std::string head = "# made by hand\n[D-BUS Service]\nName = n.n\nUser=x\n";
  struct {
    const char* rest;
    const char* program;
  } const rows[] = {
      {"Exec=/bin/a --flag\n", "/bin/a"},      {"Exec=  \"/opt/a b\" c\n", "/opt/a b"},
      {"Exec=/opt/a\\\\ b\\sc\n", "/opt/a b"}, {"Exec='/opt/\"\\\\'x", "/opt/\"\\x"},
      {"Exec='/unclosed\n", "none"},           {"Exec=/a\\q\n", "none"},
      {"[Other]\nExec=/a\n", "none"},          {"Exec=\n", "none"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(ActivatedProgram(head + row.rest, "n.n").value_or("none"), row.program) << row.rest;
  EXPECT_FALSE(ActivatedProgram(head + "Exec=/a\n", "n.m"));
  EXPECT_FALSE(ActivationText("n.n", "/a\xff"));
}

}  // namespace
}  // namespace kestrin
