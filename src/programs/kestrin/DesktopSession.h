// The desktop's session management, which the toolkit speaks.
#pragma once

#include <QSessionManager>
#include <QtCore/QObject>

#include "core/loop/MessageQueue.h"

class QGuiApplication;

namespace kestrin {

class KestrinApp;

/// A session that is saved, or is about to end, saves what has changed; only its end ends the
/// program, in order, and the toolkit closes no window by itself. Main thread.
class DesktopSession final : public QObject {
 public:
  DesktopSession(QGuiApplication& toolkit, KestrinApp& app, MessageQueue& queue);

  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void Save(QSessionManager& manager);

  KestrinApp& app_;
  MessageQueue& queue_;
};

}  // namespace kestrin
