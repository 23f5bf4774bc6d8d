// What the menus of the editor call the numbers of a rule.
#pragma once

#include <QString>

#include "kestrin/Types.h"

namespace kestrin {

/// A number outside its table is called "Unknown (n)".
QString PeriodTypeLabel(int32 periodType);
/// What a kind is whose name does not say it; else empty.
QString PeriodTypeTip(int32 periodType);
QString TimingTypeLabel(int32 timingType);
/// "years" and the like; empty for types without an interval and for SubDaily, which has a menu.
QString IntervalUnitLabel(int32 periodType);
QString IntervalTypeLabel(int32 intervalType);
/// "12th", "Last", "2nd to last".
QString DayOfMonthLabel(int32 code);
QString WeekOfMonthLabel(int32 code);
QString WeekdayLabel(int32 weekday);
QString MonthLabel(int32 month);

}  // namespace kestrin
