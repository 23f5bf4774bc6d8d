// Work that may take long, done in a worker, whose outcome the main thread goes on with.
#pragma once

#include <functional>
#include <map>

#include "core/loop/MessageQueue.h"
#include "core/ports/Workers.h"

namespace kestrin {

/// Main thread.
class BackgroundWork {
 public:
  /// Both outlive this.
  BackgroundWork(Workers& workers, MessageQueue& queue) : workers_(workers), queue_(queue) {}

  /// Runs `work` in a worker named `name`, and `then` with its answer on a later turn of the main
  /// thread, unless the program ends before. False when no thread can be had: neither is called.
  bool Start(const char* name, std::function<Message()> work,
             std::function<void(const Message& answer)> then);
  /// WORK_DONE.
  void Done(const Message& message);

 private:
  Workers& workers_;
  MessageQueue& queue_;
  std::map<int64, std::function<void(const Message&)>> waiting_;
  int64 last_ = 0;
};

}  // namespace kestrin
