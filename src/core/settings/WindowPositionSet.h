// Where new windows open: each a little further than the last.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

class WindowPositionSet {
 public:
  explicit WindowPositionSet(Rect frame) : default_(frame), current_(frame) {}

  /// The frame for the next new window; the one after it lies Step pixels further down and right,
  /// back at the default after MaxSteps.
  Rect NextFrame();
  Rect DefaultFrame() const { return default_; }
  void SetDefaultFrame(Rect frame);
  /// Whether that is one of the frames for new windows, so that nobody has chosen it.
  bool Gives(Rect frame) const;

  /// `frame` moved, and only if need be shrunk, so that it lies within `screen`. A frame with
  /// values that are no numbers, or with nothing inside, becomes `fallback` first.
  static Rect MovedOntoScreen(Rect frame, Rect screen, Rect fallback);

  static constexpr float Step = 20;
  static constexpr int32 MaxSteps = 10;

 private:
  Rect default_;
  Rect current_;
  int32 steps_ = 0;
};

}  // namespace kestrin
