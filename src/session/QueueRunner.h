// The event loop's side of the message queue.
#pragma once

#include <QtCore/QBasicTimer>
#include <QtCore/QObject>
#include <functional>
#include <memory>

#include "core/loop/MessageQueue.h"

namespace kestrin {

/// Takes one message per turn of the event loop, so that windows are never starved, and never one
/// inside the handling of another. Main thread, after the toolkit's application object; the queue
/// outlives it and may be posted to from any thread until the end.
class QueueRunner final : public QObject {
 public:
  using Handler = std::function<void(const Message&)>;

  QueueRunner(MessageQueue& queue, Handler handler);
  ~QueueRunner() override;

 protected:
  bool event(QEvent* event) override;

 private:
  struct WakeUp;
  void Turn();
  void GoOnOrRest();

  MessageQueue& queue_;
  Handler handler_;
  std::shared_ptr<WakeUp> wakeUp_;  // shared with threads that are posting
  QBasicTimer nextTurn_;
};

}  // namespace kestrin
