// The road to the background deliverer, as a port.
#pragma once

#include <optional>
#include <string>

#include "support/Message.h"

namespace kestrin {

/// Main thread. Nothing but Finish waits for the deliverer or the bus. When a deliverer that ran is
/// gone, BACKGROUND_GONE is posted.
class BackgroundMessenger {
 public:
  virtual ~BackgroundMessenger() = default;
  /// Reaches the deliverer by its bus name, letting the bus start it, and hands it the message (may
  /// be null). If that fails, starts `file` and lets the bus know it. What has come of it is posted
  /// as BACKGROUND_LAUNCHED; with an empty `file` nothing but the name is tried, and nothing
  /// posted. A message that comes while an earlier one is under way takes its place.
  virtual void Launch(const Message* message, const std::string& file) = 0;
  /// Asks a running deliverer to quit.
  virtual void AskToQuit() = 0;
  /// When leaving: waits, a second at most, for what is under way. The BACKGROUND_LAUNCHED that
  /// comes of it is returned, not posted.
  virtual std::optional<Message> Finish() = 0;
};

}  // namespace kestrin
