// The occurrences of the repeating kinds, one after another.
#pragma once

#include <optional>

#include "core/timing/EventRecord.h"
#include "support/LocalTime.h"

namespace kestrin {

/// The first occurrence of `rule` after `now`; nothing when there is none before 2039. `PeriodType`
/// is Annually..SubDaily, WhyNoOccurrence has nothing to say about the rule, and `now` fits int32.
/// The answer itself may lie past what int32 holds.
std::optional<int64> NextOccurrence(const TimingRule& rule, int64 now, const Zone& zone);

/// The same for SubDaily alone, whose steps are elapsed seconds.
int64 NextSubDaily(const TimingRule& rule, int64 now, const Zone& zone);

}  // namespace kestrin
