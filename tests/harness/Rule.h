// Rules written as one would say them: Rule(Monthly, ByDayOfMonth).On(31).At(7, 30).
#pragma once

#include <absl/time/time.h>

#include <stdexcept>
#include <string>

#include "core/timing/EventRecord.h"
#include "support/LocalTime.h"

namespace kestrin {

struct Rule : TimingRule {
  explicit Rule(int32 period, int32 timing = ByDate) {
    PeriodType = period;
    TimingType = timing;
  }
  Rule& At(int32 hour, int32 minute = 0) {
    ApplyTime = true;
    TimeToApply = hour * 3600 + minute * 60;
    return *this;
  }
  /// Months count from 1.
  Rule& On(int8 day, int8 month = 1) {
    DayOfMonth = day;
    Month = month - 1;
    return *this;
  }
  Rule& Week(int8 week, int8 weekday, int8 month = 1) {
    WeekOfMonth = week;
    DayOfWeek = weekday;
    Month = month - 1;
    return *this;
  }
  Rule& Every(uint32 multiple, int32 unit = Hours) {
    Multiple = multiple;
    SubIntType = unit;
    return *this;
  }
  Rule& From(int32 start) {
    MultiStartTime = start;
    return *this;
  }
  Rule& Date(int32 eventTime) {
    EventTime = eventTime;
    return *this;
  }
  Rule& Stop(int32 hour) {
    ApplyStop = true;
    StopTime = hour * 3600;
    return *this;
  }
};

/// "2026-03-29 02:30 +0100".
inline int32 MomentOf(const std::string& text) {
  absl::Time time;
  std::string fault;
  if (!absl::ParseTime("%Y-%m-%d %H:%M %z", text, &time, &fault)) throw std::logic_error(fault);
  return static_cast<int32>(absl::ToUnixSeconds(time));
}

/// The moment of a wall clock in UTC; months count from 1.
inline int32 Utc(int64 year, int64 month, int64 day, int64 hour = 0, int64 minute = 0) {
  return static_cast<int32>(ToCivil({year, month - 1, day, hour, minute}).seconds);
}

}  // namespace kestrin
