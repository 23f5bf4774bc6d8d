// Hears the login manager; LogindWatch owns one.
#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusUnixFileDescriptor>

#include "core/loop/MessageQueue.h"

namespace kestrin {

/// Its slots are called in the main thread.
class LogindReceiver final : public QObject {
  Q_OBJECT

 public:
  /// Of the connection to the system's bus.
  static constexpr char Connection[] = "kestrin-system";

  explicit LogindReceiver(MessageQueue& queue) : queue_(queue) {}

  /// In a thread of its own; may wait for the bus for as long as that takes.
  void Connect();

 public Q_SLOTS:
  void Sleep(bool begins);
  void Shutdown(bool begins);

 private:
  MessageQueue& queue_;
  QDBusUnixFileDescriptor lock_;
};

}  // namespace kestrin
