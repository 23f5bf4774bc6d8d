// Window frames as they are stored, and where their windows stand on this screen.
#pragma once

#include <QRect>

#include "kestrin/Types.h"

class QScreen;
class QWidget;

namespace kestrin {

Rect FrameOf(const QRect& geometry);
/// Where the window stands, or would stand if it did not fill the screen.
Rect PlainFrameOf(const QWidget& window);

/// The part of the screen that shows most of it, in which a window's frame may stand.
QRect RoomFor(const QRect& geometry);

/// The largest window that the screen holds with its frame.
QSize LargestOn(const QScreen& screen);

/// The geometry, without the window manager's frame, of a window that opens at `stored`: on the
/// screen that shows most of it, with room for a title bar. `fallback` is for frames that are none;
/// below `smallest` the window cannot be shown.
QRect GeometryOnScreen(Rect stored, Rect fallback, QSize smallest = {});

/// Shows the window above all others, and asks for the keyboard.
void BringToFront(QWidget& window);

}  // namespace kestrin
