// An event as the journal knows it.
#pragma once

#include <string>

#include "core/journal/JournalRecord.h"
#include "core/timing/EventRecord.h"
#include "core/timing/EventTiming.h"

namespace kestrin {

class Event;
class EventSet;

/// The set's file, or, of an untitled one, its recovery copy or its name.
std::string JournalPath(const EventSet& set);
/// As the event stands in the set now. Looks at all events before it.
EventName NameNow(const EventSet& set, const Event& event);
EventState StateOf(const TimingRule& rule);
EventState StateOf(const EventTimes& times);
/// Another number means that somebody has changed when the event occurs.
uint32 RuleMark(const TimingRule& rule);

}  // namespace kestrin
