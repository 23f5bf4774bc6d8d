// What a clock that was wrong has left behind in a set.
#pragma once

#include <functional>

namespace kestrin {

class Event;
class EventSet;

/// Works out afresh each repeating event that waits for something beyond its next occurrence from
/// now, or that is done although its rule yields; but never for an occurrence that the journal has
/// as delivered already. `isPutOff`: its nags are silent because a person wished so. Main thread.
void HealTimes(EventSet& set, const std::function<bool(const Event&)>& isPutOff);

}  // namespace kestrin
