#include "session/BusNotifications.h"

#include <QtCore/QTimer>
#include <QtDBus/QDBusPendingCallWatcher>
#include <algorithm>
#include <utility>
#include <vector>

namespace kestrin {

namespace {

constexpr char ServiceName[] = "org.freedesktop.Notifications";
constexpr char ServicePath[] = "/org/freedesktop/Notifications";
constexpr uint ByPerson = 2;  // of the reasons why one was closed
constexpr int NoTimeLimit = 0;

using Kind = NotificationReply::Kind;

QDBusMessage CallOf(const char* member) {
  return QDBusMessage::createMethodCall(ServiceName, ServicePath, ServiceName, member);
}

/// The bus takes UTF-8 without NULs.
QString BusText(const std::string& bytes) {
  return QString::fromStdString(bytes).remove(QChar(QChar::Null));
}

QDBusMessage NotifyCall(const Notification& notification, const QStringList& capabilities) {
  QString text = BusText(notification.Text);
  if (capabilities.contains("body-markup")) text = text.toHtmlEscaped();
  QStringList actions;
  if (capabilities.contains("actions"))
    for (const auto& [key, label] : notification.Actions) actions << BusText(key) << BusText(label);
  const QVariantMap hints = {
      {"urgency", QVariant::fromValue(static_cast<uchar>(notification.Urgency))},
      {"desktop-entry", "vnd.ZR.Kestrin"},
      {"suppress-sound", true}};
  QDBusMessage call = CallOf("Notify");
  call << "Kestrin" << 0u << "vnd.ZR.Kestrin" << BusText(notification.Title) << text << actions
       << hints << NoTimeLimit;
  return call;
}

}  // namespace

BusNotifications::BusNotifications(QDBusConnection bus, std::chrono::milliseconds patience)
    : bus_(std::move(bus)), patience_(patience) {
  watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString& before) {
            if (!before.isEmpty()) LoseStanding();
          });
}

/// Only with the first notification: most of what starts shows none.
void BusNotifications::Listen() {
  if (std::exchange(listens_, true)) return;
  watcher_.setConnection(bus_);
  watcher_.addWatchedService(ServiceName);
  bus_.connect(ServiceName, ServicePath, ServiceName, "NotificationClosed", this,
               SLOT(NotificationClosed(uint, uint)));
  bus_.connect(ServiceName, ServicePath, ServiceName, "ActionInvoked", this,
               SLOT(ActionInvoked(uint, QString)));
}

uint64 BusNotifications::Show(const Notification& notification, Replied replied) {
  Listen();
  const uint64 number = next_++;
  shown_[number] = {notification, std::move(replied)};
  QTimer::singleShot(patience_, Qt::PreciseTimer, this, [this, number] {
    const auto found = shown_.find(number);
    if (found != shown_.end() && found->second.id == 0) Reply(number, {Kind::Lost, {}});
  });
  Call(CallOf("GetCapabilities"), [this, number](const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ReplyMessage)
      Ask(number, reply.arguments().value(0).toStringList());
    else
      Reply(number, {Kind::Lost, {}});
  });
  return number;
}

void BusNotifications::Call(const QDBusMessage& call,
                            std::function<void(const QDBusMessage& reply)> replied) {
  auto* const pending = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
  connect(pending, &QDBusPendingCallWatcher::finished, this,
          [pending, replied = std::move(replied)] {
            pending->deleteLater();
            replied(pending->reply());
          });
}

void BusNotifications::Ask(uint64 number, const QStringList& capabilities) {
  const auto found = shown_.find(number);
  if (found == shown_.end()) return;
  ++asked_;
  Call(NotifyCall(found->second.notification, capabilities),
       [this, number](const QDBusMessage& reply) {
         --asked_;
         if (reply.type() == QDBusMessage::ReplyMessage)
           Stands(number, reply.arguments().value(0).toUInt());
         else
           Reply(number, {Kind::Lost, {}});
         if (asked_ == 0) early_.clear();
       });
}

void BusNotifications::Stands(uint64 number, uint id) {
  const auto found = shown_.find(number);
  if (found == shown_.end()) return CloseOnScreen(id);  // nobody waits for it any more
  found->second.id = id;
  if (const auto early = early_.find(id); early != early_.end())
    Reply(number, NotificationReply(early->second));
}

void BusNotifications::Close(uint64 notification) {
  const auto found = shown_.find(notification);
  if (found == shown_.end()) return;
  if (found->second.id != 0) CloseOnScreen(found->second.id);
  shown_.erase(found);
}

void BusNotifications::CloseOnScreen(uint id) {
  QDBusMessage close = CallOf("CloseNotification");
  close.setAutoStartService(false);
  bus_.send(close << id);
}

void BusNotifications::NotificationClosed(uint id, uint reason) {
  ReplyOf(id, {reason == ByPerson ? Kind::Dismissed : Kind::Lost, {}});
}

/// Services differ in whether they take it away themselves then.
void BusNotifications::ActionInvoked(uint id, const QString& key) {
  ReplyOf(id, {Kind::Action, key.toStdString()});
}

/// Every application hears of every notification. Some services say that one is closed before they
/// have said that it stands.
void BusNotifications::ReplyOf(uint id, const NotificationReply& reply) {
  const auto found = std::find_if(shown_.begin(), shown_.end(),
                                  [id](const auto& each) { return each.second.id == id; });
  if (id != 0 && found != shown_.end()) {
    if (reply.What == Kind::Action) CloseOnScreen(id);
    Reply(found->first, reply);
  } else if (asked_ > 0) {
    early_.emplace(id, reply);
  }
}

void BusNotifications::Reply(uint64 number, const NotificationReply& reply) {
  const auto found = shown_.find(number);
  if (found == shown_.end()) return;
  const Replied replied = std::move(found->second.replied);
  shown_.erase(found);
  replied(reply);
}

/// What the service has not answered, the bus answers with an error.
void BusNotifications::LoseStanding() {
  std::vector<uint64> numbers;
  for (const auto& [number, shown] : shown_)
    if (shown.id != 0) numbers.push_back(number);
  for (const uint64 number : numbers) Reply(number, {Kind::Lost, {}});
}

}  // namespace kestrin
