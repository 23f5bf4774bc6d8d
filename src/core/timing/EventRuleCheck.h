// What is wrong with a rule's numbers, in words for the person who typed them, and which month goes
// with what a person chooses.
#pragma once

#include <functional>

#include "core/timing/EventRecord.h"
#include "support/LocalTime.h"

namespace kestrin {

/// Why the rule gives no occurrence at any time; empty when it does. A period type without a name
/// counts as such a fault. WhyRuleNeverYields also looks at prewarnings and nags.
const char* WhyNoOccurrence(const TimingRule& rule);

/// Why a change of one value would make a rule that can never yield, for the person who asks for
/// it; empty when it would not. A fault that the rule has elsewhere does not count.
const char* WhyChangeRefused(const TimingRule& rule,
                             const std::function<void(TimingRule&)>& change);

/// Whether the rule looks for its day backwards from an end that `Month` says: a monthly kind by
/// day of week, WeekOfMonth 4 or more.
bool CountsBackFromMonth(const TimingRule& rule);

/// The month of the rule once a person has chosen its kind, type or week: such a search counts from
/// each month's own end; a yearly kind, which knows no such month, gets that of the event's time.
int8 MonthOnceChosen(const TimingRule& rule, const Zone& zone);

}  // namespace kestrin
