// The system's desktop: what files are called, and in what state the programs find themselves that
// are started. Every started program reports through a pipe, so nobody waits by the clock.
#include "session/DesktopFiles.h"

#include <signal.h>

#include "session/SessionBus.h"
#include "session/ShellCommand.h"
#include "session/Spawn.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

/// What a program says of itself: its argument, folder, input, whether it leads a session, and the
/// blocked and ignored signals (without 32 and 33, which belong to the C library).
const std::string Report =
    "read -r line || line=nothing\n"
    "leads=$(test $(cut -d' ' -f6 /proc/$$/stat) = $$ && echo leader)\n"
    "signals=$(sed -n 's/^Sig[BI][lg][kn]:\\t//p' /proc/$$/status | tr '\\n' ' ' |"
    "  sed 's/ 0000000180000000/ 0000000000000000/')\n"
    "echo \"$1|$PWD|$line|$leads|$signals\" >";
const std::string Apart = "|nothing|leader|0000000000000000 0000000000000000 ";

/// The files, once for all tests: GLib reads the folders of the environment once.
struct Desk {
  Desk() {
    for (const char* folder : {"home", "data/mime", "data/applications", "config", "elsewhere"})
      fs::create_directories(In(folder));
    Write("data/mime/globs2", "50:application/x-tea:*.tea\n");
    Write("config/mimeapps.list",
          "[Default Applications]\napplication/x-tea=pot.desktop\ninode/directory=pot.desktop\n");
    const std::string entry = "[Desktop Entry]\nType=Application\nName=Tea Pot\nExec=";
    Write("data/applications/pot.desktop", entry + In("script") + " %f\n");
    Write("entry.desktop", entry + In("script") + "\nPath=" + In("elsewhere") + "\n");
    Write("broken.desktop", "[Desktop Entry]\nType=Link\nName=No application\n");
    Write("no program.desktop", "[Desktop Entry]\nType=Application\nName=No program\n");
    Write("script", "#!/bin/sh\n" + Report + In("pipe") + "\n", 0700);
    Write("no interpreter", "#!" + In("nowhere") + "\n", 0700);
    Write("marked", "neither one nor the other", 0700);
    Write("unmarked", "#!/bin/sh\n");
    Write("green.tea", "leaves");
    Write("of no type.qqq", "\x01");
    fs::copy_file("/bin/true", In("program"));
    fs::create_symlink("program", In("link"));
    fs::create_symlink("gone", In("dangling"));
  }
  std::string In(const std::string& name) const { return root.path + "/" + name; }
  void Write(const std::string& name, const std::string& text, mode_t mode = 0600) const {
    WriteFile(In(name), text, mode);
  }

  TemporaryFolder root;
  LinePipe pipe{In("pipe")}, fakeEntry{In("pipe.desktop")};
  ScopedVariables variables{{{"HOME", In("home")},
                             {"XDG_DATA_HOME", In("data")},
                             {"XDG_CONFIG_HOME", In("config")},
                             {"XDG_DATA_DIRS", In("nowhere")},
                             {"XDG_CONFIG_DIRS", In("nowhere")},
                             {"XDG_RUNTIME_DIR", In("nowhere")},
                             {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + In("nowhere")},
                             {"DISPLAY", ""}}};
};

class DesktopFilesTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { desk_ = std::make_unique<Desk>(); }
  static void TearDownTestSuite() { desk_.reset(); }
  static std::string In(const std::string& name) { return desk_->In(name); }
  /// The next report; empty when none comes.
  static std::string Reported() { return desk_->pipe.NextLine(); }

  // This process keeps signals from itself; what it starts must not inherit that.
  DesktopFilesTest() {
    sigset_t term;
    sigemptyset(&term);
    sigaddset(&term, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &term, nullptr);
    signal(SIGPIPE, SIG_IGN);
  }

 private:
  static inline std::unique_ptr<Desk> desk_;
};

TEST_F(DesktopFilesTest, FilesAreDescribed) {
  const std::pair<const char*, FileDescription> rows[] = {
      {"script", {true, true, "script"}},
      {"program", {true, true, "program"}},
      {"link", {true, true, "link"}},
      {"no interpreter", {true, true, "no interpreter"}},
      {"marked", {true, false, ""}},
      {"unmarked", {true, false, ""}},
      {"entry.desktop", {true, true, "Tea Pot"}},
      {"broken.desktop", {true, false, ""}},
      {"green.tea", {true, false, "Tea Pot"}},
      {"elsewhere", {true, false, "Tea Pot"}},
      {"of no type.qqq", {true, false, ""}},
      {"dangling", {true, false, ""}},
      {"pipe", {true, false, ""}},
      {"pipe.desktop", {true, false, ""}},
      {"gone", {false, false, ""}},
      {"script/below a file", {false, false, ""}},
  };
  for (const auto& [name, expected] : rows) {
    const FileDescription found = DescribeFile(In(name));
    EXPECT_EQ(found.Exists, expected.Exists) << name;
    EXPECT_EQ(found.IsApplication, expected.IsApplication) << name;
    EXPECT_EQ(found.ApplicationName, expected.ApplicationName) << name;
  }
}

TEST_F(DesktopFilesTest, WhatIsLaunchedLivesApart) {
  const std::pair<const char*, std::string> rows[] = {
      {"script", "|" + In("home") + Apart},
      {"entry.desktop", "|" + In("elsewhere") + Apart},
      {"green.tea", In("green.tea") + "|" + In("home") + Apart},
      {"elsewhere", In("elsewhere") + "|" + In("home") + Apart},
  };
  for (const auto& [name, expected] : rows) {
    EXPECT_TRUE(LaunchFile(In(name))) << name;
    EXPECT_EQ(Reported(), expected) << name;
  }
}

TEST_F(DesktopFilesTest, WhatCannotBeLaunchedSaysSo) {
  for (const char* name : {"no interpreter", "marked", "broken.desktop", "no program.desktop",
                           "of no type.qqq", "dangling", "pipe", "pipe.desktop", "gone"})
    EXPECT_FALSE(LaunchFile(In(name))) << name;
}

TEST_F(DesktopFilesTest, AShellCommandIsWaitedForAndLivesApart) {
  EXPECT_EQ(WaitForEnd(StartShell("set -- 'a \"b\"'\n" + Report + In("pipe"))), 0);
  EXPECT_EQ(Reported(), "a \"b\"|" + In("home") + Apart);
  EXPECT_EQ(WaitForEnd(StartShell("exit 3")), 3);
  EXPECT_EQ(WaitForEnd(StartShell("kill -9 $$")), 128 + 9);
  fs::rename(In("home"), In("home moved"));
  EXPECT_EQ(WaitForEnd(StartShell("pwd >" + In("pipe"))), 0);
  fs::rename(In("home moved"), In("home"));
  EXPECT_NE(Reported(), "") << "a home folder that is gone stops nothing";
}

}  // namespace
}  // namespace kestrin
