#include "interface/editor/WhenLabels.h"

#include <array>
#include <span>
#include <string_view>

#include "core/timing/EventTypes.h"

namespace kestrin {

namespace {

constexpr std::array<std::string_view, NumberOfPeriodTypes> PeriodTypeNames = {
    "Once",     "Annually",      "Monthly",      "Weekly",      "Daily",      "Weekdays",
    "Weekends", "MultiAnnually", "MultiMonthly", "MultiWeekly", "MultiDaily", "SubDaily"};
constexpr std::array<std::string_view, NumberOfTimingTypes> TimingTypeNames = {
    "By date", "By day of month", "By day of week"};
constexpr std::array<std::string_view, NumberOfIntervalTypes> IntervalTypeNames = {
    "months", "weeks", "days", "hours", "minutes"};
constexpr std::array<const char*, 10> Suffix = {"th", "st", "nd", "rd", "th",
                                                "th", "th", "th", "th", "th"};

QString LabelIn(std::span<const std::string_view> names, int32 row) {
  if (row < 0 || static_cast<size_t>(row) >= names.size()) return QString("Unknown (%1)").arg(row);
  const std::string_view name = names[static_cast<size_t>(row)];
  return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

QString Ordinal(int32 number) {
  const bool isTeen = number >= 11 && number <= 13;
  return QString("%1%2").arg(number).arg(isTeen ? "th" : Suffix[static_cast<size_t>(number % 10)]);
}

QString FromTheEnd(int32 number) { return number == 1 ? "Last" : Ordinal(number) + " to last"; }

}  // namespace

QString PeriodTypeLabel(int32 periodType) { return LabelIn(PeriodTypeNames, periodType); }
QString PeriodTypeTip(int32 periodType) {
  switch (periodType) {
    case MultiAnnually:
      return "Every so many years, as every 2 years";
    case MultiMonthly:
      return "Every so many months, as every 3 months";
    case MultiWeekly:
      return "Every so many weeks, as every 2 weeks";
    case MultiDaily:
      return "Every so many days, as every 10 days";
    case SubDaily:
      return "Several times a day: every so many hours or minutes";
    default:
      return {};
  }
}

QString TimingTypeLabel(int32 timingType) { return LabelIn(TimingTypeNames, timingType); }
QString IntervalTypeLabel(int32 intervalType) { return LabelIn(IntervalTypeNames, intervalType); }
QString WeekdayLabel(int32 weekday) { return LabelIn(DayNames, weekday); }
QString MonthLabel(int32 month) { return LabelIn(MonthNames, month); }

QString IntervalUnitLabel(int32 periodType) {
  switch (periodType) {
    case MultiAnnually:
      return "years";
    case MultiMonthly:
      return "months";
    case MultiWeekly:
      return "weeks";
    case MultiDaily:
      return "days";
    default:
      return {};
  }
}

QString DayOfMonthLabel(int32 code) {
  if (code < 1) return LabelIn({}, code);
  return code < 32 ? Ordinal(code) : FromTheEnd(code - 31);
}

QString WeekOfMonthLabel(int32 code) {
  if (code < 0) return LabelIn({}, code);
  return code < 4 ? Ordinal(code + 1) : FromTheEnd(code - 3);
}

}  // namespace kestrin
