// The delivery state machine of an event; docs/delivery.md holds its table.
#include <cstdio>
#include <tuple>

#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/EventActions.h"
#include "core/ports/UserInterface.h"
#include "core/timing/EventTypes.h"
#include "support/LocalTime.h"

namespace kestrin {

/// An event without a time of day is never late on its own day; nothing is late within a minute.
bool Event::IsLate(int64 now) const {
  const int64 actual = record_.ActualEventTime;
  const auto day = [](int64 time) {
    return (time - (time < 0 ? SecondsPerDay - 1 : 0)) / SecondsPerDay;
  };
  return (day(actual) != day(now) || record_.ApplyTime) && actual < now - 60;
}

/// One step of nagging beyond `after`. A step that leads nowhere ends it: the next occurrence's
/// turn.
void Event::StepNag(int64 after) {
  const EventTimes times = NextNag(record_, after, LocalZone());
  if (times.Status == DoneWithEvent) {
    UpdateEventTime();
    return;
  }
  TakeTimes(times);
  TellTimes();
}

void Event::PassOverMissed() {
  if (!record_.ApplyNag) {
    UpdateEventTime();
    return;
  }
  record_.Status = WaitingToNag;
  StepNag(record_.NextEventTime);
}

/// When the event itself has come, it is what is due.
void Event::DropPrewarnings(int64 now) {
  if (record_.Status != WaitingForPrewarning || now < record_.ActualEventTime) return;
  TakeTimes({record_.ActualEventTime, record_.ActualEventTime, WaitingForEvent});
  TellTimes();
}

/// Whoever is at the windows while `act` runs may change the event, delete it, or close its set.
template <typename Action>
void Event::Deliver(int32 found, Action act) {
  const auto times = [this] {
    return std::tuple(record_.ActualEventTime, record_.NextEventTime, record_.Status);
  };
  const auto due = times();
  owner_.RecordDelivered(*this, found);
  {
    const EventSet::ActionRuns running(owner_);
    acting_ = true;
    owner_.Unlock();
    act();
    owner_.Lock();
    acting_ = false;
  }
  if (times() == due) {
    owner_.RecordDelivered(*this, record_.Status);  // a save would have dropped it
    EventDelivered();
  } else {
    owner_.GetContext().queue.Post(EVENT_DEALT_WITH);
  }
}

void Event::DealWithEvent(bool checkMissed) {
  EventSet& owner = owner_;
  EventActions& actions = owner.GetContext().actions;
  const EventSet::DeliveryChange byDelivery(owner);
  const int64 now = Now();
  const int32 found = record_.Status;
  DropPrewarnings(now);
  if (record_.Status == WaitingForPrewarning) {
    Deliver(found, [&] { actions.DeliverPrewarnMessage(*this); });
    return;
  }
  if (record_.Status == WaitingForEvent) {
    const bool late = checkMissed && IsLate(now);
    if (!late || record_.DeliverIfMissed) {
      Deliver(found, [&] { actions.DeliverEvent(*this, late); });
      return;
    }
    PassOverMissed();
  } else if (record_.Status != WaitingToNag) {
    UpdateEventTime();  // the status does not fit the times: nothing to deliver
  }
  if (record_.Status == WaitingToNag && record_.NextEventTime <= now + 60) {
    Deliver(found, [&] { actions.DeliverNagMessage(*this); });
    return;
  }
  owner.GetContext().queue.Post(EVENT_DEALT_WITH);
}

void Event::MoveOn() {
  const EventSet::DeliveryChange byDelivery(owner_);
  const int64 now = Now();
  DropPrewarnings(now);
  EventDelivered();
}

void Event::PrewarningDelivered(int64 now) {
  if (skipPrewarn_) {
    UpdateEventTime();
  } else if (record_.NextEventTime <= now) {
    TakeTimes(NextPrewarning(record_, now, LocalZone()));
    TellTimes();
  }
}

void Event::OccurrenceDelivered(int64 now) {
  if (record_.ApplyNag && !skipNag_) {
    record_.Status = WaitingToNag;
    if (record_.NextEventTime <= now)
      StepNag(now);
    else
      TellTimes();
    return;
  }
  skipNag_ = false;
  const bool isInSet = indexStamp != 0;  // else the person has deleted it meanwhile
  if (record_.DeleteOnceDelivered && isInSet)
    DeleteSelf();
  else
    UpdateEventTime();
}

void Event::NagDelivered(int64 now) {
  if (skipNag_)
    UpdateEventTime();
  else if (record_.NextEventTime <= now)
    StepNag(now);
}

/// Nothing of the event may be used after this.
void Event::DeleteSelf() {
  EventSet& owner = owner_;
  const std::unique_ptr<Event> self = owner.RemoveEvent(this);
  owner.SetModified();
}

void Event::EventDelivered() {
  MessageQueue& queue = owner_.GetContext().queue;
  const int64 now = Now();
  switch (record_.Status) {
    case WaitingForPrewarning:
      PrewarningDelivered(now);
      break;
    case WaitingForEvent:
      OccurrenceDelivered(now);
      break;
    case WaitingToNag:
      NagDelivered(now);
      break;
    default:
      break;
  }
  queue.Post(EVENT_DEALT_WITH);
}

std::string GetNagOrPrewarnMessage(char kind, const std::string& name, int32 when,
                                   bool useTimeOfDay, const std::string& userText, int64 now,
                                   const Zone& zone) {
  const CivilFields fields = ToFields(zone.AtMoment(when));
  std::string text = "The event \"" + name + (kind == 0 ? "\" will occur " : "\" occurred ");
  char part[64];
  if (useTimeOfDay) {
    const int hour = static_cast<int>(fields.hour % 12);
    std::snprintf(part, sizeof part, "%d:%02d %s ", hour == 0 ? 12 : hour,
                  static_cast<int>(fields.minute), fields.hour < 12 ? "AM" : "PM");
    text += "at ";
    text += part;
  }
  if (when / SecondsPerDay == now / SecondsPerDay) {
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
