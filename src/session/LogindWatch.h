// What the login manager of the system tells of sleep and of the machine's end.
#pragma once

#include <QtCore/QTimer>
#include <chrono>
#include <future>
#include <thread>

#include "core/loop/MessageQueue.h"

namespace kestrin {

class LogindReceiver;

/// Posts RESUMED when the machine has slept, and FORCED_QUIT before it goes down, which waits for
/// the end of this process as long as the login manager lets it. Without a login manager it does
/// nothing. Main thread, after the toolkit's application object; nothing there waits for the
/// system's bus.
class LogindWatch {
 public:
  /// Connects only after `delay`: no alert waits for it, and what leaves soon does not need it.
  explicit LogindWatch(MessageQueue& queue,
                       std::chrono::milliseconds delay = std::chrono::seconds(1));
  ~LogindWatch();
  LogindWatch(const LogindWatch&) = delete;
  LogindWatch& operator=(const LogindWatch&) = delete;

 private:
  void Begin();

  LogindReceiver* receiver_;
  std::thread connecting_;
  std::future<void> connected_;
  QTimer begin_;
};

}  // namespace kestrin
