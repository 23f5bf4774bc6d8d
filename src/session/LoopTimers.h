// Timers of the toolkit's event loop.
#pragma once

#include <QtCore/QObject>

#include "core/loop/MessageQueue.h"
#include "core/ports/Timers.h"

namespace kestrin {

/// The queue outlives it. May be built before the toolkit's application object, and used after.
class LoopTimers final : public Timers {
 public:
  explicit LoopTimers(MessageQueue& queue) : queue_(queue) {}

  void PostAfter(int32 milliseconds, Message message) override;

 private:
  MessageQueue& queue_;
  QObject waits_;  ///< nothing comes when it has gone
};

}  // namespace kestrin
