// Window frames as they are stored, and where their windows stand on this screen.
#pragma once

#include <QRect>

#include "kestrin/Types.h"

namespace kestrin {

Rect FrameOf(const QRect& geometry);

/// The geometry, without the window manager's frame, of a window that opens at `stored`: on the
/// screen that shows most of it, with room for a title bar. `fallback` is for frames that are none.
QRect GeometryOnScreen(Rect stored, Rect fallback);

}  // namespace kestrin
