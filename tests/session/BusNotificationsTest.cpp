// Notifications, against a stand-in for the desktop's service on a bus of the test's own.
#include "session/BusNotifications.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusVirtualObject>

#include "session/SessionBus.h"

namespace kestrin {
namespace {

constexpr char NotifierName[] = "org.freedesktop.Notifications";

/// Behaves as the test says.
class Notifier final : public QDBusVirtualObject {
 public:
  enum class Way { Shows, ExpiresFirst, NeverAnswers, LacksActions };

  Notifier(QDBusConnection bus, Way way) : bus_(std::move(bus)), way_(way) {
    bus_.registerVirtualObject("/org/freedesktop/Notifications", this);
    EXPECT_TRUE(bus_.registerService(NotifierName));
  }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
    Calls.push_back(call);
    if (call.member() == "GetCapabilities") {
      const QStringList all{"body", "body-markup", "actions"};
      return bus_.send(call.createReply(way_ == Way::LacksActions ? QStringList{"body"} : all));
    }
    if (call.member() != "Notify") return true;
    ++Shown;
    if (way_ == Way::ExpiresFirst) Tell("NotificationClosed", {Shown, 1u});
    if (way_ != Way::NeverAnswers) bus_.send(call.createReply(Shown));
    return true;
  }
  QString introspect(const QString&) const override { return {}; }
  void Tell(const char* signal, const QVariantList& arguments) {
    auto message =
        QDBusMessage::createSignal("/org/freedesktop/Notifications", NotifierName, signal);
    message.setArguments(arguments);
    bus_.send(message);
  }
  QDBusMessage Last(const char* member) const {
    for (auto each = Calls.rbegin(); each != Calls.rend(); ++each)
      if (each->member() == member) return *each;
    return {};
  }

  std::vector<QDBusMessage> Calls;
  uint Shown = 0;  ///< how many, and the id of the last

 private:
  QDBusConnection bus_;
  Way way_;
};

class BusNotificationsTest : public SessionBus {
 protected:
  ~BusNotificationsTest() override { End(); }
  void Begin(Notifier::Way way) {
    End();
    notifier_ = std::make_unique<Notifier>(
        QDBusConnection::connectToBus(QString::fromStdString(Bus().Address()), "notifier"), way);
  }
  void End() {
    notifier_.reset();
    QDBusConnection::disconnectFromBus("notifier");
  }
  uint64 Show() {
    return notifications_.Show(
        {"Tea", "<b> & co.\xff", UrgencyCritical, {{"default", "Show"}, {"ok", "OK"}}},
        [this](const NotificationReply& reply) { replies_.push_back(reply); });
  }
  bool Stands() {
    return RunUntil([this] { return notifier_->Shown > 0; }) && (Settle(), true);
  }
  /// What became of the only one.
  std::string Reply() {
    if (!RunUntil([this] { return !replies_.empty(); })) return "none";
    Settle();
    if (replies_.size() != 1) return "several";
    const NotificationReply reply = replies_[0];
    replies_.clear();
    return reply.What == NotificationReply::Kind::Lost        ? "lost"
           : reply.What == NotificationReply::Kind::Dismissed ? "dismissed"
                                                              : reply.Key;
  }

  std::unique_ptr<Notifier> notifier_;
  BusNotifications notifications_{Client(), std::chrono::milliseconds(300)};
  std::vector<NotificationReply> replies_;
};

TEST_F(BusNotificationsTest, OnlyAPersonAnswersAndWhateverElseHappensLosesItOnce) {
  using enum Notifier::Way;
  const struct {
    const char* what;
    Notifier::Way way;
    const char* signal;  ///< "": its service dies
    QVariant detail;
    const char* reply;
  } cases[] = {
      {"an action", Shows, "ActionInvoked", "ok", "ok"},
      {"dismissed", Shows, "NotificationClosed", 2u, "dismissed"},
      {"expired", Shows, "NotificationClosed", 1u, "lost"},
      {"undefined", Shows, "NotificationClosed", 4u, "lost"},
      {"died", Shows, "", {}, "lost"},
      {"died without an answer", NeverAnswers, "", {}, "lost"},
      {"expires at once", ExpiresFirst, nullptr, {}, "lost"},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.what);
    Begin(each.way);
    Show();
    ASSERT_TRUE(Stands());
    notifier_->Tell("NotificationClosed", {77u, 2u});  // another application's
    if (each.signal && *each.signal) notifier_->Tell(each.signal, {1u, each.detail});
    if (each.signal && !*each.signal) End();
    EXPECT_EQ(Reply(), each.reply);
  }
  End();
  Show();
  EXPECT_EQ(Reply(), "lost") << "there is no service";
}

TEST_F(BusNotificationsTest, ItIsShownAsTheServiceCanAndClosedWhenNobodyWantsItAnyMore) {
  Begin(Notifier::Way::Shows);
  const uint64 number = Show();
  ASSERT_TRUE(Stands());
  const QDBusMessage call = notifier_->Last("Notify");
  EXPECT_EQ(call.signature(), "susssasa{sv}i");
  EXPECT_EQ(call.arguments()[3], "Tea");
  EXPECT_EQ(call.arguments()[4], "&lt;b&gt; &amp; co.\uFFFD");
  EXPECT_EQ(call.arguments()[5].toStringList(), QStringList({"default", "Show", "ok", "OK"}));
  EXPECT_EQ(qdbus_cast<QVariantMap>(call.arguments()[6])["urgency"].value<uchar>(), 2);
  EXPECT_EQ(call.arguments()[7], 0) << "no time limit";
  notifications_.Close(number);
  EXPECT_TRUE(RunUntil([this] { return notifier_->Calls.back().member() == "CloseNotification"; }));
  EXPECT_EQ(notifier_->Calls.back().arguments()[0], 1u);

  Begin(Notifier::Way::LacksActions);
  const uint64 plain = Show();
  ASSERT_TRUE(Stands());
  EXPECT_EQ(notifier_->Last("Notify").arguments()[4], "<b> & co.\uFFFD");
  EXPECT_TRUE(notifier_->Last("Notify").arguments()[5].toStringList().isEmpty());
  notifications_.Close(plain);

  Begin(Notifier::Way::NeverAnswers);
  Show();
  EXPECT_EQ(Reply(), "lost");
  auto late = notifier_->Last("Notify").createReply(9u);
  QDBusConnection("notifier").send(late);
  EXPECT_TRUE(RunUntil([this] { return notifier_->Calls.back().member() == "CloseNotification"; }))
      << "it must not stand beside its window";
}

}  // namespace
}  // namespace kestrin
