// The program's own icon: data/icons/vnd.ZR.Kestrin.svg, drawn without a reader of such files.
#pragma once

#include <QIcon>
#include <QPixmap>

namespace kestrin {

/// `size` in pixels of a screen that has `ratio` of its own for each.
QPixmap ApplicationPicture(int size, qreal ratio);

/// For title bars and task lists.
QIcon ApplicationIcon();

}  // namespace kestrin
