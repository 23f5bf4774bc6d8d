#include "interface/alerts/KeyGuard.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>
#include <chrono>

namespace kestrin {

namespace {

constexpr std::chrono::seconds QuietTime{1};
/// A timer that comes later than that: the process was held up.
constexpr std::chrono::milliseconds MostQuietTime{1500};

}  // namespace

KeyGuard::KeyGuard(QWidget& window) : QObject(&window), window_(window) {
  quiet_.setSingleShot(true);
  quiet_.setInterval(QuietTime);
  connect(&quiet_, &QTimer::timeout, this, [this] {
    // Keys that were typed while the process was held up have not been read yet.
    if (quietSince_.hasExpired(MostQuietTime.count()))
      WaitForQuiet();
    else
      open_ = true;
  });
  qApp->installEventFilter(this);
}

void KeyGuard::WaitForQuiet() {
  quietSince_.start();
  quiet_.start();
}

void KeyGuard::OpenForGood() { open_ = forGood_ = true; }

bool KeyGuard::IsOfWindow(QObject* watched) const {
  if (watched == window_.windowHandle()) return true;
  const auto* widget = qobject_cast<QWidget*>(watched);
  return widget && widget->window() == &window_;
}

void KeyGuard::WindowEvent(QEvent* event) {
  if (event->type() == QEvent::WindowActivate && !open_) WaitForQuiet();
  if (event->type() != QEvent::WindowDeactivate || forGood_ || QApplication::activePopupWidget())
    return;
  quiet_.stop();
  open_ = false;
}

bool KeyGuard::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
      if (watched == &window_) WindowEvent(event);
      return false;
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
      if (IsOfWindow(watched)) open_ = true;
      return false;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::InputMethod:
      if (open_ || !IsOfWindow(watched)) return false;
      if (quiet_.isActive()) WaitForQuiet();
      event->accept();  // or the key would go looking for a mnemonic
      return true;
    default:
      return false;
  }
}

}  // namespace kestrin
