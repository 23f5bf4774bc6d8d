// The one queue of the application's messages.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

#include "core/loop/MessageCodes.h"
#include "support/Message.h"

namespace kestrin {

/// Post from any thread; take in the main thread, one message per turn of the event loop, in order.
class MessageQueue {
 public:
  /// Called in the posting thread whenever a message was queued.
  void SetWakeUp(std::function<void()> wakeUp);

  /// EVENT_SETS_CHANGED, ALERTS_WAITING, SETTINGS_CHANGED, SETS_OPENED and PASSES_AT_REST are
  /// queued at most once.
  void Post(Message message);
  void Post(MessageCode code) { Post(Message(code)); }

  std::optional<Message> Take();
  bool Empty() const;
  /// Whether a message of that code waits.
  bool Holds(uint32 code) const;

 private:
  mutable std::mutex guard_;
  std::deque<Message> messages_;
  std::atomic<bool> setsChangedWaits_ = false;
  std::function<void()> wakeUp_;
};

}  // namespace kestrin
