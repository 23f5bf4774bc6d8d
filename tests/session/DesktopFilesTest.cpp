// The system's desktop: what files are called, and in what state the programs find themselves that
// are started. Every started program reports through a pipe, so nobody waits by the clock.
#include "session/DesktopFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

#include "session/SessionBus.h"
#include "session/ShellCommand.h"

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
const std::string Apart = "|nothing|leader|0000000000000000 0000000000000000 \n";

class DesktopFilesTest : public testing::Test {
 protected:
  // GLib reads the folders of the environment once.
  static void SetUpTestSuite() {
    std::string pattern = fs::temp_directory_path() / "kestrin-desktop-XXXXXX";
    root_ = mkdtemp(pattern.data());
    for (const char* folder : {"home", "data/mime", "data/applications", "config", "elsewhere"})
      fs::create_directories(root_ / folder);
    SetEnvironment("HOME", In("home"));
    SetEnvironment("XDG_DATA_HOME", In("data"));
    SetEnvironment("XDG_CONFIG_HOME", In("config"));
    for (const char* name : {"XDG_DATA_DIRS", "XDG_CONFIG_DIRS", "XDG_RUNTIME_DIR"})
      SetEnvironment(name, In("nowhere"));
    SetEnvironment("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + In("nowhere"));
    SetEnvironment("DISPLAY", "");
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
    Write("of no type.qqq", std::string(1, '\x01'));
    fs::copy_file("/bin/true", root_ / "program");
    fs::create_symlink("program", root_ / "link");
    fs::create_symlink("gone", root_ / "dangling");
    for (const char* pipe : {"pipe", "pipe.desktop"}) mkfifo(In(pipe).c_str(), 0600);
  }
  static void TearDownTestSuite() {
    environment_.clear();
    fs::remove_all(root_);
  }
  static void SetEnvironment(const char* name, const std::string& value) {
    environment_.push_back(std::make_unique<ScopedVariable>(name, value));
  }
  static std::string In(const std::string& name) { return root_ / name; }
  static void Write(const std::string& name, const std::string& text, mode_t mode = 0600) {
    std::ofstream(root_ / name, std::ios::binary) << text;
    chmod(In(name).c_str(), mode);
  }

  // This process keeps signals from itself; what it starts must not inherit that.
  DesktopFilesTest() : pipe_(open(In("pipe").c_str(), O_RDWR | O_CLOEXEC)) {
    sigset_t term;
    sigemptyset(&term);
    sigaddset(&term, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &term, nullptr);
    signal(SIGPIPE, SIG_IGN);
  }
  ~DesktopFilesTest() override { close(pipe_); }

  /// The next report; empty when none comes.
  std::string Reported() const {
    pollfd wait{pipe_, POLLIN, 0};
    if (poll(&wait, 1, 30000) != 1) return "";
    char text[4096];
    const ssize_t got = read(pipe_, text, sizeof text);
    return std::string(text, static_cast<size_t>(got));
  }

 private:
  static inline fs::path root_;
  static inline std::vector<std::unique_ptr<ScopedVariable>> environment_;
  int pipe_;
};

TEST_F(DesktopFilesTest, FilesAreDescribed) {
  const struct {
    const char* Name;
    FileDescription Expected;
  } rows[] = {
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
  for (const auto& row : rows) {
    const FileDescription found = DescribeFile(In(row.Name));
    EXPECT_EQ(found.Exists, row.Expected.Exists) << row.Name;
    EXPECT_EQ(found.IsApplication, row.Expected.IsApplication) << row.Name;
    EXPECT_EQ(found.ApplicationName, row.Expected.ApplicationName) << row.Name;
  }
}

TEST_F(DesktopFilesTest, WhatIsLaunchedLivesApart) {
  const struct {
    const char* Name;
    std::string Expected;
  } rows[] = {
      {"script", "|" + In("home") + Apart},
      {"entry.desktop", "|" + In("elsewhere") + Apart},
      {"green.tea", In("green.tea") + "|" + In("home") + Apart},
      {"elsewhere", In("elsewhere") + "|" + In("home") + Apart},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(LaunchFile(In(row.Name))) << row.Name;
    EXPECT_EQ(Reported(), row.Expected) << row.Name;
  }
}

TEST_F(DesktopFilesTest, WhatCannotBeLaunchedSaysSo) {
  for (const char* name : {"no interpreter", "marked", "broken.desktop", "no program.desktop",
                           "of no type.qqq", "dangling", "pipe", "pipe.desktop", "gone"})
    EXPECT_FALSE(LaunchFile(In(name))) << name;
}

TEST_F(DesktopFilesTest, AShellCommandIsWaitedForAndLivesApart) {
  EXPECT_TRUE(RunShellCommand("set -- 'a \"b\"'\n" + Report + In("pipe")));
  EXPECT_EQ(Reported(), "a \"b\"|" + In("home") + Apart);
  EXPECT_TRUE(RunShellCommand("exit 3"));
  fs::rename(In("home"), In("home moved"));
  EXPECT_TRUE(RunShellCommand("pwd >" + In("pipe")));
  fs::rename(In("home moved"), In("home"));
  EXPECT_NE(Reported(), "") << "a home folder that is gone stops nothing";
}

}  // namespace
}  // namespace kestrin
