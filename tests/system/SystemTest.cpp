#include "SystemTest.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace kestrin {

namespace {

namespace fs = std::filesystem;

/// What would let the programs meet the person who runs the tests.
constexpr const char* Foreign[] = {
    "DISPLAY",          "WAYLAND_DISPLAY",     "XAUTHORITY",        "SESSION_MANAGER",
    "XDG_SESSION_TYPE", "XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORM",   "XDG_ACTIVATION_TOKEN",
    "LIBRARY_PATH",     "DESKTOP_STARTUP_ID",  "AT_SPI_BUS_ADDRESS"};

/// Ends what the programs have started and nobody waits for; it has become this process's own.
void EndOrphans() {
  const std::string list = "/proc/self/task/" + std::to_string(getpid()) + "/children";
  for (bool found = true; found;) {
    found = false;
    std::ifstream children(list);
    EXPECT_TRUE(children.is_open()) << list;
    for (pid_t child = 0; children >> child;) {
      found = true;
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
  }
}

/// The first of a list that fits, once there is one. Throws what is there instead.
template <typename MakeList, typename Fits, typename Tell>
auto WaitFor(const std::string& wanted, MakeList makeList, Fits fits, Tell tell) {
  auto list = makeList();
  auto found = list.end();
  if (Until([&] {
        list = makeList();
        found = std::find_if(list.begin(), list.end(), fits);
        return found != list.end();
      }))
    return *found;
  std::string there;
  for (const auto& each : list) there += "\n" + tell(each);
  throw std::runtime_error("no " + wanted + ", but:" + there);
}

}  // namespace

SystemTest::SystemTest() {
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  for (const char* name : Foreign) unsetenv(name);
  for (const auto& [name, folder] : {std::pair{"HOME", "home"},
                                     {"XDG_CONFIG_HOME", "config"},
                                     {"XDG_DATA_HOME", "data"},
                                     {"XDG_STATE_HOME", "state"},
                                     {"XDG_CACHE_HOME", "cache"},
                                     {"XDG_DATA_DIRS", "share"}}) {
    setenv(name, Path(folder).c_str(), 1);
    fs::create_directories(Path(folder));
  }
  setenv("TZ", "UTC", 1);
  setenv("LC_ALL", "C.UTF-8", 1);
  fs::create_directory_symlink("/usr/share/mime", Path("share/mime"));
  bus_ = std::make_unique<PrivateBus>();
  bus_->ServeDataFolder(Path("data"));
  peer_ = std::make_unique<Peer>(*bus_);
  reader_ = std::make_unique<Reader>(*bus_);
}

SystemTest::~SystemTest() {
  if (HasFailure()) std::fputs(bus_->Errors().c_str(), stderr);
  reader_.reset();
  peer_.reset();
  bus_.reset();
  EndOrphans();
}

void SystemTest::Remember(const std::vector<std::string>& sets) const {
  nlohmann::json settings;
  settings["NumberOfSetsToUse"] = {{"type", "LONG"}, {"value", {sets.size()}}};
  settings["SetsToUse"] = {{"type", "BYTE"}, {"texts", sets}};
  fs::create_directories(Path("config/Kestrin"));
  WriteFile(SettingsFile(), settings.dump());
}

std::string SystemTest::RememberTea(int64 when) const {
  const std::string set = Path("day.kestrin");
  WriteTea(set, when, Now());
  Remember({set});
  return set;
}

void SystemTest::OpenWith(const std::string& type, const std::string& application,
                          const std::string& script) {
  const std::string program = Path("opener");
  WriteFile(program, "#!/bin/sh\n" + script + "\n", 0755);
  fs::create_directories(Path("data/applications"));
  WriteFile(Path("data/applications/opener.desktop"),
            "[Desktop Entry]\nType=Application\nName=" + application + "\nMimeType=" + type +
                ";\nExec='" + program + "' %f\n");
  WriteFile(Path("config/mimeapps.list"), "[Default Applications]\n" + type + "=opener.desktop\n");
}

std::unique_ptr<Child> SystemTest::Start(std::vector<std::string> arguments, bool screen,
                                         const std::string& program) const {
  arguments.insert(arguments.begin(), program);
  auto environment = bus_->Environment();
  if (screen) environment["DISPLAY"] = Screen::Name();
  return std::make_unique<Child>(std::move(arguments), environment);
}

std::unique_ptr<Child> SystemTest::StartWithWindow(std::vector<std::string> arguments,
                                                   const std::string& title) {
  auto application = Start(std::move(arguments));
  WaitForWindow(title);
  return application;
}

void SystemTest::HandOver(int64 when, bool screen) {
  const auto starter = Start({"-background"}, screen);
  ASSERT_EQ(starter->Wait(), 0) << starter->Errors();
  ASSERT_TRUE(HasOwner(BackgroundBusName)) << starter->Errors();
  ASSERT_FALSE(HasOwner(ApplicationBusName));
  ASSERT_EQ(When(), when);
}

Screen::ShownWindow SystemTest::WaitForWindow(const std::string& title) {
  return WaitFor(
      "window \"" + title + "\"", [this] { return screen_.Windows(); },
      [&title](const auto& window) { return window.title.starts_with(title); },
      [](const auto& window) { return window.title; });
}

Screen::ShownWindow SystemTest::InFront(const std::string& title) {
  const Screen::ShownWindow window = WaitForWindow(title);
  screen_.Activate(window);
  return window;
}

void SystemTest::PressKeys(const std::string& title, const std::string& keys) {
  InFront(title);
  screen_.Press(keys);
}

Reader::Control SystemTest::WaitForControl(const std::string& window, const std::string& name,
                                           const std::string& role) {
  return WaitFor(
      role + " \"" + name + "\" in \"" + window + "\"", [&] { return reader_->Controls(window); },
      [&](const auto& control) { return control.name == name && control.role == role; },
      [](const auto& control) { return control.role + " " + control.name; });
}

void SystemTest::Click(const Reader::Control& control) {
  const auto [corner, size] = reader_->AreaOf(control.object);
  screen_.Click({corner.x + size.x / 2, corner.y + size.y / 2});
}

Reader::Alert SystemTest::WaitForAlert(const std::string& part) {
  return WaitFor(
      "alert with \"" + part + "\"", [this] { return reader_->Alerts(); },
      [&part](const auto& alert) {
        return alert.text.find(part) != std::string::npos && !alert.buttons.empty();
      },
      [](const auto& alert) { return alert.text; });
}

void SystemTest::ExpectClosed(const Reader::Alert& alert) {
  EXPECT_TRUE(Until([&] {
    const auto open = reader_->Alerts();
    return std::none_of(open.begin(), open.end(),
                        [&alert](const auto& other) { return other.object == alert.object; });
  })) << "the alert stays open: "
      << alert.text;
}

void SystemTest::Press(const Reader::Alert& alert, const std::string& label) {
  const auto button = std::find_if(alert.buttons.begin(), alert.buttons.end(),
                                   [&label](const auto& each) { return each.name == label; });
  if (button == alert.buttons.end() || !reader_->Press(button->object))
    throw std::runtime_error("no button \"" + label + "\" below: " + alert.text);
  ExpectClosed(alert);
}

void SystemTest::ClickAway(const Reader::Alert& alert) {
  ASSERT_TRUE(Until([&] {
    const auto windows = screen_.Windows();
    return std::any_of(windows.begin(), windows.end(), [&](const auto& window) {
      return window.corner == reader_->AreaOf(alert.object).corner;
    });
  }));
  Click(alert.buttons.at(0));
  ExpectClosed(alert);
}

}  // namespace kestrin

int main(int argc, char** argv) {
  constexpr char Mark[] = "KESTRIN_TEST_ON_SCREEN";
  std::string onScreen = ON_SCREEN;
  std::vector<char*> again{onScreen.data()};
  again.insert(again.end(), argv, argv + argc + 1);
  testing::InitGoogleMock(&argc, argv);
  if (GTEST_FLAG_GET(list_tests) || getenv(Mark)) return RUN_ALL_TESTS();
  setenv(Mark, "1", 1);
  execv(again[0], again.data());
  return 127;
}
