// What an alert remembers of its event over time. Main thread, no set locked.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

struct Context;

struct EventHandles {
  uint64 Set = 0;
  uint64 Event = 0;
};

/// Whether the set is open and has that event.
bool HasEvent(const Context& context, const EventHandles& handles);

/// The event's window, and that of its set: what is changed there is saved there. Nothing happens
/// when the event has gone.
void OpenWindowsOf(const Context& context, const EventHandles& handles);

}  // namespace kestrin
