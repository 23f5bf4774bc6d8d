#include "session/LogindWatch.h"

#include <QtCore/QThread>
#include <QtDBus/QDBusConnection>

#include "session/LogindReceiver.h"

namespace kestrin {

LogindWatch::LogindWatch(MessageQueue& queue, std::chrono::milliseconds delay)
    : receiver_(new LogindReceiver(queue)),
      connecting_(QThread::create([receiver = receiver_] { receiver->Connect(); })) {
  begin_.setSingleShot(true);
  QObject::connect(&begin_, &QTimer::timeout, [this] { connecting_->start(); });
  begin_.start(delay);
}

LogindWatch::~LogindWatch() {
  begin_.stop();
  // A bus that does not answer: the thread and what it uses go with the process.
  if (!connecting_->wait(100)) return;
  QDBusConnection::disconnectFromBus(LogindReceiver::Connection);
  delete connecting_;
  delete receiver_;
}

}  // namespace kestrin
