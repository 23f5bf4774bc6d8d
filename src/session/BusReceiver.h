// The application's object on the bus.
#pragma once

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>
#include <functional>
#include <vector>

#include "core/loop/MessageQueue.h"

namespace kestrin {

/// Lets in what the application takes from the bus and refuses all else. Main thread.
class BusReceiver final : public QDBusVirtualObject {
  Q_OBJECT

 public:
  /// A message that was held back, and the call that waits for its answer.
  struct Held {
    Message message;
    QDBusMessage call;
  };

  explicit BusReceiver(MessageQueue& queue);

  /// Handles the calls that the connection has received up to now.
  void HandleWaiting();
  /// The same, but keeps what should go into the queue, unanswered.
  std::vector<Held> HoldBackWaiting();

  bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override;
  QString introspect(const QString& path) const override;

 public Q_SLOTS:
  /// The bus has gone: posts FORCED_QUIT, once.
  void BusEnded();

 private:
  MessageQueue& queue_;
  std::vector<Held>* held_ = nullptr;
  bool ended_ = false;
};

}  // namespace kestrin
