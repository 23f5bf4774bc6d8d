#include "core/timing/EventTiming.h"

#include <algorithm>
#include <optional>

#include "core/timing/EventOccurrence.h"
#include "core/timing/EventRuleCheck.h"
#include "core/timing/EventSteps.h"
#include "support/CalendarMonth.h"

namespace kestrin {

namespace {

int32 Stored(int64 time) { return static_cast<int32>(time); }

EventTimes Finished(int32 actual) { return {actual, 0, DoneWithEvent}; }

EventTimes AtTheEvent(int32 actual) { return {actual, actual, WaitingForEvent}; }

bool IsRepeating(int32 periodType) { return periodType > Once && periodType < NumberOfPeriodTypes; }

std::optional<int32> ComputeActual(const TimingRule& rule, int64 now, const Zone& zone) {
  if (!IsRepeating(rule.PeriodType)) {
    const int32 time = rule.PeriodType == Once ? rule.EventTime : rule.ActualEventTime;
    return time > now ? std::optional(time) : std::nullopt;
  }
  if (WhyNoOccurrence(rule)) return std::nullopt;
  const std::optional<int64> next = NextOccurrence(rule, now, zone);
  return next && FitsTime(*next) ? std::optional(Stored(*next)) : std::nullopt;
}

StepLength PrewarnRepeat(const TimingRule& rule) {
  return {rule.PrewarnRepeatTime, rule.PrewarnRepeatType};
}

EventTimes WithPrewarning(const TimingRule& rule, int32 actual, int64 now, const Zone& zone) {
  std::optional<int64> next =
      StepBack(actual, StepLength{rule.PrewarnTime, rule.PrewarnType}, zone);
  if (*next < now) {
    if (!rule.ApplyPrewarnRepeat) return AtTheEvent(actual);
    next = FirstStepFrom(*next, now, PrewarnRepeat(rule), zone);
  }
  if (!next || *next >= actual) return AtTheEvent(actual);
  return {actual, Stored(*next), WaitingForPrewarning};
}

}  // namespace

EventTimes ComputeEventTimes(const TimingRule& rule, int64 now, const Zone& zone,
                             bool skipPrewarn) {
  now = std::clamp<int64>(now, INT32_MIN, INT32_MAX);
  const std::optional<int32> actual = ComputeActual(rule, now, zone);
  if (!actual) return Finished(rule.PeriodType == Once ? rule.EventTime : rule.ActualEventTime);
  if (!rule.ApplyPrewarn || skipPrewarn) return AtTheEvent(*actual);
  return WithPrewarning(rule, *actual, now, zone);
}

EventTimes NextPrewarning(const TimingRule& rule, int64 now, const Zone& zone) {
  now = std::clamp<int64>(now, INT32_MIN, INT32_MAX);
  if (rule.NextEventTime > now)
    return {rule.ActualEventTime, rule.NextEventTime, WaitingForPrewarning};
  if (!rule.ApplyPrewarnRepeat) return AtTheEvent(rule.ActualEventTime);
  const std::optional<int64> next =
      FirstStepFrom(rule.NextEventTime, now + 1, PrewarnRepeat(rule), zone);
  if (!next || *next >= rule.ActualEventTime) return AtTheEvent(rule.ActualEventTime);
  return {rule.ActualEventTime, Stored(*next), WaitingForPrewarning};
}

EventTimes NextNag(const TimingRule& rule, int64 now, const Zone& zone) {
  now = std::clamp<int64>(now, INT32_MIN, INT32_MAX);
  const std::optional<int64> next = FirstStepFrom(
      rule.NextEventTime, now + 1, StepLength{rule.NagRepeatTime, rule.NagRepeatType}, zone);
  if (!next || !FitsTime(*next)) return Finished(rule.ActualEventTime);
  return {rule.ActualEventTime, Stored(*next), WaitingToNag};
}

bool IsSameDay(int64 a, int64 b, const Zone& zone) {
  return DayOf(zone.AtMoment(a)) == DayOf(zone.AtMoment(b));
}

int32 GetSecondsIntoDay(int32 time, const Zone& zone) {
  return SecondsIntoDay(zone.AtMoment(time));
}

std::optional<int32> OnDayOf(int32 day, int32 secondsIntoDay, const Zone& zone) {
  const Civil midnight = MidnightOf(zone.AtMoment(day));
  const int64 moment = zone.ToMoment(Civil{midnight.seconds + secondsIntoDay});
  if (!FitsTime(moment)) return std::nullopt;
  return Stored(moment);
}

int8 DetermineWeekOfMonth(int8 dayOfMonth, int8 dayOfWeek) {
  int w = dayOfWeek - dayOfMonth % 7;
  if (w < 0) w += 7;
  return static_cast<int8>((dayOfMonth + w - 1) / 7);
}

int32 FoldIntoDay(int64 seconds) { return SecondsIntoDay(Civil{seconds}); }

bool FitsTime(int64 time) { return time >= INT32_MIN && time <= INT32_MAX; }

}  // namespace kestrin
