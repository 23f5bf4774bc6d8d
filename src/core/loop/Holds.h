// What keeps the application alive: windows, open alerts, running commands.
#pragma once

#include <atomic>

#include "core/loop/MessageQueue.h"

namespace kestrin {

/// Counts holds. Any thread. When the last one is given back, QUIT_REQUESTED is posted.
class Holds {
 public:
  explicit Holds(MessageQueue& queue) : queue_(queue) {}

  void ProcessHold() { ++count_; }
  void ProcessDone();
  int32 Count() const { return count_; }

 private:
  MessageQueue& queue_;
  std::atomic<int32> count_ = 0;
};

}  // namespace kestrin
