#include "session/LogindWatch.h"

#include <QtCore/QThread>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusReply>
#include <QtDBus/QDBusUnixFileDescriptor>

namespace kestrin {

namespace {

constexpr char SystemConnection[] = "kestrin-system";
constexpr char LogindName[] = "org.freedesktop.login1";
constexpr char LogindObject[] = "/org/freedesktop/login1";
constexpr char LogindManager[] = "org.freedesktop.login1.Manager";

}  // namespace

class LogindWatch::Receiver final : public QObject {
  Q_OBJECT

 public:
  explicit Receiver(MessageQueue& queue) : queue_(queue) {}

  /// In a thread of its own; may wait for the bus for as long as that takes.
  void Connect() {
    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, SystemConnection);
    if (!bus.isConnected()) return;
    bus.connect(LogindName, LogindObject, LogindManager, "PrepareForSleep", this,
                SLOT(Sleep(bool)));
    bus.connect(LogindName, LogindObject, LogindManager, "PrepareForShutdown", this,
                SLOT(Shutdown(bool)));
    QDBusMessage inhibit =
        QDBusMessage::createMethodCall(LogindName, LogindObject, LogindManager, "Inhibit");
    inhibit.setAutoStartService(false);
    inhibit << "shutdown"
            << "Kestrin"
            << "Saves event sets and reminders that are open"
            << "delay";
    // The machine goes on once the last copy is closed.
    if (const QDBusReply<QDBusUnixFileDescriptor> reply = bus.call(inhibit); reply.isValid())
      lock_ = reply.value();
  }

 public Q_SLOTS:
  void Sleep(bool begins) {
    if (!begins) queue_.Post(RESUMED);
  }
  void Shutdown(bool begins) {
    if (begins) queue_.Post(FORCED_QUIT);
  }

 private:
  MessageQueue& queue_;
  QDBusUnixFileDescriptor lock_;
};

LogindWatch::LogindWatch(MessageQueue& queue, std::chrono::milliseconds delay)
    : receiver_(new Receiver(queue)),
      connecting_(QThread::create([receiver = receiver_] { receiver->Connect(); })) {
  begin_.setSingleShot(true);
  QObject::connect(&begin_, &QTimer::timeout, [this] { connecting_->start(); });
  begin_.start(delay);
}

LogindWatch::~LogindWatch() {
  begin_.stop();
  // A bus that does not answer: the thread and what it uses go with the process.
  if (!connecting_->wait(100)) return;
  QDBusConnection::disconnectFromBus(SystemConnection);
  delete connecting_;
  delete receiver_;
}

}  // namespace kestrin

#include "LogindWatch.moc"
