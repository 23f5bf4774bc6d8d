#include "core/loop/MessageQueue.h"

#include <algorithm>

namespace kestrin {

namespace {

bool IsQueuedOnce(uint32 code) {
  return code == EVENT_SETS_CHANGED || code == ALERTS_WAITING || code == SETTINGS_CHANGED ||
         code == PASSES_AT_REST || code == SETS_OPENED || code == EDITS_CHANGED;
}

bool Contains(const std::deque<Message>& messages, uint32 code) {
  return std::any_of(messages.begin(), messages.end(),
                     [code](const Message& message) { return message.what == code; });
}

}  // namespace

void MessageQueue::SetWakeUp(std::function<void()> wakeUp) {
  std::lock_guard lock(guard_);
  wakeUp_ = std::move(wakeUp);
}

void MessageQueue::Post(Message message) {
  // Every change of every event posts this one: most calls end here, without the lock.
  if (message.what == EVENT_SETS_CHANGED && setsChangedWaits_.exchange(true)) return;
  std::function<void()> wakeUp;
  {
    std::lock_guard lock(guard_);
    if (message.what != EVENT_SETS_CHANGED && IsQueuedOnce(message.what) &&
        Contains(messages_, message.what))
      return;
    messages_.push_back(std::move(message));
    wakeUp = wakeUp_;
  }
  if (wakeUp) wakeUp();
}

std::optional<Message> MessageQueue::Take() {
  std::lock_guard lock(guard_);
  if (messages_.empty()) return std::nullopt;
  Message message = std::move(messages_.front());
  messages_.pop_front();
  if (message.what == EVENT_SETS_CHANGED) setsChangedWaits_ = false;
  return message;
}

bool MessageQueue::Empty() const {
  std::lock_guard lock(guard_);
  return messages_.empty();
}

bool MessageQueue::Holds(uint32 code) const {
  std::lock_guard lock(guard_);
  return Contains(messages_, code);
}

}  // namespace kestrin
