// A screen reader's part: learns from the application itself, over the accessibility protocol, what
// its windows say, and presses their buttons.
#pragma once

#include <systemd/sd-bus.h>

#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Screen.h"
#include "bus/PrivateBus.h"

namespace kestrin {

/// Plays the accessibility service and the registry that applications announce themselves to, on
/// the session's own bus, in a thread of its own since applications wait for the answers.
class Reader {
 public:
  struct Object {
    std::string owner, path;
  };
  struct Button {
    std::string label;
    Object object;
  };
  struct Alert {
    std::string title, text;
    std::vector<Button> buttons;
    Object object;

    std::vector<std::string> Labels() const;
  };

  explicit Reader(const PrivateBus& bus);
  ~Reader();
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  /// The alerts that are open in any application.
  std::vector<Alert> Alerts();
  /// Presses the button without the mouse; false when it has gone.
  bool Press(const Object& button);
  /// One thing in a window, as it is read out.
  struct Control {
    std::string name, role;
    bool isFocusable, isFocused, isEnabled;
    bool isLabelled;  ///< by another control, or by words of its own
    Object object;
  };
  /// All that is shown in the windows with that title, from top to bottom; empty when there is
  /// none.
  std::vector<Control> Controls(const std::string& window);

  struct Area {
    Place corner, size;
  };
  Area AreaOf(const Object& object);

 private:
  static int OnEmbed(sd_bus_message* message, void* self, sd_bus_error* error);
  static int OnGetAddress(sd_bus_message* message, void* self, sd_bus_error* error);
  static int OnGetStatus(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                         void* self, sd_bus_error* error);
  static const sd_bus_vtable registryTable_[], serviceTable_[], statusTable_[];
  void Serve();

  std::vector<Object> Children(const Object& object);
  uint32_t Role(const Object& object);
  std::string Text(const Object& object, const char* property);
  std::string RoleName(const Object& object);
  uint64_t State(const Object& object);
  bool IsShowing(const Object& object);
  bool IsLabelled(const Object& object);
  void CollectButtons(const Object& object, std::vector<Button>& buttons);
  void CollectControls(const Object& object, std::vector<Control>& controls);
  std::vector<Object> Windows();

  const std::string address_;
  sd_bus* service_ = nullptr;  ///< of the thread alone
  sd_bus* bus_ = nullptr;
  int stop_ = -1;
  std::mutex guard_;
  std::vector<Object> applications_;
  std::thread thread_;
};

}  // namespace kestrin
