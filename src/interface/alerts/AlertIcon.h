// The picture at the left of an alert.
#pragma once

#include <QPixmap>

#include "core/ports/Alert.h"

class QWidget;

namespace kestrin {

/// The desktop's own icon; where it has no icon theme, one that is drawn here.
QPixmap AlertIcon(AlertKind kind, const QWidget& alert);

}  // namespace kestrin
