// What a process learns about itself: folders, its start, its display, names of files.
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <fstream>

#include "session/DisplayProbe.h"
#include "session/FileUri.h"
#include "session/ProcessInfo.h"
#include "session/SessionBus.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
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
}

TEST(ProcessInfo, FoldersFollowTheStandard) {
  const ScopedVariable home("HOME", "/h"), config("XDG_CONFIG_HOME", std::nullopt),
      state("XDG_STATE_HOME", ""), data("XDG_DATA_HOME", "relative"), cache("XDG_CACHE_HOME", "/c"),
      systems("XDG_DATA_DIRS", "/x:relative::/y"), runtime("XDG_RUNTIME_DIR", "/r");
  EXPECT_EQ(ConfigFolder(), "/h/.config");
  EXPECT_EQ(StateFolder(), "/h/.local/state");
  EXPECT_EQ(DataFolder(), "/h/.local/share");
  EXPECT_EQ(CacheFolder(), "/c");
  EXPECT_EQ(RuntimeFolder(), "/r");
  EXPECT_THAT(DataFolders(), ElementsAre("/h/.local/share", "/x", "/y"));
  EXPECT_EQ(ExecutableFolder(), fs::read_symlink("/proc/self/exe").parent_path());
}

TEST(ProcessInfo, ForgetsHowItWasStarted) {
  const ScopedVariable mark("DBUS_STARTER_ADDRESS", "unix:x"), token("XDG_ACTIVATION_TOKEN", ""),
      id("DESKTOP_STARTUP_ID", "id");
  EXPECT_EQ(ActivationToken(), "id");
  ForgetHowStarted();
  EXPECT_EQ(getenv("DBUS_STARTER_ADDRESS"), nullptr);
}

class DisplayProbeTest : public testing::Test {
 protected:
  const TemporaryFolder temporary_;
  const fs::path folder_{temporary_.path};
  ScopedVariable platform_{"QT_QPA_PLATFORM", std::nullopt}, display_{"DISPLAY", std::nullopt},
      wayland_{"WAYLAND_DISPLAY", std::nullopt}, socket_{"WAYLAND_SOCKET", std::nullopt},
      type_{"XDG_SESSION_TYPE", std::nullopt}, runtime_{"XDG_RUNTIME_DIR", folder_},
      plugins_{"QT_PLUGIN_PATH", folder_};
  DisplayProbeTest() { fs::create_directories(folder_ / "platforms"); }
};

TEST_F(DisplayProbeTest, SaysWhyThereIsNone) {
  EXPECT_THAT(WhyNoDisplay().value_or(""), HasSubstr("DISPLAY is not set"));
  {
    const ScopedVariable platform("QT_QPA_PLATFORM", "offscreen:size=1x1");
    EXPECT_FALSE(WhyNoDisplay());
  }
  const ScopedVariable dead("DISPLAY", "unix:/nonexistent.98765");
  EXPECT_THAT(WhyNoDisplay().value_or(""), HasSubstr("\"unix:/nonexistent.98765\""));
  const ScopedVariable platform("QT_QPA_PLATFORM", "wayland;xcb");
  EXPECT_THAT(WhyNoDisplay().value_or(""), HasSubstr("; "));
}

TEST_F(DisplayProbeTest, FindsAWaylandDisplayOnlyWithTheToolkitsPart) {
  const ScopedVariable wayland("WAYLAND_DISPLAY", "wayland-7");
  std::ofstream(folder_ / "platforms/libqwayland-test.so") << "";
  EXPECT_THAT(WhyNoDisplay().value_or(""), HasSubstr("\"wayland-7\" cannot be reached"));

  const int server = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  (folder_ / "wayland-7").string().copy(address.sun_path, sizeof address.sun_path - 1);
  const void* untyped = &address;
  ASSERT_EQ(bind(server, static_cast<const sockaddr*>(untyped), sizeof address), 0);
  ASSERT_EQ(listen(server, 1), 0);
  EXPECT_FALSE(WhyNoDisplay());
  close(server);
}

}  // namespace
}  // namespace kestrin
