#include "core/events/EventProgress.h"

#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/loop/MessageQueue.h"
#include "core/timing/EventTypes.h"
#include "support/LocalTime.h"

namespace kestrin {

namespace {

const Zone& ZoneOf(const Event& event) { return event.GetOwner()->GetContext().zone; }
int64 NowOf(const Event& event) { return event.GetOwner()->GetContext().clock.Now(); }

/// One step of nagging beyond `after`. A step that leads nowhere ends it: the next occurrence's
/// turn.
void StepNag(Event& event, int64 after) {
  const EventTimes times = NextNag(event.Record(), after, ZoneOf(event));
  if (times.Status == DoneWithEvent)
    event.UpdateEventTime();
  else
    event.SetTimes(times);
}

void PrewarningDelivered(Event& event, int64 now) {
  if (event.GetNextEventTime() <= now)
    event.SetTimes(NextPrewarning(event.Record(), now, ZoneOf(event)));
}

void OccurrenceDelivered(Event& event, int64 now) {
  const EventRecord& record = event.Record();
  if (record.ApplyNag && !event.GetSkipNag()) {
    if (record.NextEventTime <= now)
      StepNag(event, now);
    else
      event.SetTimes({record.ActualEventTime, record.NextEventTime, WaitingToNag});
    return;
  }
  EventSet& owner = *event.GetOwner();
  // Not in the set: the person has deleted it meanwhile.
  if (!record.DeleteOnceDelivered || !owner.HasEvent(&event)) {
    event.UpdateEventTime();
    return;
  }
  const std::unique_ptr<Event> self = owner.RemoveEvent(&event);
  owner.SetModified();
}

void NagDelivered(Event& event, int64 now) {
  if (event.GetNextEventTime() <= now) StepNag(event, now);
}

}  // namespace

void DropPrewarnings(Event& event, int64 now) {
  const int32 actual = event.GetActualEventTime();
  if (event.GetStatus() != WaitingForPrewarning || now < actual) return;
  event.SetTimes({actual, actual, WaitingForEvent});
}

void PassOverMissed(Event& event) {
  if (event.Record().ApplyNag)
    StepNag(event, event.GetNextEventTime());
  else
    event.UpdateEventTime();
}

void EventDelivered(Event& event) {
  MessageQueue& queue = event.GetOwner()->GetContext().queue;
  const int64 now = NowOf(event);
  switch (event.GetStatus()) {
    case WaitingForPrewarning:
      PrewarningDelivered(event, now);
      break;
    case WaitingForEvent:
      OccurrenceDelivered(event, now);
      break;
    case WaitingToNag:
      NagDelivered(event, now);
      break;
    default:
      break;
  }
  queue.Post(EVENT_DEALT_WITH);
}

void PassRemindersOver(Event& event, int64 until) {
  const EventSet::DeliveryChange byPerson(*event.GetOwner());
  if (event.GetNextEventTime() == 0 || event.GetNextEventTime() > until) return;
  if (event.GetStatus() == WaitingToNag)
    StepNag(event, until);
  else if (event.GetStatus() == WaitingForPrewarning)
    event.SetTimes(NextPrewarning(event.Record(), until, ZoneOf(event)));
}

void MoveOn(Event& event) {
  const EventSet::DeliveryChange byDelivery(*event.GetOwner());
  DropPrewarnings(event, NowOf(event));
  EventDelivered(event);
}

}  // namespace kestrin
