// How an event's state goes on once something of it has come due; docs/delivery.md holds the table.
// Nothing here delivers anything. Callers are the main thread.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

class Event;

/// When the event itself has come at `now`, it is what is due, and no prewarning of it.
void DropPrewarnings(Event& event, int64 now);

/// The state after a missed event that is not delivered.
void PassOverMissed(Event& event);

/// The state after what was due has been delivered; posts EVENT_DEALT_WITH. The event may be gone
/// afterwards.
void EventDelivered(Event& event);

/// Prewarnings and nags up to that moment are left out: the person will be reminded then.
void PassRemindersOver(Event& event, int64 until);

/// Advances the state as after a delivery, delivering nothing: for what was delivered before its
/// set was read again. The event may be gone afterwards.
void MoveOn(Event& event);

}  // namespace kestrin
