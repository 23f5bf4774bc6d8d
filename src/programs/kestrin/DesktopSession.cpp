#include "programs/kestrin/DesktopSession.h"

#include <QtCore/QEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QSessionManager>

#include "core/app/KestrinApp.h"

namespace kestrin {

DesktopSession::DesktopSession(QGuiApplication& toolkit, KestrinApp& app, MessageQueue& queue)
    : app_(app), queue_(queue) {
  const auto save = [this](QSessionManager& manager) { Save(manager); };
  connect(&toolkit, &QGuiApplication::commitDataRequest, this, save);
  connect(&toolkit, &QGuiApplication::saveStateRequest, this,
          [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); });
  toolkit.installEventFilter(this);
}

// The session goes on when this returns, so it cannot wait for its turn in the queue.
void DesktopSession::Save(QSessionManager& manager) {
  manager.setRestartHint(QSessionManager::RestartNever);  // the login entry starts the program
  app_.MessageReceived(Message(SESSION_SAVED));
}

// Sent by the toolkit when the session ends, and by nobody else.
bool DesktopSession::eventFilter(QObject* object, QEvent* event) {
  if (event->type() != QEvent::Quit) return QObject::eventFilter(object, event);
  queue_.Post(FORCED_QUIT);
  return true;
}

}  // namespace kestrin
