// What a process learns about itself: folders, its start, its display, names of files.
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "session/DisplayProbe.h"
#include "session/FileUri.h"
#include "session/ProcessInfo.h"
#include "session/SessionBus.h"
#include "session/SystemProcesses.h"

namespace kestrin {
namespace {

using testing::ElementsAre, testing::HasSubstr;
namespace fs = std::filesystem;

TEST(FileUri, EveryByteSurvives) {
  std::string path = "/";
  for (int byte = 1; byte < 256; ++byte) path += static_cast<char>(byte);
  const std::string uri = FileUriOf(path);
  EXPECT_EQ(PathOfFileUri(uri), path);
  EXPECT_EQ(uri.find_first_of("\n\xff #?"), std::string::npos);
}

TEST(FileUri, OnlyWholeFileUrisOfThisMachine) {
  for (const char* good : {"file:///a%2Fb", "file:/a/b", "FILE://LocalHost/a/b", "file:///a%2fb"})
    EXPECT_EQ(PathOfFileUri(good), "/a/b") << good;
  for (const char* bad :
       {"", "/a", "a", "http:///a", "file:", "file://", "file://far.away/a", "file:a", "file:///a%",
        "file:///a%4", "file:///a%4g", "file:///a%00b", "file:///a?b", "file:///a#b"})
    EXPECT_FALSE(PathOfFileUri(bad)) << bad;
  EXPECT_FALSE(PathOfFileUri(std::string_view("file:///a%41").substr(0, 11)));
}

TEST(ProcessInfo, FoldersFollowTheStandard) {
  const ScopedVariables variables({{"HOME", "/h"},
                                   {"XDG_CONFIG_HOME", std::nullopt},
                                   {"XDG_STATE_HOME", ""},
                                   {"XDG_DATA_HOME", "relative"},
                                   {"XDG_DATA_DIRS", "/x:relative::/y"},
                                   {"XDG_RUNTIME_DIR", "/r"}});
  EXPECT_EQ(ConfigFolder(), "/h/.config");
  EXPECT_EQ(StateFolder(), "/h/.local/state");
  EXPECT_EQ(DataFolder(), "/h/.local/share");
  EXPECT_EQ(RuntimeFolder(), "/r");
  EXPECT_THAT(DataFolders(), ElementsAre("/h/.local/share", "/x", "/y"));
  EXPECT_EQ(ExecutableFolder(), fs::read_symlink("/proc/self/exe").parent_path());
}

TEST(ProcessInfo, TellsALivingProcessFromADeadOneAndFromItsSuccessor) {
  const SystemProcesses mine;
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    const ProcessOwner self = SystemProcesses().Self();
    (void)!write(ends[1], &self.Started, sizeof self.Started);
    pause();
  }
  ProcessOwner owner{mine.Self().Boot, child, 0};
  ASSERT_EQ(read(ends[0], &owner.Started, sizeof owner.Started), 8);
  EXPECT_TRUE(mine.Lives(mine.Self()));
  EXPECT_TRUE(mine.Lives(owner));
  EXPECT_FALSE(mine.Lives({owner.Boot, child, owner.Started + 1}));
  EXPECT_FALSE(mine.Lives({"another boot", child, owner.Started}));
  kill(child, SIGKILL);
  siginfo_t ended;
  waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT);
  EXPECT_FALSE(mine.Lives(owner)) << "nobody has waited for it yet";
  waitpid(child, nullptr, 0);
  EXPECT_FALSE(mine.Lives(owner));
  close(ends[0]), close(ends[1]);
}

TEST(ProcessInfo, ForgetsHowItWasStarted) {
  const ScopedVariables variables({{"DBUS_STARTER_ADDRESS", "unix:x"},
                                   {"XDG_ACTIVATION_TOKEN", ""},
                                   {"DESKTOP_STARTUP_ID", "id"}});
  EXPECT_EQ(ActivationToken(), "id");
  ForgetHowStarted();
  EXPECT_EQ(getenv("DBUS_STARTER_ADDRESS"), nullptr);
}

