// A login of the test's own: folders and bus, and the programs on it.
#pragma once

#include <gmock/gmock.h>

#include "Reader.h"
#include "SetMaker.h"
#include "harness/bus/Peer.h"

namespace kestrin {

class SystemTest : public testing::Test {
 protected:
  SystemTest();
  ~SystemTest() override;

  /// A file in the person's folder.
  std::string Path(const std::string& name) const { return home_.path + "/" + name; }
  std::string SettingsFile() const { return Path("config/Kestrin/KestrinSettings.json"); }
  /// These sets are remembered for delivery, and nothing else is set.
  void Remember(const std::vector<std::string>& sets) const;
  /// A set with the daily message "Tea", remembered.
  std::string RememberTea(int64 when) const;
  /// Files of the type are opened by this shell script, which is told the file as $1.
  void OpenWith(const std::string& type, const std::string& application, const std::string& script);

  /// Starts the application as the person does, without waiting for anything.
  std::unique_ptr<Child> Start(std::vector<std::string> arguments, bool screen = true,
                               const std::string& program = KESTRIN) const;
  /// The same, until a window whose title begins with `title` is shown.
  std::unique_ptr<Child> StartWithWindow(std::vector<std::string> arguments,
                                         const std::string& title);
  /// `kestrin -background`: it has left again with status 0, and the deliverer knows `when`.
  void HandOver(int64 when, bool screen = true);

  Screen::ShownWindow WaitForWindow(const std::string& title);
  /// Waits until the window is in front.
  Screen::ShownWindow InFront(const std::string& title);
  void PressKeys(const std::string& title, const std::string& keys);
  /// The first control of that name and role.
  Reader::Control WaitForControl(const std::string& window, const std::string& name,
                                 const std::string& role);
  void Click(const Reader::Control& control);
  /// The alert whose text holds `part`, with its buttons.
  Reader::Alert WaitForAlert(const std::string& part);
  /// Presses the button as a screen reader does, and waits for the alert to close.
  void Press(const Reader::Alert& alert, const std::string& label);
  /// Clicks the first button, once the application has been told where its alert stands.
  void ClickAway(const Reader::Alert& alert);

  pid_t ProcessOf(const char* name) { return peer_->ProcessOf(name); }
  bool HasOwner(const char* name) { return peer_->HasOwner(name); }
  bool WaitForEnd(const char* name = ApplicationBusName) {
    return peer_->WaitForOwner(name, false);
  }
  /// The moment the deliverer waits for.
  int32 When() { return peer_->When(); }

  static int64 Now() { return RealTime() / 1000000; }
  /// Far enough ahead for the application to start, hand over and leave before.
  static int64 Soon() { return Now() + 3; }
  PrivateBus& Bus() { return *bus_; }
  Screen& TheScreen() { return screen_; }
  Reader& TheReader() { return *reader_; }

 private:
  void ExpectClosed(const Reader::Alert& alert);

  Screen screen_;
  TemporaryFolder home_;
  std::unique_ptr<PrivateBus> bus_;
  std::unique_ptr<Peer> peer_;
  std::unique_ptr<Reader> reader_;
};

}  // namespace kestrin
