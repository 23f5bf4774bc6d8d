#include "core/events/EventProgress.h"

#include "core/events/Event.h"
#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/loop/MessageQueue.h"
#include "core/timing/EventTypes.h"
#include "support/LocalTime.h"

namespace kestrin {

namespace {

const Zone& ZoneOf(const Event& event) { return event.GetOwner()->GetContext().zone; }
int64 NowOf(const Event& event) { return event.GetOwner()->GetContext().clock.Now(); }

struct Progress {
  EventState State;
  bool IsAnew = false;  ///< worked out afresh from the rule
};

Progress Anew(const Event& event, int64 now) {
  return {StateOf(ComputeEventTimes(event.Record(), now, ZoneOf(event), event.GetSkipPrewarn())),
          true};
}

/// One step of nagging beyond `after`. A step that leads nowhere ends it: the next occurrence's
/// turn.
Progress AfterNag(const Event& event, int64 after) {
  const EventTimes times = NextNag(event.Record(), after, ZoneOf(event));
  if (times.Status == DoneWithEvent) return Anew(event, NowOf(event));
  return {StateOf(times)};
}

Progress AfterOccurrence(const Event& event, int64 now) {
  const EventRecord& record = event.Record();
  if (record.ApplyNag && !event.GetSkipNag()) {
    if (record.NextEventTime <= now) return AfterNag(event, now);
    return {{record.ActualEventTime, record.NextEventTime, WaitingToNag, false}};
  }
  // Not in the set: the person has deleted it meanwhile.
  const bool isInItsSet = event.indexStamp != 0;  // asked of the event: looking it up takes long
  if (record.DeleteOnceDelivered && isInItsSet) return {{0, 0, 0, true}};
  return Anew(event, now);
}

Progress AfterDelivery(const Event& event, int64 now) {
  const bool isAhead = event.GetNextEventTime() > now;
  switch (event.GetStatus()) {
    case WaitingForPrewarning:
      if (isAhead) break;
      return {StateOf(NextPrewarning(event.Record(), now, ZoneOf(event)))};
    case WaitingForEvent:
      return AfterOccurrence(event, now);
    case WaitingToNag:
      if (isAhead) break;
      return AfterNag(event, now);
    default:
      break;
  }
  return {StateOf(event.Record())};
}

void Apply(Event& event, const Progress& progress) {
  if (progress.IsAnew)
    event.UpdateEventTime();
  else
    AssignState(event, progress.State);
}

}  // namespace

void DropPrewarnings(Event& event, int64 now) {
  const int32 actual = event.GetActualEventTime();
  if (event.GetStatus() != WaitingForPrewarning || now < actual) return;
  event.SetTimes({actual, actual, WaitingForEvent});
}

void PassOverMissed(Event& event) {
  if (event.Record().ApplyNag)
    Apply(event, AfterNag(event, event.GetNextEventTime()));
  else
    event.UpdateEventTime();
}

EventState StateAfterDelivery(const Event& event, int64 now) {
  return AfterDelivery(event, now).State;
}

EventState EventDelivered(Event& event) {
  MessageQueue& queue = event.GetOwner()->GetContext().queue;
  const Progress progress = AfterDelivery(event, NowOf(event));
  Apply(event, progress);
  queue.Post(EVENT_DEALT_WITH);
  return progress.State;
}

void AssignState(Event& event, const EventState& state) {
  if (!state.Gone) {
    event.SetTimes({state.Actual, state.Next, static_cast<EventStatus>(state.Status)});
    return;
  }
  EventSet& owner = *event.GetOwner();
  const std::unique_ptr<Event> self = owner.RemoveEvent(&event);
  owner.SetModified();
}

void PassRemindersOver(Event& event, int64 until) {
  const EventSet::DeliveryChange byPerson(*event.GetOwner());
  if (event.GetNextEventTime() == 0 || event.GetNextEventTime() > until) return;
  if (event.GetStatus() == WaitingToNag)
    Apply(event, AfterNag(event, until));
  else if (event.GetStatus() == WaitingForPrewarning)
    event.SetTimes(NextPrewarning(event.Record(), until, ZoneOf(event)));
}

}  // namespace kestrin
