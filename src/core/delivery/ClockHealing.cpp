#include "core/delivery/ClockHealing.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/journal/Journal.h"
#include "core/ports/Clock.h"
#include "core/timing/EventTiming.h"
#include "core/timing/EventTypes.h"

namespace kestrin {

namespace {

constexpr char WrongClock[] = "the clock was wrong when its next time was worked out";

bool Repeats(const TimingRule& rule) {
  return rule.PeriodType > Once && rule.PeriodType < NumberOfPeriodTypes;
}

/// A clock is set back by a little every day: within a day a nag is believed.
std::optional<EventTimes> NagFrom(const TimingRule& rule, int64 now, const Zone& zone) {
  TimingRule fromEvent = rule;
  fromEvent.NextEventTime = rule.ActualEventTime;
  const EventTimes limit = NextNag(fromEvent, now + SecondsPerDay, zone);
  if (limit.Status == DoneWithEvent || rule.NextEventTime <= limit.NextEventTime)
    return std::nullopt;
  return NextNag(fromEvent, now, zone);
}

/// Occurrences over a day ahead were delivered by the wrong clock: they bound nothing, or a rule by
/// the hour would be silent until then.
EventTimes Afresh(EventSet& set, const Event& event, int64 now, const Zone& zone) {
  const Journal* const journal = set.GetContext().journal;
  const std::optional<int32> last =
      journal ? journal->LastOccurrence(JournalPath(set), set.FileNames().Of(set, event),
                                        now + SecondsPerDay)
              : std::nullopt;
  return ComputeEventTimes(event.Record(), std::max<int64>(now, last.value_or(0)), zone);
}

/// The clock was behind when the event was set back, and nothing was delivered since: it goes on
/// where it stood. As long as the clock is not where it had been before that, it may have been
/// ahead then instead, and what the event was set back to has not come.
std::optional<EventTimes> Forth(EventSet& set, const Event& event, int64 now, const Zone& zone) {
  const Journal* const journal = set.GetContext().journal;
  if (!journal || event.GetActualEventTime() > now) return std::nullopt;
  std::vector<JournalRecord> records =
      journal->About(JournalPath(set), set.FileNames().Of(set, event));
  std::erase_if(records, [](const JournalRecord& record) { return !record.From || !record.To; });
  if (records.empty() || !records.back().GoesBack()) return std::nullopt;
  const JournalRecord& back = records.back();
  if (now < back.Looked) return std::nullopt;
  // As above, a day ahead is believed: the one before may have come.
  EventTimes times = ComputeEventTimes(event.Record(), now + SecondsPerDay, zone);
  const bool isSane = back.From->Next != 0 && back.From->Actual <= times.ActualEventTime;
  if (!isSane || back.Rule != RuleMark(event.Record()) || back.To != StateOf(event.Record()))
    return std::nullopt;
  times.ActualEventTime = back.From->Actual;
  times.NextEventTime = back.From->Next;
  times.Status = static_cast<EventStatus>(back.From->Status);
  return times;
}

std::optional<EventTimes> Healed(EventSet& set, const Event& event,
                                 const std::function<bool(const Event&)>& isPutOff) {
  const EventRecord& rule = event.Record();
  const int64 now = set.GetContext().clock.Now();
  const Zone& zone = set.GetContext().zone;
  if (!Repeats(rule)) return std::nullopt;
  if (const auto forth = Forth(set, event, now, zone)) return forth;
  if (rule.Status == WaitingToNag && rule.ActualEventTime <= now + SecondsPerDay)
    return isPutOff(event) ? std::nullopt : NagFrom(rule, now, zone);
  const bool isDone = rule.NextEventTime == 0;
  const EventTimes soonest = ComputeEventTimes(rule, now, zone);
  if (soonest.NextEventTime == 0) return std::nullopt;
  if (!isDone && rule.ActualEventTime <= soonest.ActualEventTime) return std::nullopt;
  const EventTimes times = Afresh(set, event, now, zone);
  const bool isSooner = isDone || times.ActualEventTime < rule.ActualEventTime;
  return times.NextEventTime != 0 && isSooner ? std::optional(times) : std::nullopt;
}

/// So that a file that was put back is healed as well.
void WriteDown(EventSet& set, const Event& event, const EventState& from, const EventState& to) {
  Journal* const journal = set.GetContext().journal;
  if (!journal) return;
  JournalRecord record;
  record.Set = JournalPath(set);
  record.Event = set.FileNames().Of(set, event);
  record.Rule = RuleMark(event.Record());
  record.Kind = RecordKind::Event;
  record.From = from;
  record.To = to;
  record.Act = ActStage::Passed;
  record.Why = WrongClock;
  record.Looked = journal->Seen().Time().value_or(0);
  journal->Begin(std::move(record));
}

}  // namespace

void HealTimes(EventSet& set, const std::function<bool(const Event&)>& isPutOff) {
  const AutoLock lock(set);
  const EventSet::DeliveryChange byItself(set);
  for (const auto& event : set.Events()) {
    const std::optional<EventTimes> times = Healed(set, *event, isPutOff);
    if (!times) continue;
    const EventState from = StateOf(event->Record());
    event->SetTimes(*times);
    WriteDown(set, *event, from, StateOf(*times));
  }
}

}  // namespace kestrin
