// What is wrong with a rule's numbers, in words for the person who typed them.
#pragma once

#include "core/EventRecord.h"

namespace kestrin {

/// Why the rule gives no occurrence at any time; empty when it does. A period type without a name
/// counts as such a fault. WhyRuleNeverYields also looks at prewarnings and nags.
const char* WhyNoOccurrence(const TimingRule& rule);

}  // namespace kestrin
