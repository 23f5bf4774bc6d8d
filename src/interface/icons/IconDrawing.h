// Paints the drawings of the standard icons.
#pragma once

#include <QImage>

#include "interface/icons/StandardIconShapes.h"

namespace kestrin {

/// The icon as it looks at `size` units (device pixels / `ratio`): below 24 units the bolder
/// drawing is taken. Transparent where nothing is drawn. `index` is in its table.
QImage PaintStandardIcon(int32 index, int size, double ratio);

}  // namespace kestrin
