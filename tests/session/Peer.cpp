// The other processes of the tests. What it is depends on the name it is started by; what happens
// to it goes, a line each, into the pipe that KESTRIN_PEER_LOG names.
#include <stdlib.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusArgument>
#include <filesystem>
#include <fstream>
#include <string>

#include "session/ApplicationBus.h"
#include "session/BusMessages.h"
#include "session/BusNames.h"
#include "session/ProcessInfo.h"
#include "session/QueueRunner.h"

namespace {

using namespace kestrin;

void Log(const std::string& line) { std::ofstream(getenv("KESTRIN_PEER_LOG")) << line + "\n"; }

int FilesBeyondTheFirstThree() {
  int count = 0;
  for (const auto& file : std::filesystem::directory_iterator("/proc/self/fd"))
    if (std::stoi(file.path().filename()) > 2) ++count;
  return count - 1;  // that folder itself is one
}

QDBusConnection Connect() {
  return QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), "peer");
}

/// Takes any call, answers it, and ends at a quit request or with the bus. A mortal one dies of the
/// first call.
class Answerer : public QDBusVirtualObject {
  Q_OBJECT

 public:
  explicit Answerer(bool isMortal) : isMortal_(isMortal) {}
  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
    if (isMortal_) _exit(0);
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

 private:
  const bool isMortal_;
};

/// Under a bus name, or without one for a program that hangs.
int RunAnswerer(QCoreApplication& application, const char* object, const char* busName) {
  QDBusConnection bus = Connect();
  const bool isMortal = object == ApplicationObject;
  Answerer answerer(isMortal);
  bus.connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
              "Disconnected", &answerer, SLOT(BusEnded()));
  bus.registerVirtualObject(object, &answerer);
  if (busName) bus.call(MakeBusCall("RequestName") << busName << 4U);
  if (isMortal) Log("mortal waits");
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
  bus.registerVirtualObject(ApplicationObject, &receiver);
  bus.call(MakeBusCall("RequestName") << ApplicationBusName << 0U);
  Log("heir waits");
  return RunQueue(application, queue);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string name = std::filesystem::path(argv[0]).filename();
  if (name == "kestrin") return RunApplication(argc, argv);
  if (name.starts_with("Leaving")) return 0;
  const std::string facts = std::to_string(FilesBeyondTheFirstThree()) + " files " +
                            (getsid(0) == getpid() ? "own" : "other") +
                            " session DISPLAY=" + qEnvironmentVariable("DISPLAY").toStdString();
  QCoreApplication application(argc, argv);
  if (name == "Heir") return RunHeir(application);
  if (name == "Mortal") return RunAnswerer(application, ApplicationObject, ApplicationBusName);
  Log(name + " up: " + facts);
  return RunAnswerer(application, BackgroundObject,
                     name == "KestrinBackground" ? BackgroundBusName : nullptr);
}

#include "Peer.moc"
