// A screen reader's part: learns from the application itself, over the accessibility protocol, what
// its windows say, and presses their buttons.
#pragma once

#include <systemd/sd-bus.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Screen.h"
#include "harness/bus/PrivateBus.h"

namespace kestrin {

/// Plays the accessibility service and the registry that applications announce themselves to, on
/// the session's own bus, in a thread of its own since applications wait for the answers.
class Reader : NotCopied {
 public:
  struct Object {
    std::string owner, path;
    bool operator==(const Object&) const = default;
  };
  /// One thing in a window, as it is read out.
  struct Control {
    std::string name, role;
    bool isFocusable, isFocused, isEnabled;
    Object object;
  };
  struct Alert {
    std::string text;
    std::vector<Control> buttons;
    Object object;

    std::vector<std::string> Labels() const;
  };
  struct Area {
    Place corner, size;
  };

  explicit Reader(const PrivateBus& bus);
  ~Reader();

  /// The alerts that are open in any application.
  std::vector<Alert> Alerts();
  /// All that is shown in the windows with that title, from top to bottom; empty when there is
  /// none.
  std::vector<Control> Controls(const std::string& window);
  /// By another control, or by words of its own.
  bool IsLabelled(const Object& object);
  Area AreaOf(const Object& object);
  /// Presses the button without the mouse; false when it has gone.
  bool Press(const Object& button);

 private:
  static int OnCall(sd_bus_message* call, void* self, sd_bus_error* error);
  void Serve();
  std::vector<Object> Windows();
  std::vector<Object> Children(const Object& object);
  std::string Text(const Object& object, const char* property);
  std::string Role(const Object& object);
  uint64_t State(const Object& object);
  void Collect(const Object& object, std::vector<Control>& controls);

  const std::string address_;
  sd_bus* service_ = nullptr;  ///< of the thread alone
  sd_bus* bus_ = nullptr;
  std::atomic<bool> stop_ = false;
  std::mutex guard_;
  std::vector<Object> applications_;
  std::thread thread_;
};

}  // namespace kestrin
