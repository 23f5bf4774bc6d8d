// Notifications of the desktop's service, org.freedesktop.Notifications.
#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusServiceWatcher>
#include <chrono>
#include <functional>
#include <map>

#include "core/ports/NotificationService.h"

namespace kestrin {

/// Nothing here blocks. What docs/reminders.md calls lost is decided here.
class BusNotifications final : public QObject, public NotificationService {
  Q_OBJECT

 public:
  static constexpr std::chrono::milliseconds Patience{1000};

  explicit BusNotifications(QDBusConnection bus, std::chrono::milliseconds patience = Patience);

  uint64 Show(const Notification& notification, Replied replied) override;
  void Close(uint64 notification) override;

 private Q_SLOTS:
  void NotificationClosed(uint id, uint reason);
  void ActionInvoked(uint id, const QString& key);

 private:
  struct Shown {
    Notification notification;
    Replied replied;
    uint id = 0;  ///< the service's; 0 until it has said that it shows it
  };

  void Listen();
  void Call(const QDBusMessage& call, std::function<void(const QDBusMessage& reply)> replied);
  void Ask(uint64 number, const QStringList& capabilities);
  void Stands(uint64 number, uint id);
  void CloseOnScreen(uint id);
  void Reply(uint64 number, const NotificationReply& reply);
  void ReplyOf(uint id, const NotificationReply& reply);
  void LoseStanding();

  QDBusConnection bus_;
  std::chrono::milliseconds patience_;
  QDBusServiceWatcher watcher_;
  bool listens_ = false;
  std::map<uint64, Shown> shown_;
  int asked_ = 0;                            ///< how many the service has not answered
  std::map<uint, NotificationReply> early_;  ///< by ids that were not known yet
  uint64 next_ = 1;
};

}  // namespace kestrin
