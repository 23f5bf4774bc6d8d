#include "session/QueueRunner.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <mutex>
#include <utility>

namespace kestrin {

namespace {

constexpr QEvent::Type WakeUpEvent = QEvent::User;

}  // namespace

struct QueueRunner::WakeUp {
  std::mutex guard;
  QueueRunner* runner = nullptr;
  bool busy = false;  // an event or the timer is under way

  void Call() {
    const std::lock_guard lock(guard);
    if (!runner || std::exchange(busy, true)) return;
    QCoreApplication::postEvent(runner, new QEvent(WakeUpEvent));
  }
};

QueueRunner::QueueRunner(MessageQueue& queue, Handler handler)
    : queue_(queue), handler_(std::move(handler)), wakeUp_(std::make_shared<WakeUp>()) {
  wakeUp_->runner = this;
  queue_.SetWakeUp([wakeUp = wakeUp_] { wakeUp->Call(); });
  if (!queue_.Empty()) wakeUp_->Call();
}

QueueRunner::~QueueRunner() {
  queue_.SetWakeUp({});
  const std::lock_guard lock(wakeUp_->guard);
  wakeUp_->runner = nullptr;
}

bool QueueRunner::event(QEvent* event) {
  if (event->type() != WakeUpEvent && event->type() != QEvent::Timer) return QObject::event(event);
  Turn();
  return true;
}

void QueueRunner::Turn() {
  if (const std::optional<Message> message = queue_.Take()) handler_(*message);
  GoOnOrRest();
}

// A posted event would be handled in this same turn; a timer waits for the next, and is not called
// again from within what it calls.
void QueueRunner::GoOnOrRest() {
  const std::lock_guard lock(wakeUp_->guard);
  wakeUp_->busy = !queue_.Empty();
  if (!wakeUp_->busy)
    nextTurn_.stop();
  else if (!nextTurn_.isActive())
    nextTurn_.start(0, this);
}

}  // namespace kestrin
