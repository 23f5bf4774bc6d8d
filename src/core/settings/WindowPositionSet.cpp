#include "core/settings/WindowPositionSet.h"

#include <algorithm>
#include <cmath>

namespace kestrin {

namespace {

// Edges are inclusive: a frame whose right edge is its left one is a pixel wide.
bool HoldsSomething(Rect frame) {
  return std::isfinite(frame.left) && std::isfinite(frame.top) && std::isfinite(frame.right) &&
         std::isfinite(frame.bottom) && frame.left <= frame.right && frame.top <= frame.bottom;
}

// Double: the distance between two floats may be more than a float holds.
void Move(float& low, float& high, double screenLow, double screenHigh) {
  const double extent = std::min(double{high} - double{low}, screenHigh - screenLow);
  const double moved = std::max(screenLow, std::min(double{low}, screenHigh - extent));
  low = static_cast<float>(moved);
  high = static_cast<float>(moved + extent);
}

}  // namespace

Rect WindowPositionSet::NextFrame() {
  const Rect frame = current_;
  steps_ = steps_ == MaxSteps ? 0 : steps_ + 1;
  const float offset = Step * static_cast<float>(steps_);
  current_ = {default_.left + offset, default_.top + offset, default_.right + offset,
              default_.bottom + offset};
  return frame;
}

void WindowPositionSet::SetDefaultFrame(Rect frame) {
  default_ = current_ = frame;
  steps_ = 0;
}

bool WindowPositionSet::Gives(Rect frame) const {
  for (int32 step = 0; step <= MaxSteps; ++step) {
    const float offset = Step * static_cast<float>(step);
    if (frame == Rect{default_.left + offset, default_.top + offset, default_.right + offset,
                      default_.bottom + offset})
      return true;
  }
  return false;
}

Rect WindowPositionSet::MovedOntoScreen(Rect frame, Rect screen, Rect fallback) {
  if (!HoldsSomething(frame)) frame = fallback;
  if (!HoldsSomething(screen)) return frame;
  if (!HoldsSomething(frame)) return screen;
  Move(frame.left, frame.right, screen.left, screen.right);
  Move(frame.top, frame.bottom, screen.top, screen.bottom);
  return frame;
}

}  // namespace kestrin
