// Timers that a test lets run out.
#pragma once

#include <utility>
#include <vector>

#include "core/loop/MessageQueue.h"
#include "core/ports/Timers.h"

namespace kestrin {

class FakeTimers final : public Timers {
 public:
  explicit FakeTimers(MessageQueue& queue) : queue_(queue) {}

  std::vector<std::pair<int32, Message>> Waiting;  ///< milliseconds, and what is posted then

  void PostAfter(int32 milliseconds, Message message) override {
    Waiting.emplace_back(milliseconds, std::move(message));
  }
  /// All of them.
  void RunOut() {
    for (auto& [milliseconds, message] : std::exchange(Waiting, {}))
      queue_.Post(std::move(message));
  }

 private:
  MessageQueue& queue_;
};

}  // namespace kestrin
