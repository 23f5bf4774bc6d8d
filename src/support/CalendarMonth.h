// Whole-number calendar arithmetic: no zone. What walks many months works on these numbers alone.
// Days are counted from 1970-01-01, months from January of the year 0 (proleptic Gregorian).
#pragma once

#include <array>

#include "support/LocalTime.h"

namespace kestrin {

struct DayInMonth {
  int64 month;
  int64 day;  ///< 1..31, or beyond where a caller has yet to let it run over
};

/// Rounds towards minus infinity; `by` is positive.
inline constexpr int64 FloorDivide(int64 value, int64 by) {
  return value / by - (value % by < 0 ? 1 : 0);
}

inline constexpr bool IsLeapYear(uint64 year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// A multiple of 400 years that makes every year positive, so that divisions are plain ones.
inline constexpr uint64 YearBias = 10'000'000'000;

struct BiasedMonth {
  uint64 year, inYear;
};
inline constexpr BiasedMonth Biased(int64 month) {
  const uint64 biased = static_cast<uint64>(month + int64{YearBias} * 12);
  return {biased / 12, biased % 12};
}

/// Months within 10^11 of year 0, here and below.
inline constexpr int64 FirstDayOf(int64 month) {
  constexpr std::array<int16_t, 12> before = {0,   31,  59,  90,  120, 151,
                                              181, 212, 243, 273, 304, 334};
  constexpr int64 biasDays = YearBias / 400 * 146097, daysTo1970 = 719528;
  const auto [year, inYear] = Biased(month);
  const uint64 leapDays = (year + 3) / 4 - (year + 99) / 100 + (year + 399) / 400;
  const uint64 days = year * 365 + leapDays + static_cast<uint64>(before[inYear]) +
                      (inYear >= 2 && IsLeapYear(year) ? 1 : 0);
  return static_cast<int64>(days) - biasDays - daysTo1970;
}

inline constexpr int64 LengthOf(int64 month) {
  constexpr std::array<int8, 12> lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const auto [year, inYear] = Biased(month);
  return inYear == 1 && IsLeapYear(year) ? 29 : lengths[inYear];
}

/// Days within 3 * 10^12 of 1970.
inline constexpr DayInMonth MonthOf(int64 day) {
  // Counted in years that begin in March, so that a leap day ends one: 400 of them, then within.
  constexpr int64 daysToMarchOfYear0 = 719468, daysPerEra = 146097;
  const int64 era = FloorDivide(day + daysToMarchOfYear0, daysPerEra);
  const auto inEra = static_cast<uint32>(day + daysToMarchOfYear0 - era * daysPerEra);
  const uint32 year = (inEra - inEra / 1460 + inEra / 36524 - inEra / 146096) / 365;
  const uint32 inYear = inEra - (365 * year + year / 4 - year / 100);
  const uint32 fromMarch = (5 * inYear + 2) / 153;
  const int64 month = (era * 400 + year) * 12 + fromMarch + 2;
  return {month, int64{inYear} - (153 * fromMarch + 2) / 5 + 1};
}

inline constexpr int64 DayOf(Civil time) { return FloorDivide(time.seconds, SecondsPerDay); }
inline constexpr Civil OnDay(int64 day, int64 secondsIntoDay) {
  return {day * SecondsPerDay + secondsIntoDay};
}

/// 0 = Sunday.
inline constexpr int64 WeekdayOfDay(int64 day) {
  constexpr int64 wholeWeeks = 700'000'000'000'000;  // makes every day positive
  return static_cast<int64>(static_cast<uint64>(day + 4 + wholeWeeks) % 7);
}

/// Months on the wall clock: the day of the month stays, and runs over into the next month where
/// there is no such day.
inline constexpr Civil AddMonths(Civil time, int64 months) {
  const int64 day = DayOf(time);
  const DayInMonth date = MonthOf(day);
  return OnDay(FirstDayOf(date.month + months) + date.day - 1, time.seconds - day * SecondsPerDay);
}

}  // namespace kestrin
