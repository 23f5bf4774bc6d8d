// Delivers what is due of one event; docs/delivery.md holds the table of its states.
#pragma once

#include <string>

#include "core/journal/JournalRecord.h"
#include "kestrin/Types.h"
#include "support/LocalTime.h"

namespace kestrin {

class Event;

/// Delivers whatever is due, advances the state and posts EVENT_DEALT_WITH, once. An event whose
/// times were changed while its action ran keeps them. Called with the set locked once, which is
/// let go while the action runs, and returns with it locked. The event may be gone afterwards.
/// `checkMissed`: the pass follows a start, so events may have been missed.
void DealWithEvent(Event& event, bool checkMissed);

/// Makes the event's action, or its prewarning or nag, once more and whatever its state is, which
/// stays. Main thread, no set locked. The event may be gone afterwards.
void ActAgain(Event& event, RecordKind kind);

enum class ReminderKind { Prewarning, Nag };

/// What a prewarning or nag says of the event `name`, which occurs at `when`.
std::string GetNagOrPrewarnMessage(ReminderKind kind, const std::string& name, int32 when,
                                   bool useTimeOfDay, const std::string& userText, int64 now,
                                   const Zone& zone, bool use24Hours);

}  // namespace kestrin
