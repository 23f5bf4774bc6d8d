#include "core/delivery/EventDelivery.h"

#include <cstdio>

#include "core/delivery/ActionWatch.h"
#include "core/delivery/DeliveryRecord.h"
#include "core/events/Event.h"
#include "core/events/EventIdentity.h"
#include "core/events/EventProgress.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/EventActions.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"
#include "core/timing/EventTypes.h"
#include "support/CalendarMonth.h"
#include "support/LocalTime.h"

namespace kestrin {

namespace {

/// An event without a time of day is never late on its own day; nothing is late within a minute.
bool IsLate(const Event& event, int64 now) {
  const int64 actual = event.GetActualEventTime();
  const bool isOnItsDay = IsSameDay(actual, now, event.GetOwner()->GetContext().zone);
  return (!isOnItsDay || HasTimeOfDay(event.Record())) && actual < now - 60;
}

/// Under the eyes of the watch, with the set unlocked. Whoever is at the windows meanwhile may
/// change the event, delete it, or close its set.
template <typename Action>
void Act(Event& event, const DeliveryRecord& record, Action act) {
  if (!record.MayAct()) return;
  EventSet& owner = *event.GetOwner();
  ActionWatch* const watch = owner.GetContext().watch;
  const EventSet::ActionRuns running(owner);
  event.SetActing(true);
  event.SetDelivery(record.Id());
  owner.Unlock();
  if (watch) watch->Begin(record.Id());
  act();
  if (watch) watch->End();
  owner.Lock();
  event.SetDelivery("");
  event.SetActing(false);
}

template <typename Action>
void Deliver(Event& event, const DeliveryRecord::Delivery& delivery, Action act) {
  EventSet& owner = *event.GetOwner();
  const EventState due = StateOf(event.Record());
  DeliveryRecord record(event, delivery);
  Act(event, record, act);
  if (StateOf(event.Record()) == due) {
    record.Acted(EventDelivered(event));
  } else {  // the person's own times stand, and their rule; the file's event goes on by its own
    record.Acted(delivery.To);
    owner.GetContext().queue.Post(EVENT_DEALT_WITH);
  }
}

/// Whether more than the one that is dealt with have passed.
bool Skips(const Event& event, int64 now) {
  const EventTimes next = ComputeEventTimes(event.Record(), event.GetActualEventTime(),
                                            event.GetOwner()->GetContext().zone);
  return next.NextEventTime != 0 && next.ActualEventTime > event.GetActualEventTime() &&
         next.ActualEventTime <= now;
}

/// What the delivery leads to, as far as can be foreseen.
DeliveryRecord::Delivery Foreseen(const Event& event, RecordKind kind, const EventState& found,
                                  int64 now, bool missed = false) {
  return {kind, found, StateAfterDelivery(event, now), missed, false, missed && Skips(event, now)};
}

}  // namespace

void DealWithEvent(Event& event, bool checkMissed) {
  EventSet& owner = *event.GetOwner();
  EventActions& actions = owner.GetContext().actions;
  const EventSet::DeliveryChange byDelivery(owner);
  const int64 now = owner.GetContext().clock.Now();
  EventState found = StateOf(event.Record());  // as its file has it
  DropPrewarnings(event, now);
  if (event.GetStatus() == WaitingForPrewarning) {
    Deliver(event, Foreseen(event, RecordKind::Prewarning, found, now),
            [&] { actions.DeliverPrewarnMessage(event); });
    return;
  }
  if (event.GetStatus() == WaitingForEvent) {
    const bool late = checkMissed && IsLate(event, now);
    if (!late || event.Record().DeliverIfMissed) {
      Deliver(event, Foreseen(event, RecordKind::Event, found, now, late),
              [&] { actions.DeliverEvent(event, late); });
      return;
    }
    const bool skips = Skips(event, now);
    PassOverMissed(event);
    DeliveryRecord::WriteMissed(event, found, skips);
    found = StateOf(event.Record());
  } else if (event.GetStatus() != WaitingToNag) {
    event.UpdateEventTime();  // the status does not fit the times: nothing to deliver
  }
  if (event.GetStatus() == WaitingToNag && event.GetNextEventTime() <= now + 60) {
    Deliver(event, Foreseen(event, RecordKind::Nag, found, now),
            [&] { actions.DeliverNagMessage(event); });
    return;
  }
  owner.GetContext().queue.Post(EVENT_DEALT_WITH);
}

void ActAgain(Event& event, RecordKind kind) {
  EventSet& owner = *event.GetOwner();
  Context& context = owner.GetContext();
  EventActions& actions = context.actions;
  owner.Lock();
  {
    const EventSet::DeliveryChange byDelivery(owner);
    const EventState state = StateOf(event.Record());
    DeliveryRecord record(event, {kind, state, state, false, true});
    Act(event, record, [&] {
      if (kind == RecordKind::Prewarning)
        actions.DeliverPrewarnMessage(event);
      else if (kind == RecordKind::Nag)
        actions.DeliverNagMessage(event);
      else
        actions.DeliverEvent(event, false);
    });
    record.Acted(state);
  }
  owner.Unlock();
  owner.DropActing();
  const AutoLock settings(context.settings.Protect);
  const AutoLock open(context.openSets.Protect);
  context.openSets.DestroyDeparted();
}

std::string GetNagOrPrewarnMessage(ReminderKind kind, const std::string& name, int32 when,
                                   bool useTimeOfDay, const std::string& userText, int64 now,
                                   const Zone& zone, bool use24Hours) {
  const CivilFields fields = ToFields(zone.AtMoment(when));
  const bool isAhead = kind == ReminderKind::Prewarning;
  std::string text = "The event \"" + name + (isAhead ? "\" will occur " : "\" occurred ");
  char part[64];
  if (useTimeOfDay) {
    const int32 minute = FoldIntoDay((fields.hour * 60 + fields.minute) * 60);
    text += "at " + ClockTimeText(minute, use24Hours, HourDigits::AsNeeded) + " ";
  }
  if (IsSameDay(when, now, zone)) {
    text += "today";
  } else {
    text += "on ";
    text += DayNames[static_cast<size_t>(fields.weekday)];
    text += ", ";
    text += MonthNames[static_cast<size_t>(fields.month)];
    std::snprintf(part, sizeof part, " %d,  %d", static_cast<int>(fields.day),
                  static_cast<int>(fields.year));
    text += part;
  }
  return text + ".\n\n" + userText;
}

}  // namespace kestrin
