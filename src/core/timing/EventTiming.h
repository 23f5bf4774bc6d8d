// When an event occurs next: pure functions from a rule, a moment and a zone. No clock is asked.
#pragma once

#include <optional>

#include "core/timing/EventRecord.h"
#include "support/LocalTime.h"

namespace kestrin {

struct EventTimes {
  int32 ActualEventTime;  ///< the next occurrence; unchanged for a period type above 11
  int32 NextEventTime;    ///< the next delivery of any kind; 0 when the event is finished
  EventStatus Status;
};

/// The whole computation: occurrence, prewarning, status. `skipPrewarn` leaves the prewarnings of
/// this occurrence out. The result of a repeating rule lies after `now` or is finished.
EventTimes ComputeEventTimes(const TimingRule& rule, int64 now, const Zone& zone,
                             bool skipPrewarn = false);

/// The next prewarning after `now`, from a rule whose prewarning at NextEventTime was delivered.
/// Steps that are overdue are jumped. At the event's own time the status is WaitingForEvent.
EventTimes NextPrewarning(const TimingRule& rule, int64 now, const Zone& zone);

/// The next nag after `now`; a step that can never advance ends the nagging (DoneWithEvent, 0).
EventTimes NextNag(const TimingRule& rule, int64 now, const Zone& zone);

/// Whether the rule says a time of day; a sub-daily one does by its start.
inline bool HasTimeOfDay(const TimingRule& rule) {
  return rule.ApplyTime || rule.PeriodType == SubDaily;
}
/// Whether the next message is shown with its time of day: not where it is the event's own bare
/// day.
inline bool MessageHasTimeOfDay(const TimingRule& rule) {
  return HasTimeOfDay(rule) || rule.NextEventTime != rule.ActualEventTime;
}
/// Whether two moments fall on one day of the wall clock.
bool IsSameDay(int64 a, int64 b, const Zone& zone);

/// The wall-clock time of day.
int32 GetSecondsIntoDay(int32 time, const Zone& zone);
/// The day of `day`, joined on the wall clock with a time of day; nothing where no time can hold
/// that.
std::optional<int32> OnDayOf(int32 day, int32 secondsIntoDay, const Zone& zone);
/// The 0-based row of a day in a month calendar whose weeks start on Monday.
int8 DetermineWeekOfMonth(int8 dayOfMonth, int8 dayOfWeek);

/// Folds any count of seconds into 0..86399.
int32 FoldIntoDay(int64 seconds);

/// Whether int32 can hold `time`, so that it can be stored.
bool FitsTime(int64 time);

}  // namespace kestrin
