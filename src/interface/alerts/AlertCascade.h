// Where alerts open: each at a place of its own.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace kestrin {

class AlertCascade {
 public:
  /// How many places there are before positions repeat.
  static constexpr int Places = 24;

  /// No alert is larger than this, its frame included, so that there is room for the cascade.
  static QSize LargestAlert(const QRect& screen);

  /// The top left corner of the alert at `place`, 0 and up. Different places give different points,
  /// and an alert of any allowed size lies on the screen.
  static QPoint TopLeft(int place, const QRect& screen);
};

}  // namespace kestrin
