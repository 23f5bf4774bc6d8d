// The standard icons as drawings.
#pragma once

#include <QRgb>
#include <array>
#include <span>

#include "kestrin/Types.h"

namespace kestrin {

inline constexpr int32 NumberOfStandardIcons = 11;

/// One shape of a drawing: filled first, then its outline is drawn over the fill. A colour of 0
/// leaves either out.
struct IconLayer {
  QRgb fill;
  QRgb line;
  double width;  ///< of the outline
  /// Commands, each a letter and its numbers, all absolute: M x y, L x y, H x, V y, Q cx cy x y,
  /// C c1x c1y c2x c2y x y, Z; E cx cy rx ry, an ellipse; R x y width height radius, a rectangle;
  /// T degrees, which turns all before it about the middle of the grid.
  const char* path;
};

using IconDrawing = std::span<const IconLayer>;

/// On a grid of 32 and, with fewer and bolder shapes, on one of 16. Outlines lie so that their
/// edges fall between pixels when the grid is a pixel grid.
extern const std::array<IconDrawing, NumberOfStandardIcons> LargeIconDrawings;
extern const std::array<IconDrawing, NumberOfStandardIcons> MiniIconDrawings;

}  // namespace kestrin
