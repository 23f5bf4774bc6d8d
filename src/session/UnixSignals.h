// Signals that ask the program to end, turned into a message.
#pragma once

#include <QtCore/QSocketNotifier>
#include <memory>

#include "core/loop/MessageQueue.h"

namespace kestrin {

/// While it lives, the first SIGTERM, SIGINT or SIGHUP posts FORCED_QUIT, and those after it do
/// nothing; SIGHUP and SIGINT stay ignored where the process was started so. SIGPIPE never ends the
/// process. Started programs begin with the ordinary signals. One per process; main thread, after
/// the toolkit's application object.
class UnixSignals {
 public:
  explicit UnixSignals(MessageQueue& queue);
  ~UnixSignals();
  UnixSignals(const UnixSignals&) = delete;
  UnixSignals& operator=(const UnixSignals&) = delete;

 private:
  void Arrived();

  MessageQueue& queue_;
  int descriptor_ = -1;
  bool posted_ = false;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace kestrin
