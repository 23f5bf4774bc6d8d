// How the program tells the user something.
#pragma once

#include <string>
#include <string_view>
#include <thread>

#include "core/loop/AlertDesk.h"
#include "core/loop/Holds.h"
#include "core/ports/UserInterface.h"

namespace kestrin {

/// On the main thread these queue their alert, hold the application until it is closed, and return
/// at once; another thread waits until the user has pressed the button (or the program ends).
class Notices {
 public:
  /// Built in the main thread.
  Notices(AlertDesk& alerts, Holds& holds, UserInterface& ui);

  void ReportError(std::string_view text);
  void ReportCompoundError(std::string_view a, std::string_view b, std::string_view c);
  void InformUser(std::string_view text);
  /// An information alert with a title and button of its own.
  void Inform(std::string_view title, std::string_view text, std::string_view button);
  /// Waits, in any thread, then ends the process with status 0 without saving anything.
  [[noreturn]] void HandleErrorAndExit(std::string_view text);

 private:
  void Tell(AlertRequest request);

  AlertDesk& alerts_;
  Holds& holds_;
  UserInterface& ui_;
  std::thread::id mainThread_;
};

/// A reason as the second paragraph of a notice; nothing when there is none.
inline std::string Because(const std::string& reason) {
  return reason.empty() ? "" : "\n\n" + reason;
}

}  // namespace kestrin
