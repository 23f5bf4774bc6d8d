#include "session/LogindReceiver.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusReply>

#include "core/loop/MessageCodes.h"

namespace kestrin {

namespace {

constexpr char LogindName[] = "org.freedesktop.login1";
constexpr char LogindObject[] = "/org/freedesktop/login1";
constexpr char LogindManager[] = "org.freedesktop.login1.Manager";

}  // namespace

void LogindReceiver::Connect() {
  QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, Connection);
  if (!bus.isConnected()) return;
  bus.connect(LogindName, LogindObject, LogindManager, "PrepareForSleep", this, SLOT(Sleep(bool)));
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

void LogindReceiver::Sleep(bool begins) {
  if (!begins) queue_.Post(RESUMED);
}

void LogindReceiver::Shutdown(bool begins) {
  if (begins) queue_.Post(FORCED_QUIT);
}

}  // namespace kestrin
