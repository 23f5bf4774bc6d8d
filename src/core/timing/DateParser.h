// Typed dates and times of day. What is understood is listed in docs/time-rules.md.
#pragma once

#include <optional>
#include <string_view>

#include "support/LocalTime.h"

namespace kestrin {

struct ReadMoment {
  int32 moment;
  Civil wall;  ///< as it was asked for, even where the clocks skip it
};

/// Knows 24-hour times only.
std::optional<ReadMoment> ReadDate(std::string_view text, int64 now, const Zone& zone);

/// Whether ReadDate understands the text, be it a date that no stored time reaches.
bool IsDate(std::string_view text, int64 now, const Zone& zone);

/// Seconds after midnight.
std::optional<int32> ReadTimeOfDay(std::string_view text);

}  // namespace kestrin
