#include "interface/alerts/AlertCascade.h"

#include <algorithm>

namespace kestrin {

namespace {

constexpr int LargestWidth = 600, LargestHeight = 640;
constexpr int UsualWidth = 440;
constexpr int StepRight = 24, StepDown = 32, StepToNextColumn = 160;

}  // namespace

QSize AlertCascade::LargestAlert(const QRect& screen) {
  return {std::min(LargestWidth, screen.width() * 3 / 4),
          std::min(LargestHeight, screen.height() * 3 / 5)};
}

QPoint AlertCascade::TopLeft(int place, const QRect& screen) {
  const QSize room = screen.size() - LargestAlert(screen);
  // A column runs down and right; as many columns as it takes stand side by side. What would leave
  // the room comes in again at its other end, so that no two places meet.
  const int inColumn = std::clamp(room.height() / StepDown, 4, Places / 2);
  const int columns = (Places + inColumn - 1) / inColumn;
  const int down = std::min(StepDown, room.height() / inColumn);
  const int nextColumn = std::min(StepToNextColumn, room.width() / columns);
  const int row = place % Places % inColumn;
  const int column = place % Places / inColumn;

  const int firstLeft = std::max(0, (screen.width() - UsualWidth) / 2);
  const int left = (firstLeft + column * nextColumn + row * StepRight) % room.width();
  const int top = (inColumn / 4 + row) % inColumn * down;
  return screen.topLeft() + QPoint(left, top);
}

}  // namespace kestrin
