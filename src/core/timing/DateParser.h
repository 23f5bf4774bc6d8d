// Typed dates and times of day. What is understood is listed in docs/time-rules.md.
#pragma once

#include <optional>
#include <string_view>

#include "core/timing/DateLanguage.h"
#include "support/LocalTime.h"

namespace kestrin {

struct ReadMoment {
  int32 moment;
  Civil wall;              ///< as it was asked for, even where the clocks skip it
  bool hasTime = false;    ///< a time of day was named, or a count of hours
  bool timeAlone = false;  ///< and no day
};

struct DateAnswer {
  bool isDate = false;  ///< be it one that no stored time reaches
  std::optional<ReadMoment> read;
};

/// Knows English and 24-hour times only.
DateAnswer ReadDate(std::string_view text, int64 now, const Zone& zone,
                    DateOrder order = DateOrder::MonthFirst);

/// Seconds after midnight.
std::optional<int32> ReadTimeOfDay(std::string_view text);

}  // namespace kestrin