TEST(ProcessInfo, WhatASessionManagerAddsIsNoFile) {
  const char* given[] = {"kestrin",
                         "-session",
                         "10c_1_2",
                         "a",
                         "--sm-client-id=7",
                         "--sm-client-id",
                         "7",
                         "-smid",
                         "8",
                         "-backgrounds",
                         "-session=x",
                         "--sm-client-disable",
                         "-background",
                         "-session"};
  std::vector<char*> arguments;
  for (const char*& argument : given) arguments.push_back(const_cast<char*>(argument));
  EXPECT_THAT(ArgumentsOf(static_cast<int>(arguments.size()), arguments.data()),
              testing::ElementsAre("a", "-backgrounds", "-session=x", "-background"));
}

class DisplayProbeTest : public testing::Test {
 protected:
  const TemporaryFolder temporary_;
  const fs::path folder_{temporary_.path};
  const ScopedVariables variables_{{{"QT_QPA_PLATFORM", std::nullopt},
                                    {"DISPLAY", std::nullopt},
                                    {"WAYLAND_DISPLAY", std::nullopt},
                                    {"WAYLAND_SOCKET", std::nullopt},
                                    {"XDG_SESSION_TYPE", std::nullopt},
                                    {"XDG_RUNTIME_DIR", folder_},
                                    {"QT_PLUGIN_PATH", folder_}}};
};

TEST_F(DisplayProbeTest, SaysWhyThereIsNone) {
  EXPECT_THAT(WhyNoDisplay().value_or(""), HasSubstr("DISPLAY is not set"));
  {
    const ScopedVariables platform("QT_QPA_PLATFORM", "offscreen:size=1x1");
    EXPECT_FALSE(WhyNoDisplay());
  }
  const ScopedVariables dead("DISPLAY", "unix:/nonexistent.98765");
  EXPECT_THAT(WhyNoDisplay().value_or(""), HasSubstr("\"unix:/nonexistent.98765\""));
  const ScopedVariables scale("QT_SCALE_FACTOR", "2");
  EXPECT_THAT(DisplayEnvironment(), testing::IsEmpty()) << "others may have a display that works";
  const ScopedVariables platform("QT_QPA_PLATFORM", "wayland;xcb");
  EXPECT_THAT(WhyNoDisplay().value_or(""), HasSubstr("; "));
}

TEST_F(DisplayProbeTest, FindsAWaylandDisplayOnlyWithTheToolkitsPart) {
  const ScopedVariables wayland("WAYLAND_DISPLAY", "wayland-7");
  fs::create_directory(folder_ / "platforms");
  WriteFile(folder_ / "platforms/libqwayland-test.so", "");
  EXPECT_THAT(WhyNoDisplay().value_or(""), HasSubstr("\"wayland-7\" cannot be reached"));
  EXPECT_THAT(DisplayEnvironment(), testing::IsEmpty());

  const int server = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  (folder_ / "wayland-7").string().copy(address.sun_path, sizeof address.sun_path - 1);
  const void* untyped = &address;
  ASSERT_EQ(bind(server, static_cast<const sockaddr*>(untyped), sizeof address), 0);
  ASSERT_EQ(listen(server, 9), 0);
  EXPECT_FALSE(WhyNoDisplay());
  const ScopedVariables others(
      {{"DISPLAY", ":98765"}, {"QT_SCALE_FACTOR", "2"}, {"QT_QPA_PLATFORM", "offscreen"}});
  EXPECT_THAT(DisplayEnvironment(),
              testing::ElementsAre(testing::Pair("QT_SCALE_FACTOR", "2"),
                                   testing::Pair("WAYLAND_DISPLAY", "wayland-7")));
  close(server);
}

}  // namespace
}  // namespace kestrin
