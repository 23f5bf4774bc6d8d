// The steps of prewarnings and nags: elapsed seconds, or months on the wall clock.
#pragma once

#include <optional>

#include "core/timing/EventTypes.h"
#include "support/LocalTime.h"

namespace kestrin {

struct StepLength {
  uint32 count;
  int32 unit;  ///< a TimeIntervalType, or anything a file may hold

  bool IsMonths() const { return unit == Months; }
  /// 0 for months and for units that there are not.
  int64 Seconds() const;
};

/// The first of `from` + k steps, k from 0, that is not before `least`; nothing when the step can
/// never get there. Past what int32 holds the answer is only roughly right.
std::optional<int64> FirstStepFrom(int64 from, int64 least, StepLength step, const Zone& zone);

/// `time` less the step, for any length of it.
int64 StepBack(int64 time, StepLength step, const Zone& zone);

}  // namespace kestrin
