// How an event's state goes on once something of it has come due; docs/delivery.md holds the table.
// Nothing here delivers anything. Callers are the main thread.
#pragma once

#include "core/journal/JournalRecord.h"
#include "kestrin/Types.h"

namespace kestrin {

class Event;

/// When the event itself has come at `now`, it is what is due, and no prewarning of it.
void DropPrewarnings(Event& event, int64 now);

/// The state after a missed event that is not delivered.
void PassOverMissed(Event& event);

/// The state in which the event will be once what is due at `now` has been delivered.
EventState StateAfterDelivery(const Event& event, int64 now);

/// Puts the event into that state and posts EVENT_DEALT_WITH. The event may be gone afterwards.
EventState EventDelivered(Event& event);

/// Prewarnings and nags up to that moment are left out: the person will be reminded then.
void PassRemindersOver(Event& event, int64 until);

/// Plain assignment, for what the file of a set does not know yet. The event may be gone
/// afterwards.
void AssignState(Event& event, const EventState& state);

}  // namespace kestrin
