// The picture at the left of an alert.
#pragma once

#include <QIcon>
#include <QPixmap>

#include "core/ports/Alert.h"

class QWidget;

namespace kestrin {

/// The desktop's own icon of the alert's kind; where it has no icon theme, one that is drawn here.
QPixmap AlertIcon(AlertKind kind, int size, const QWidget& alert);

/// The icon of the alert's event with that one as its badge, or that one alone.
QPixmap AlertPicture(const AlertRequest& request, const QWidget& alert);

/// The event's icon; null for an event without one.
QIcon IconOfFace(const AlertFace& face);

}  // namespace kestrin
