#include "SystemTest.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace kestrin {

std::unique_ptr<Screen> SystemTest::screen_;

class EndOfScreen : public testing::Environment {
 public:
  void TearDown() override { SystemTest::screen_.reset(); }
};

namespace {

namespace fs = std::filesystem;

/// What would let the programs meet the person who runs the tests.
constexpr const char* Foreign[] = {
    "DISPLAY",          "WAYLAND_DISPLAY",     "XAUTHORITY",        "SESSION_MANAGER",
    "XDG_SESSION_TYPE", "XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORM",   "XDG_ACTIVATION_TOKEN",
    "LIBRARY_PATH",     "DESKTOP_STARTUP_ID",  "AT_SPI_BUS_ADDRESS"};

std::vector<pid_t> OwnChildren() {
  std::vector<pid_t> children;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream file(entry.path() / "stat");
    const std::string stat((std::istreambuf_iterator<char>(file)), {});
    int parent = 0;
    const size_t afterName = stat.rfind(')');
    if (afterName == std::string::npos ||
        std::sscanf(stat.c_str() + afterName, ") %*c %d", &parent) != 1 || parent != getpid())
      continue;
    children.push_back(std::stoi(name));
  }
  return children;
}

/// Ends what the programs have started and nobody waits for; it has become this process's own.
void EndOrphans(const Screen& screen) {
  for (;;) {
    std::vector<pid_t> orphans = OwnChildren();
    std::erase_if(orphans, [&screen](pid_t child) { return screen.IsPartOf(child); });
    if (orphans.empty()) return;
    for (const pid_t orphan : orphans) {
      kill(orphan, SIGKILL);
      waitpid(orphan, nullptr, 0);
    }
  }
}

}  // namespace

Screen& SystemTest::TheScreen() {
  if (!screen_) screen_ = std::make_unique<Screen>();
  return *screen_;
}

SystemTest::SystemTest() {
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  for (const char* name : Foreign) unsetenv(name);
  for (const auto& [name, folder] : {std::pair{"HOME", "/home"},
                                     {"XDG_CONFIG_HOME", "/config"},
                                     {"XDG_DATA_HOME", "/data"},
                                     {"XDG_STATE_HOME", "/state"},
                                     {"XDG_CACHE_HOME", "/cache"},
                                     {"XDG_DATA_DIRS", "/share"}}) {
    setenv(name, Path(folder + 1).c_str(), 1);
    fs::create_directories(Path(folder + 1));
  }
  setenv("TZ", "UTC", 1);
  setenv("LC_ALL", "C.UTF-8", 1);
  fs::create_directory_symlink("/usr/share/mime", Path("share/mime"));
  TheScreen();
  bus_ = std::make_unique<PrivateBus>();
  fs::permissions(bus_->RuntimeFolder(), fs::perms::owner_all);
  // The bus looks for what it can start in its own folder; the application writes into the
  // person's.
  fs::create_directories(Path("data/dbus-1"));
  fs::create_directory_symlink(bus_->Folder() + "/services", Path("data/dbus-1/services"));
  peer_ = std::make_unique<Peer>(*bus_);
  reader_ = std::make_unique<Reader>(*bus_);
}

SystemTest::~SystemTest() {
  if (HasFailure()) std::fputs(bus_->Errors().c_str(), stderr);
  reader_.reset();
  peer_.reset();
  bus_.reset();
  EndOrphans(*screen_);
}

void SystemTest::Remember(const std::vector<std::string>& sets) const {
  nlohmann::json settings;
  settings["NumberOfSetsToUse"] = {{"type", "LONG"}, {"value", {sets.size()}}};
  settings["SetsToUse"] = {{"type", "BYTE"}, {"texts", sets}};
  fs::create_directories(Path("config/Kestrin"));
  WriteFile(SettingsFile(), settings.dump());
}

std::unique_ptr<Child> SystemTest::Start(std::vector<std::string> arguments, bool screen,
                                         const std::string& program) const {
  arguments.insert(arguments.begin(), program);
  auto environment = bus_->Environment();
  if (screen) environment["DISPLAY"] = screen_->Name();
  return std::make_unique<Child>(std::move(arguments), std::move(environment));
}

std::unique_ptr<Child> SystemTest::StartWithWindow(std::vector<std::string> arguments,
                                                   const std::string& title) {
  auto application = Start(std::move(arguments));
  WaitForWindow(title);
  return application;
}

void SystemTest::HandOver(int64 when) {
  const auto starter = Start({"-background"});
  ASSERT_EQ(starter->Wait(), 0) << starter->Errors();
  ASSERT_TRUE(HasOwner(BackgroundName)) << starter->Errors();
  ASSERT_FALSE(HasOwner(ApplicationName));
  ASSERT_EQ(When(), when);
}

bool SystemTest::Until(const std::function<bool()>& condition) const {
  const auto end = std::chrono::steady_clock::now() + Patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    poll(nullptr, 0, 10);  // files, windows and processes have no one sign to wait for
  }
  return true;
}

bool SystemTest::HasFile(const std::string& path) const { return fs::exists(path); }

Screen::ShownWindow SystemTest::WaitForWindow(const std::string& title) {
  std::vector<Screen::ShownWindow> windows;
  auto found = windows.end();
  if (Until([&] {
        windows = screen_->Windows();
        found = std::find_if(windows.begin(), windows.end(), [&title](const auto& window) {
          return window.title.starts_with(title);
        });
        return found != windows.end();
      }))
    return *found;
  std::string there;
  for (const auto& window : windows) there += "\n" + window.title;
  throw std::runtime_error("no window \"" + title + "\", but:" + there);
}

Reader::Alert SystemTest::WaitForAlert(const std::string& part) {
  std::vector<Reader::Alert> alerts;
  auto found = alerts.end();
  if (Until([&] {
        alerts = reader_->Alerts();
        found = std::find_if(alerts.begin(), alerts.end(), [&part](const auto& alert) {
          return alert.text.find(part) != std::string::npos && !alert.buttons.empty();
        });
        return found != alerts.end();
      }))
    return *found;
  std::string there;
  for (const auto& alert : alerts) there += "\n" + alert.text;
  throw std::runtime_error("no alert with \"" + part + "\", but:" + there);
}

void SystemTest::Press(const Reader::Alert& alert, const std::string& label) {
  const auto button = std::find_if(alert.buttons.begin(), alert.buttons.end(),
                                   [&label](const auto& each) { return each.label == label; });
  if (button == alert.buttons.end() || !reader_->Press(button->object))
    throw std::runtime_error("no button \"" + label + "\" below: " + alert.text);
  EXPECT_TRUE(Until([&] {
    const auto open = reader_->Alerts();
    return std::none_of(open.begin(), open.end(), [&alert](const auto& other) {
      return other.object.owner == alert.object.owner && other.object.path == alert.object.path;
    });
  })) << "the alert stays open: "
      << alert.text;
}

void SystemTest::PressKeys(const Screen::ShownWindow& window, const std::string& keys) {
  screen_->Activate(window);
  EXPECT_TRUE(Until([&] { return screen_->IsActive(window); }));
  screen_->Press(keys);
}

}  // namespace kestrin

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  testing::AddGlobalTestEnvironment(new kestrin::EndOfScreen);
  return RUN_ALL_TESTS();
}
