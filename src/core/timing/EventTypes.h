// The fixed numbers of an event's record. They stand in set files: never renumber.
#pragma once

#include <array>
#include <string_view>

#include "kestrin/Types.h"

namespace kestrin {

enum PeriodicityType : int32 {
  Once = 0,
  Annually = 1,
  Monthly = 2,
  Weekly = 3,
  Daily = 4,
  Weekdays = 5,
  Weekends = 6,
  MultiAnnually = 7,
  MultiMonthly = 8,
  MultiWeekly = 9,
  MultiDaily = 10,
  SubDaily = 11,
};
inline constexpr int32 NumberOfPeriodTypes = 12;

enum TimingType : int32 { ByDate = 0, ByDayOfMonth = 1, ByDayOfWeek = 2 };
inline constexpr int32 NumberOfTimingTypes = 3;

enum TimeIntervalType : int32 { Months = 0, Weeks = 1, Days = 2, Hours = 3, Minutes = 4 };
inline constexpr int32 NumberOfIntervalTypes = 5;

/// A month beside the twelve, for the monthly kinds by day of week: a search backwards starts from
/// the end of whatever month it looks at.
inline constexpr int8 EachMonthsOwnEnd = 12;

enum EventStatus : int32 {
  WaitingForPrewarning = 0,
  WaitingForEvent = 1,
  WaitingToNag = 2,
  DoneWithEvent = 3,
};

/// Seconds per unit; 0 for months, which are calendar arithmetic.
inline constexpr std::array<int64, NumberOfIntervalTypes> IntervalLength = {0, 604800, 86400, 3600,
                                                                            60};

inline constexpr std::array<std::string_view, 4> StatusMessages = {
    "Waiting for prewarning", "Waiting for event", "Waiting to nag", "Done with event"};
inline constexpr std::string_view InactiveMessage = "Inactive";

inline constexpr std::array<std::string_view, 7> DayNames = {
    "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
inline constexpr std::array<std::string_view, 12> MonthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
inline constexpr std::array<std::string_view, 7> DayAbbr = {"Sun", "Mon", "Tue", "Wed",
                                                            "Thu", "Fri", "Sat"};
inline constexpr std::array<std::string_view, 12> MonthAbbr = {
    "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

/// The icon numbers that stand for something else than a standard icon, which are 0 and up.
inline constexpr int32 OwnIconNumber = -2, NoIconNumber = -1;

/// Which TimingType (column) each PeriodicityType (row) admits.
inline constexpr bool AllowableTypeCombination[NumberOfPeriodTypes][NumberOfTimingTypes] = {
    {true, false, false}, {true, true, true},   {false, true, true}, {false, false, true},
    {true, true, true},   {true, true, true},   {true, true, true},  {true, true, true},
    {false, true, true},  {false, false, true}, {true, true, true},  {true, true, true},
};

}  // namespace kestrin
