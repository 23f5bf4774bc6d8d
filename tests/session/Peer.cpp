// The other processes of the tests. What it is depends on the name it is started by; what happens
// to it goes, a line each, into the pipe that KESTRIN_PEER_LOG names.
#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusArgument>
#include <string>

#include "session/ApplicationBus.h"
#include "session/BusMessages.h"
#include "session/BusNames.h"
#include "session/ProcessInfo.h"
#include "session/QueueRunner.h"

namespace {

using namespace kestrin;

void Log(const std::string& line) {
  const int pipe = open(getenv("KESTRIN_PEER_LOG"), O_WRONLY | O_CLOEXEC);
  const std::string whole = line + "\n";
  if (write(pipe, whole.data(), whole.size()) < 0) abort();
  close(pipe);
}

int FilesBeyondTheFirstThree() {
  DIR* folder = opendir("/proc/self/fd");
  int count = 0;
  while (const dirent* entry = readdir(folder))
    if (entry->d_name[0] != '.' && atoi(entry->d_name) > 2 && atoi(entry->d_name) != dirfd(folder))
      ++count;
  closedir(folder);
  return count;
}

QDBusConnection Connect() {
  return QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), "peer");
}

/// Takes any call, answers it, and ends at a quit request or with the bus.
class Deliverer : public QDBusVirtualObject {
  Q_OBJECT

 public:
  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
    const uint code = call.arguments().value(0).toUInt();
    const auto fields = qdbus_cast<QVariantMap>(call.arguments().value(1));
    Log("deliverer got " + QString::number(code, 16).toStdString() + " " +
        fields.value("When").toString().toStdString());
    connection.send(call.createReply());
    if (code == QUIT_REQUESTED) QCoreApplication::quit();
    return true;
  }

 public Q_SLOTS:
  void BusEnded() { QCoreApplication::quit(); }
};

int RunDeliverer(QCoreApplication& application, bool takesItsName) {
  QDBusConnection bus = Connect();
  Deliverer object;
  bus.connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
              "Disconnected", &object, SLOT(BusEnded()));
  bus.registerVirtualObject(BackgroundObject, &object);
  if (takesItsName) bus.call(MakeBusCall("RequestName") << BackgroundBusName << 4U);
  return application.exec();
}

int RunQueue(QCoreApplication& application, MessageQueue& queue) {
  const QueueRunner runner(queue, [](const Message& message) {
    Log("application got " + message.Flatten());
    if (message.what == QUIT_REQUESTED || message.what == FORCED_QUIT) QCoreApplication::quit();
  });
  return application.exec();
}

int RunApplication(int argc, char** argv) {
  MessageQueue queue;
  ApplicationBus bus(queue);
  const Arrival arrival = bus.Arrive({{argv + 1, argv + argc}, ActivationToken(), StartedByBus()});
  Log("application arrived " + (arrival == Arrival::First        ? "first"
                                : arrival == Arrival::HandedOver ? "handed over"
                                                                 : bus.Reason()));
  if (arrival != Arrival::First) return arrival == Arrival::HandedOver ? 0 : 1;
  QCoreApplication application(argc, argv);
  bus.Dispatch();
  Log(std::string(queue.Holds(DELIVER_EVENTS) ? "application delivers" : "application opens") +
      (StartedByBus() ? ", started by the bus" : ""));
  return RunQueue(application, queue);
}

/// Waits in the bus's own queue for the application's name.
int RunHeir(QCoreApplication& application) {
  MessageQueue queue;
  BusReceiver receiver(queue);
  QDBusConnection bus = Connect();
  bus.connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
              "Disconnected", &receiver, SLOT(BusEnded()));
  bus.registerVirtualObject(ApplicationObject, &receiver);
  bus.call(MakeBusCall("RequestName") << ApplicationBusName << 0U);
  Log("heir waits");
  return RunQueue(application, queue);
}

/// Holds the application's name and dies of the first call.
class Mortal : public QDBusVirtualObject {
 public:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage&, const QDBusConnection&) override { _exit(0); }
};

int RunMortal(QCoreApplication& application) {
  QDBusConnection bus = Connect();
  Mortal object;
  bus.registerVirtualObject(ApplicationObject, &object);
  bus.call(MakeBusCall("RequestName") << ApplicationBusName << 0U);
  Log("mortal waits");
  return application.exec();
}

}  // namespace

int main(int argc, char** argv) {
  const std::string path = argv[0];
  const std::string name = path.substr(path.rfind('/') + 1);
  if (name == "kestrin") return RunApplication(argc, argv);
  if (name == "Leaving") return 0;
  const std::string facts = std::to_string(FilesBeyondTheFirstThree()) + " files " +
                            (getsid(0) == getpid() ? "own" : "other") +
                            " session DISPLAY=" + qEnvironmentVariable("DISPLAY").toStdString();
  QCoreApplication application(argc, argv);
  if (name == "Heir") return RunHeir(application);
  if (name == "Mortal") return RunMortal(application);
  Log(name + " up: " + facts);
  return RunDeliverer(application, name == "KestrinBackground");
}

#include "Peer.moc"
