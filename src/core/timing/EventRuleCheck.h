// What is wrong with a rule's numbers, in words for the person who typed them.
#pragma once

#include <functional>

#include "core/timing/EventRecord.h"

namespace kestrin {

/// Why the rule gives no occurrence at any time; empty when it does. A period type without a name
/// counts as such a fault. WhyRuleNeverYields also looks at prewarnings and nags.
const char* WhyNoOccurrence(const TimingRule& rule);

/// Why a change of one value would make a rule that can never yield, for the person who asks for
/// it; empty when it would not. A fault that the rule has elsewhere does not count.
const char* WhyChangeRefused(const TimingRule& rule,
                             const std::function<void(TimingRule&)>& change);

}  // namespace kestrin
