// A login of the test's own: folders, screen and bus, and the programs on it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Reader.h"
#include "Screen.h"
#include "bus/Peer.h"
#include "kestrin/Types.h"

namespace kestrin {

inline constexpr char ApplicationName[] = "vnd.ZR.Kestrin";
inline constexpr char BackgroundName[] = "vnd.ZR.KestrinBackground";

class SystemTest : public testing::Test {
 protected:
  SystemTest();
  ~SystemTest() override;

  /// A file in the person's folder.
  std::string Path(const std::string& name) const { return home_.path + "/" + name; }
  std::string SettingsFile() const { return Path("config/Kestrin/KestrinSettings.json"); }
  /// These sets are remembered for delivery, and nothing else is set.
  void Remember(const std::vector<std::string>& sets) const;

  /// Starts the application as the person does, without waiting for anything.
  std::unique_ptr<Child> Start(std::vector<std::string> arguments, bool screen = true,
                               const std::string& program = KESTRIN) const;
  /// The same, until a window whose title begins with `title` is shown.
  std::unique_ptr<Child> StartWithWindow(std::vector<std::string> arguments,
                                         const std::string& title);
  /// `kestrin -background`: it has left again with status 0, and the deliverer knows `when`.
  void HandOver(int64 when);

  /// Looks again and again; false when patience ends first.
  bool Until(const std::function<bool()>& condition) const;
  bool HasFile(const std::string& path) const;
  Screen::ShownWindow WaitForWindow(const std::string& title);
  /// The alert whose text holds `part`, with its buttons. Throws what is there instead.
  Reader::Alert WaitForAlert(const std::string& part);
  /// Presses the button and waits for the alert to close.
  void Press(const Reader::Alert& alert, const std::string& label);
  void PressKeys(const Screen::ShownWindow& window, const std::string& keys);

  pid_t ProcessOf(const char* name) { return peer_->ProcessOf(name); }
  bool HasOwner(const char* name) { return peer_->HasOwner(name); }
  bool WaitForEnd(const char* name = ApplicationName) { return peer_->WaitForOwner(name, false); }
  /// The moment the deliverer waits for.
  int32 When() { return peer_->When(); }

  static int64 Now() { return RealTime() / 1000000; }
  static Screen& TheScreen();

  PrivateBus& Bus() { return *bus_; }
  Reader& TheReader() { return *reader_; }

 private:
  friend class EndOfScreen;
  static std::unique_ptr<Screen> screen_;

  TemporaryFolder home_;
  std::unique_ptr<PrivateBus> bus_;
  std::unique_ptr<Peer> peer_;
  std::unique_ptr<Reader> reader_;
};

}  // namespace kestrin
