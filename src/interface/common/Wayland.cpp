#include "interface/common/Wayland.h"

#include <QGuiApplication>

namespace kestrin {

bool IsOnWayland() { return QGuiApplication::platformName().startsWith("wayland"); }

}  // namespace kestrin
