#include "session/LogindWatch.h"

#include <QtDBus/QDBusConnection>
#include <system_error>
#include <utility>

#include "session/LogindReceiver.h"

namespace kestrin {

LogindWatch::LogindWatch(MessageQueue& queue, std::chrono::milliseconds delay)
    : receiver_(new LogindReceiver(queue)) {
  begin_.setSingleShot(true);
  QObject::connect(&begin_, &QTimer::timeout, [this] { Begin(); });
  begin_.start(delay);
}

LogindWatch::~LogindWatch() {
  begin_.stop();
  if (connecting_.joinable()) {
    // A bus that does not answer: the thread and what it uses go with the process.
    if (connected_.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready) {
      connecting_.detach();
      return;
    }
    connecting_.join();
  }
  QDBusConnection::disconnectFromBus(LogindReceiver::Connection);
  delete receiver_;
}

void LogindWatch::Begin() {
  std::packaged_task<void()> connect([receiver = receiver_] { receiver->Connect(); });
  connected_ = connect.get_future();
  try {
    connecting_ = std::thread(std::move(connect));
  } catch (const std::system_error&) {
    // No thread is to be had: then nothing is heard of sleep and of the machine's end.
  }
}

}  // namespace kestrin
