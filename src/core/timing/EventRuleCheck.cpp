#include "core/timing/EventRuleCheck.h"

namespace kestrin {

namespace {

constexpr std::nullopt_t Fine = std::nullopt;

bool IsWithin(int32 value, int32 least, int32 most) { return value >= least && value <= most; }

WhyNot Unless(bool isFine, const char* sentence) { return isFine ? WhyNot() : WhyNot(sentence); }

WhyNot WhyNoDayOfWeek(const TimingRule& rule) {
  return Unless(IsWithin(rule.DayOfWeek, 0, 6), "There is no such weekday; choose one of seven.");
}

WhyNot WhyNoMonth(const TimingRule& rule) {
  return Unless(IsWithin(rule.Month, 0, 11), "There is no such month; choose one of twelve.");
}

WhyNot WhyNoDayByRule(const TimingRule& rule) {
  const bool yearly = rule.PeriodType == Annually || rule.PeriodType == MultiAnnually;
  const bool byDayOfMonth = rule.TimingType == ByDayOfMonth;
  if (byDayOfMonth && !IsWithin(rule.DayOfMonth, 1, 59))
    return "No month has such a day; choose a day from the list.";
  if (!byDayOfMonth && !IsWithin(rule.WeekOfMonth, 0, 7))
    return "No month has such a week; choose a week from the list.";
  if (const WhyNot why = byDayOfMonth ? Fine : WhyNoDayOfWeek(rule)) return why;
  if (yearly) return WhyNoMonth(rule);
  return CountsBackFromMonth(rule) && rule.Month != EachMonthsOwnEnd ? WhyNoMonth(rule) : Fine;
}

WhyNot WhyNoYear(const TimingRule& rule) {
  if (!IsWithin(rule.TimingType, 0, NumberOfTimingTypes - 1))
    return "There is no such way to choose the day; choose a type from the list.";
  return rule.TimingType == ByDate ? Fine : WhyNoDayByRule(rule);
}

WhyNot WhyNoSubDailyStep(const TimingRule& rule) {
  switch (rule.SubIntType) {
    case Months:
      return "A day cannot be divided by months; choose hours or minutes.";
    case Weeks:
    case Days:
      return Unless(rule.Multiple, "A step of 0 never comes round; enter 1 or more.");
    case Hours:
      return Unless(rule.Multiple, "Every 0 hours never comes round; enter 1 or more.");
    case Minutes:
      return Unless(rule.Multiple, "Every 0 minutes never comes round; enter 1 or more.");
    default:
      return "There is no such unit of time; choose hours or minutes.";
  }
}

WhyNot WhyNoRepeat(uint32 count, int32 unit) {
  if (!IsWithin(unit, 0, NumberOfIntervalTypes - 1))
    return "There is no such unit of time; choose a unit from the list.";
  return Unless(count, "Repeated every 0 units, a message never comes again; enter 1 or more.");
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

WhyNot WhyNoOccurrence(const TimingRule& rule) {
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
      return rule.Multiple ? WhyNoYear(rule)
                           : WhyNot("Every 0 years never comes round; enter 1 or more.");
    case MultiMonthly:
      return rule.Multiple ? WhyNoDayByRule(rule)
                           : WhyNot("Every 0 months never comes round; enter 1 or more.");
    case MultiWeekly:
      return rule.Multiple ? WhyNoDayOfWeek(rule)
                           : WhyNot("Every 0 weeks never comes round; enter 1 or more.");
    case MultiDaily:
      return Unless(rule.Multiple, "Every 0 days never comes round; enter 1 or more.");
    case SubDaily:
      return WhyNoSubDailyStep(rule);
    default:
      return "There is no such kind of repetition; choose one from the list.";
  }
}

WhyNot WhyRuleNeverYields(const TimingRule& rule) {
  if (const WhyNot why = WhyNoOccurrence(rule)) return why;
  if (rule.ApplyPrewarn && !IsWithin(rule.PrewarnType, 0, NumberOfIntervalTypes - 1))
    return "There is no such unit of time; choose a unit from the list.";
  if (rule.ApplyPrewarn && rule.ApplyPrewarnRepeat)
    if (const WhyNot why = WhyNoRepeat(rule.PrewarnRepeatTime, rule.PrewarnRepeatType)) return why;
  return rule.ApplyNag ? WhyNoRepeat(rule.NagRepeatTime, rule.NagRepeatType) : Fine;
}

WhyNot WhyChangeRefused(const TimingRule& rule, const std::function<void(TimingRule&)>& change) {
  TimingRule candidate = WhyRuleNeverYields(rule) ? FaultlessLike(rule) : rule;
  change(candidate);
  return WhyRuleNeverYields(candidate);
}

}  // namespace kestrin
