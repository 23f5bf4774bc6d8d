#include "core/timing/EventRuleCheck.h"

#include "core/timing/EventTiming.h"

namespace kestrin {

namespace {

constexpr const char* Fine = "";

bool IsWithin(int32 value, int32 least, int32 most) { return value >= least && value <= most; }

const char* WhyNoDayOfWeek(const TimingRule& rule) {
  return IsWithin(rule.DayOfWeek, 0, 6) ? Fine : "There is no such weekday; choose one of seven.";
}

const char* WhyNoMonth(const TimingRule& rule) {
  return IsWithin(rule.Month, 0, 11) ? Fine : "There is no such month; choose one of twelve.";
}

const char* WhyNoDayByRule(const TimingRule& rule) {
  const bool yearly = rule.PeriodType == Annually || rule.PeriodType == MultiAnnually;
  const bool byDayOfMonth = rule.TimingType == ByDayOfMonth;
  if (byDayOfMonth && !IsWithin(rule.DayOfMonth, 1, 59))
    return "No month has such a day; choose a day from the list.";
  if (!byDayOfMonth && !IsWithin(rule.WeekOfMonth, 0, 7))
    return "No month has such a week; choose a week from the list.";
  if (!byDayOfMonth && *WhyNoDayOfWeek(rule)) return WhyNoDayOfWeek(rule);
  if (yearly) return WhyNoMonth(rule);
  return CountsBackFromMonth(rule) && rule.Month != EachMonthsOwnEnd ? WhyNoMonth(rule) : Fine;
}

const char* WhyNoYear(const TimingRule& rule) {
  if (!IsWithin(rule.TimingType, 0, NumberOfTimingTypes - 1))
    return "There is no such way to choose the day; choose a type from the list.";
  return rule.TimingType == ByDate ? Fine : WhyNoDayByRule(rule);
}

const char* WhyNoSubDailyStep(const TimingRule& rule) {
  switch (rule.SubIntType) {
    case Months:
      return "A day cannot be divided by months; choose hours or minutes.";
    case Weeks:
    case Days:
      return rule.Multiple ? Fine : "A step of 0 never comes round; enter 1 or more.";
    case Hours:
      return rule.Multiple ? Fine : "Every 0 hours never comes round; enter 1 or more.";
    case Minutes:
      return rule.Multiple ? Fine : "Every 0 minutes never comes round; enter 1 or more.";
    default:
      return "There is no such unit of time; choose hours or minutes.";
  }
}

const char* WhyNoRepeat(uint32 count, int32 unit) {
  if (!IsWithin(unit, 0, NumberOfIntervalTypes - 1))
    return "There is no such unit of time; choose a unit from the list.";
  return count ? Fine : "Repeated every 0 units, a message never comes again; enter 1 or more.";
}

/// A rule without a fault that asks the same of its values.
TimingRule FaultlessLike(const TimingRule& rule) {
  TimingRule faultless;
  if (IsWithin(rule.PeriodType, 0, NumberOfPeriodTypes - 1)) faultless.PeriodType = rule.PeriodType;
  if (IsWithin(rule.TimingType, 0, NumberOfTimingTypes - 1)) faultless.TimingType = rule.TimingType;
  if (IsWithin(rule.SubIntType, Hours, Minutes)) faultless.SubIntType = rule.SubIntType;
  faultless.ApplyPrewarn = rule.ApplyPrewarn;
  faultless.ApplyPrewarnRepeat = rule.ApplyPrewarnRepeat;
  faultless.ApplyNag = rule.ApplyNag;
  return faultless;
}

}  // namespace

bool CountsBackFromMonth(const TimingRule& rule) {
  const bool monthly = rule.PeriodType == Monthly || rule.PeriodType == MultiMonthly;
  return monthly && rule.TimingType != ByDayOfMonth && rule.WeekOfMonth >= 4;
}

int8 MonthOnceChosen(const TimingRule& rule, const Zone& zone) {
  if (CountsBackFromMonth(rule)) return EachMonthsOwnEnd;
  const bool yearly = rule.PeriodType == Annually || rule.PeriodType == MultiAnnually;
  if (!yearly || rule.Month != EachMonthsOwnEnd) return rule.Month;
  return static_cast<int8>(ToFields(zone.AtMoment(rule.EventTime)).month);
}

const char* WhyNoOccurrence(const TimingRule& rule) {
  switch (rule.PeriodType) {
    case Once:
    case Daily:
    case Weekdays:
    case Weekends:
      return Fine;
    case Annually:
      return WhyNoYear(rule);
    case Monthly:
      return WhyNoDayByRule(rule);
    case Weekly:
      return WhyNoDayOfWeek(rule);
    case MultiAnnually:
      return rule.Multiple ? WhyNoYear(rule) : "Every 0 years never comes round; enter 1 or more.";
    case MultiMonthly:
      return rule.Multiple ? WhyNoDayByRule(rule)
                           : "Every 0 months never comes round; enter 1 or more.";
    case MultiWeekly:
      return rule.Multiple ? WhyNoDayOfWeek(rule)
                           : "Every 0 weeks never comes round; enter 1 or more.";
    case MultiDaily:
      return rule.Multiple ? Fine : "Every 0 days never comes round; enter 1 or more.";
    case SubDaily:
      return WhyNoSubDailyStep(rule);
    default:
      return "There is no such kind of repetition; choose one from the list.";
  }
}

const char* WhyRuleNeverYields(const TimingRule& rule) {
  const char* why = WhyNoOccurrence(rule);
  if (*why) return why;
  if (rule.ApplyPrewarn) {
    if (!IsWithin(rule.PrewarnType, 0, NumberOfIntervalTypes - 1))
      return "There is no such unit of time; choose a unit from the list.";
    why = rule.ApplyPrewarnRepeat ? WhyNoRepeat(rule.PrewarnRepeatTime, rule.PrewarnRepeatType)
                                  : Fine;
  }
  if (!*why && rule.ApplyNag) why = WhyNoRepeat(rule.NagRepeatTime, rule.NagRepeatType);
  return why;
}

const char* WhyChangeRefused(const TimingRule& rule,
                             const std::function<void(TimingRule&)>& change) {
  TimingRule candidate = *WhyRuleNeverYields(rule) ? FaultlessLike(rule) : rule;
  change(candidate);
  return WhyRuleNeverYields(candidate);
}

}  // namespace kestrin
