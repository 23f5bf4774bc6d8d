#include "core/timing/EventSteps.h"

#include "support/CalendarMonth.h"

namespace kestrin {

namespace {

// Repeated steps of months, each of which may run over the end of a month: up to `limit` the last
// one before it, cheaply. A day that is going to run over does so within four leap years.
Civil WalkMonthsBefore(Civil time, int64 months, Civil limit) {
  constexpr int StepsThatSettle = 48;
  Civil next = AddMonths(time, months);
  for (int i = 0; i < StepsThatSettle && next < limit; ++i) {
    time = next;
    next = AddMonths(time, months);
  }
  const int64 between = MonthOf(DayOf(limit)).month - MonthOf(DayOf(time)).month;
  if (between / months > 2) time = AddMonths(time, (between / months - 2) * months);
  return time;
}

int64 FirstMonthStepFrom(int64 from, int64 least, int64 months, const Zone& zone) {
  constexpr int64 slack = 2 * SecondsPerDay;  // more than any zone moves its clocks at once
  Civil time = zone.AtMoment(from);
  const Civil limit = {zone.AtMoment(least).seconds - slack};
  if (time < limit) time = WalkMonthsBefore(time, months, limit);
  for (;;) {
    time = AddMonths(time, months);
    if (time.seconds > INT32_MAX + slack) return time.seconds;
    const int64 moment = zone.ToMoment(time);
    if (moment >= least) return moment;
  }
}

}  // namespace

int64 StepLength::Seconds() const {
  return unit >= 0 && unit < NumberOfIntervalTypes
             ? IntervalLength[static_cast<size_t>(unit)] * count
             : 0;
}

std::optional<int64> FirstStepFrom(int64 from, int64 least, StepLength step, const Zone& zone) {
  if (from >= least) return from;
  if (step.IsMonths() && step.count > 0) return FirstMonthStepFrom(from, least, step.count, zone);
  const int64 seconds = step.Seconds();
  if (seconds == 0) return std::nullopt;
  return from + (least - from + seconds - 1) / seconds * seconds;
}

int64 StepBack(int64 time, StepLength step, const Zone& zone) {
  if (!step.IsMonths() || step.count == 0) return time - step.Seconds();
  return zone.ToMoment(AddMonths(zone.AtMoment(time), -int64{step.count}));
}

}  // namespace kestrin
