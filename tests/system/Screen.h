// The screen, and a person's hands in front of it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "harness/bus/Processes.h"

namespace kestrin {

struct Place {
  int x = 0, y = 0;
  bool operator==(const Place&) const = default;
};

/// The one that DISPLAY names when the process begins. Throws when it does not answer.
class Screen : NotCopied {
 public:
  struct ShownWindow {
    unsigned long id;
    std::string title;
    Place corner;  ///< of what is inside the window's frame
  };

  Screen();
  ~Screen();

  /// What DISPLAY is to say.
  static const std::string& Name();
  /// The application's windows that can be seen, in the order in which they were opened.
  std::vector<ShownWindow> Windows();
  /// Asks for the keyboard's focus, as a click on the taskbar does, and waits until it is there.
  void Activate(const ShownWindow& window);
  /// Asks the window to close, as its close button does.
  void Close(const ShownWindow& window) { AskManager(window, "_NET_CLOSE_WINDOW"); }
  void Click(Place at);
  /// Keys one after another, "+" between those that are held together: "alt+f t".
  void Press(const std::string& keys);
  /// As typed, character by character.
  void Type(const std::string& text);

 private:
  struct Connection;
  void AskManager(const ShownWindow& window, const char* what);
  void Do(std::vector<std::string> action);

  const std::unique_ptr<Connection> connection_;
};

}  // namespace kestrin
