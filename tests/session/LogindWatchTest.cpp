#include "session/LogindWatch.h"

#include <QtDBus/QDBusUnixFileDescriptor>
#include <QtDBus/QDBusVirtualObject>

#include <unistd.h>

#include "session/BusMessages.h"
#include "session/SessionBus.h"

namespace kestrin {
namespace {

constexpr char Name[] = "org.freedesktop.login1", Object[] = "/org/freedesktop/login1",
               Manager[] = "org.freedesktop.login1.Manager";

/// Lends the writing end of a pipe as the lock.
class Logind : public QDBusVirtualObject {
 public:
  Logind() { EXPECT_EQ(pipe(ends_), 0); }
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
    asked = call.arguments().value(0).toString() + " " + call.arguments().value(3).toString();
    bus.send(call.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(ends_[1]))));
    close(ends_[1]);
    return true;
  }
  /// Waits until nobody holds it any more.
  bool Released() const { return read(ends_[0], &Byte, 1) == 0; }

  QString asked;

 private:
  static inline char Byte;
  int ends_[2];
};

class LogindWatchTest : public SessionBus {
 protected:
  void Tell(const char* signal, bool begins) {
    Client().send(QDBusMessage::createSignal(Object, Manager, signal) << begins);
  }
  const ScopedVariables system_{"DBUS_SYSTEM_BUS_ADDRESS", Bus().Address()};
  MessageQueue queue_;
};

TEST_F(LogindWatchTest, TellsOfWakingAndOfTheMachinesEndWhichWaits) {
  Logind logind;
  Client().registerVirtualObject(Object, &logind);
  CallBus("RequestName", {Name, 0U});
  {
    const LogindWatch watch(queue_, std::chrono::milliseconds(0));
    ASSERT_TRUE(RunUntil([&] { return !logind.asked.isEmpty(); }));
    EXPECT_EQ(logind.asked, "shutdown delay");
    Tell("PrepareForSleep", true);
    Tell("PrepareForShutdown", false);
    Tell("PrepareForSleep", false);
    Tell("PrepareForShutdown", true);
    for (const auto code : {RESUMED, FORCED_QUIT}) {
      ASSERT_TRUE(RunUntil([&] { return !queue_.Empty(); }));
      EXPECT_EQ(queue_.Take(), Message(code));
    }
  }
  EXPECT_TRUE(logind.Released());
}

}  // namespace
}  // namespace kestrin
