// What keeps the application alive: windows, open alerts, running commands.
#pragma once

#include <atomic>
#include <map>
#include <mutex>

#include "core/loop/MessageQueue.h"

namespace kestrin {

/// Counts holds. Any thread. When the last one is given back, QUIT_REQUESTED is posted.
class Holds {
 public:
  explicit Holds(MessageQueue& queue) : queue_(queue) {}

  /// `set`: the handle of the set for which something is still open, or 0.
  void ProcessHold(uint64 set = 0);
  void ProcessDone(uint64 set = 0);
  int32 Count() const { return count_; }
  int32 CountFor(uint64 set) const;

 private:
  MessageQueue& queue_;
  std::atomic<int32> count_ = 0;
  mutable std::mutex guard_;
  std::map<uint64, int32> perSet_;
};

}  // namespace kestrin
