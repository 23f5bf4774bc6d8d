// "No more prewarnings" and "No more nagging", carried out where they are pressed.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

struct Context;

/// What an alert was about: handles, and the event's ActualEventTime then.
struct AlertSubject {
  uint64 Set = 0;
  uint64 Event = 0;
  int32 Occurrence = 0;
};

/// Leaves out the rest of that occurrence's prewarnings or nags, if the set is open, has the event,
/// that still stands at the occurrence, and the event still reminds of it. Main thread, no set
/// locked.
void StopReminding(Context& context, const AlertSubject& subject, bool prewarning);

}  // namespace kestrin
