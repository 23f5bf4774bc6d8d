// A rule in words, and the dates it comes to. docs/time-rules.md has a table of both.
#pragma once

#include <string>
#include <vector>

#include "core/timing/EventRecord.h"
#include "support/LocalTime.h"

namespace kestrin {

/// When the rule rings, warns and nags, as one English sentence with its full stop. A rule that
/// never yields says why.
std::string RuleSentence(const TimingRule& rule, const Zone& zone, bool use24Hours);

/// The next occurrences after `now`, at most `count`. Prewarnings and nags are none.
std::vector<int32> NextDates(const TimingRule& rule, int64 now, const Zone& zone, size_t count);

/// NextDates as a person reads them, each with its weekday, and with its time of day unless the
/// event is one of whole days.
std::vector<std::string> NextDateTexts(const TimingRule& rule, int64 now, const Zone& zone,
                                       size_t count, bool use24Hours);

/// "the 31st of each month": the end that a search backwards starts from, or empty for rules
/// without one and for those that count from each month's own end.
std::string CountedBackFrom(const TimingRule& rule);

}  // namespace kestrin
