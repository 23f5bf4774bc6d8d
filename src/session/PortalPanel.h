// One file panel that the desktop's portal shows.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusServiceWatcher>
#include <chrono>
#include <functional>

#include "core/ports/FilePanels.h"

namespace kestrin {

/// Ends with one call of `answered`, after which it may be deleted on a later turn.
class PortalPanel final : public QObject {
  Q_OBJECT

 public:
  using Answered = std::function<void(const FilePanelAnswer& answer)>;
  PortalPanel(QDBusConnection bus, const FilePanelRequest& request, uint64 number,
              std::chrono::milliseconds patience, Answered answered);
  ~PortalPanel() override { Withdraw(); }
  /// Has the panel closed and calls nobody.
  void Withdraw();

 private Q_SLOTS:
  void Response(const QDBusMessage& signal);

 private:
  void Listen(const QString& path);
  void Shown(const QDBusMessage& reply);
  void Finish(const FilePanelAnswer& answer);
  void Finish(FilePanelAnswer::Kind kind);
  void Close();

  QDBusConnection bus_;
  Answered answered_;
  QString path_;  ///< of the portal's object for this panel
  QTimer patience_;
  QDBusServiceWatcher watcher_;
  bool finished_ = false;
};

}  // namespace kestrin
