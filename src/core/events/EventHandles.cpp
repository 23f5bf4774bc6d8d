#include "core/events/EventHandles.h"

#include "core/events/Context.h"
#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"

namespace kestrin {

namespace {

/// Null when the event is not there. The caller holds the open sets.
EventSet* SetWith(const Context& context, const EventHandles& handles) {
  EventSet* const set = context.openSets.FindHandle(handles.Set);
  return handles.Event != 0 && set && set->FindEvent(handles.Event) ? set : nullptr;
}

}  // namespace

bool HasEvent(const Context& context, const EventHandles& handles) {
  const AutoLock open(context.openSets.Protect);
  return SetWith(context, handles) != nullptr;
}

void OpenWindowsOf(const Context& context, const EventHandles& handles) {
  const AutoLock open(context.openSets.Protect);
  EventSet* const set = SetWith(context, handles);
  if (!set) return;
  set->OpenWindow();
  if (Event* const event = set->FindEvent(handles.Event)) event->OpenWindow();
}

}  // namespace kestrin
