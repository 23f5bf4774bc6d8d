// The road to the background deliverer, as a port.
#pragma once

#include <string>

#include "support/Message.h"

namespace kestrin {

enum class LaunchResult { Started, AlreadyRunning, InTrash, Failed };

/// Main thread. Each call returns within a few seconds at the worst.
class BackgroundMessenger {
 public:
  virtual ~BackgroundMessenger() = default;
  /// Reaches the deliverer by its bus name, letting the bus start it, and hands it the message (may
  /// be null).
  virtual LaunchResult Launch(const Message* message) = 0;
  /// Starts the file at `path`, then hands over the message.
  virtual LaunchResult LaunchFile(const std::string& path, const Message* message) = 0;
  /// Lets the bus know the file, so that the next Launch works.
  virtual void RegisterFile(const std::string& path) = 0;
  /// Asks a running deliverer to quit.
  virtual void AskToQuit() = 0;
};

}  // namespace kestrin
