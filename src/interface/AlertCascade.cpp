#include "interface/AlertCascade.h"

#include <algorithm>

namespace kestrin {

namespace {

constexpr int LargestWidth = 600, LargestHeight = 640;
constexpr int StepRight = 24, StepDown = 32, StepToNextColumn = 160;

}  // namespace

QSize AlertCascade::LargestAlert(const QRect& screen) {
  return {std::min(LargestWidth, screen.width() * 3 / 4),
          std::min(LargestHeight, screen.height() * 3 / 5)};
}

QPoint AlertCascade::TopLeft(int place, const QRect& screen) {
  const QSize room = screen.size() - LargestAlert(screen);
  // A column runs down and right; as many columns as it takes stand side by side.
  const int inColumn = std::clamp(room.height() / StepDown, 4, Places / 2);
  const int columns = (Places + inColumn - 1) / inColumn;
  const int down = std::min(StepDown, room.height() / inColumn);
  const int nextColumn = std::min(StepToNextColumn, room.width() / 2 / columns);
  const int right = std::min(StepRight, room.width() / 2 / inColumn);

  const int row = place % Places % inColumn;
  const int column = place % Places / inColumn;
  const int left = (room.width() - columns * nextColumn - inColumn * right) / 2;
  const int top = (room.height() - inColumn * down) / 3;
  return screen.topLeft() + QPoint(left + column * nextColumn + row * right, top + row * down);
}

}  // namespace kestrin
