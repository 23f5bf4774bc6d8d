#include "session/BusReceiver.h"

#include <QtCore/QCoreApplication>
#include <utility>

#include "session/BusMessages.h"

namespace kestrin {

BusReceiver::BusReceiver(MessageQueue& queue) : queue_(queue) {}

void BusReceiver::HandleWaiting() { QCoreApplication::sendPostedEvents(this); }

std::vector<BusReceiver::Held> BusReceiver::HoldBackWaiting() {
  std::vector<Held> held;
  held_ = &held;
  HandleWaiting();
  held_ = nullptr;
  return held;
}

bool BusReceiver::handleMessage(const QDBusMessage& call, const QDBusConnection& connection) {
  std::optional<ReadCall> read = ReadApplicationCall(call);
  if (!read) return false;
  if (read->message && held_) {
    held_->push_back({std::move(*read->message), call});
    return true;
  }
  if (read->message) queue_.Post(std::move(*read->message));
  if (!call.isReplyRequired()) return true;
  connection.send(read->errorName.isEmpty()
                      ? call.createReply()
                      : call.createErrorReply(read->errorName, read->errorText));
  return true;
}

QString BusReceiver::introspect(const QString&) const { return ApplicationInterfaces; }

void BusReceiver::BusEnded() {
  if (!std::exchange(ended_, true)) queue_.Post(FORCED_QUIT);
}

}  // namespace kestrin
