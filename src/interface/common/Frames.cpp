#include "interface/common/Frames.h"

#include <QApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <algorithm>
#include <cmath>

#include "core/settings/WindowPositionSet.h"

namespace kestrin {

namespace {

constexpr QSize SmallestWindow(200, 120);

int64 Area(const QRect& rect) { return int64{rect.width()} * rect.height(); }

/// Frames from files may hold anything: what no screen reaches is as good as nothing.
QRect Rounded(Rect frame) {
  constexpr float Furthest = 100000;
  for (const float edge : {frame.left, frame.top, frame.right, frame.bottom})
    if (!(std::abs(edge) < Furthest)) return {};
  return {QPoint(qRound(frame.left), qRound(frame.top)),
          QPoint(qRound(frame.right), qRound(frame.bottom))};
}

const QScreen* ScreenFor(const QRect& geometry) {
  const QList<QScreen*> screens = QGuiApplication::screens();
  const auto most = std::max_element(
      screens.begin(), screens.end(), [&geometry](const QScreen* a, const QScreen* b) {
        return Area(a->geometry() & geometry) < Area(b->geometry() & geometry);
      });
  return Area((*most)->geometry() & geometry) > 0 ? *most : QGuiApplication::primaryScreen();
}

}  // namespace

Rect FrameOf(const QRect& geometry) {
  return {static_cast<float>(geometry.left()), static_cast<float>(geometry.top()),
          static_cast<float>(geometry.right()), static_cast<float>(geometry.bottom())};
}

Rect PlainFrameOf(const QWidget& window) {
  const bool isPlain = !window.isMaximized() && !window.isFullScreen() && !window.isMinimized();
  return FrameOf(isPlain ? window.geometry() : window.normalGeometry());
}

QRect RoomFor(const QRect& geometry) { return ScreenFor(geometry)->availableGeometry(); }

QSize LargestOn(const QScreen& screen) {
  const int title = QApplication::style()->pixelMetric(QStyle::PM_TitleBarHeight);
  return screen.availableGeometry().size() - QSize(title, 2 * title);
}

QRect GeometryOnScreen(Rect stored, Rect fallback, QSize smallest) {
  const QRect wanted = Rounded(stored);
  QRect room = ScreenFor(wanted)->availableGeometry();
  room.adjust(0, QApplication::style()->pixelMetric(QStyle::PM_TitleBarHeight), 0, 0);
  QRect frame = wanted.isValid() ? wanted : Rounded(fallback);
  // Grown afterwards, it might leave the screen again.
  frame.setSize(frame.size().expandedTo(SmallestWindow).expandedTo(smallest));
  return Rounded(WindowPositionSet::MovedOntoScreen(FrameOf(frame), FrameOf(room), fallback));
}

void BringToFront(QWidget& window) {
  if (window.isMinimized()) window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace kestrin
