// What is wrong with a rule's numbers, in words for the person who typed them, and which month goes
// with what a person chooses.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "core/timing/EventRecord.h"
#include "support/LocalTime.h"

namespace kestrin {

/// A sentence, or nothing when all is well.
using WhyNot = std::optional<std::string_view>;

/// Why the rule gives no occurrence at any time. A period type without a name counts as such a
/// fault.
WhyNot WhyNoOccurrence(const TimingRule& rule);

/// The same, and what is wrong with the prewarnings and nags that the rule asks for.
WhyNot WhyRuleNeverYields(const TimingRule& rule);

/// Why a change of one value would make a rule that can never yield. A fault that the rule has
/// elsewhere does not count.
WhyNot WhyChangeRefused(const TimingRule& rule, const std::function<void(TimingRule&)>& change);

/// Whether the rule looks for its day backwards from an end that `Month` says: a monthly kind by
/// day of week, WeekOfMonth 4 or more.
bool CountsBackFromMonth(const TimingRule& rule);

/// The month of the rule once a person has chosen its kind, type or week: such a search counts from
/// each month's own end; a yearly kind, which knows no such month, gets that of the event's time.
int8 MonthOnceChosen(const TimingRule& rule, const Zone& zone);

}  // namespace kestrin
