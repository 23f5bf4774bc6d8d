#include "core/events/DeletedEvents.h"

#include "core/events/EventSet.h"
#include "core/ports/UserInterface.h"

namespace kestrin {

void DeletedEvents::Delete(Event& event) {
  EventSet& set = *event.GetOwner();
  if (EditorWindow* const editor = event.GetWindow()) editor->CloseNow();
  const AutoLock lock(set);
  const size_t place = set.PlaceOf(&event);
  if (auto removed = set.RemoveEvent(&event)) deleted_.push_back({std::move(removed), place});
}

Event* DeletedEvents::RestoreLast() {
  if (deleted_.empty()) return nullptr;
  Deleted last = std::move(deleted_.back());
  deleted_.pop_back();
  EventSet& set = *last.event->GetOwner();
  const AutoLock lock(set);
  return set.RestoreEvent(std::move(last.event), last.place);
}

void DeletedEvents::Clear() {
  for (Deleted& each : deleted_)
    if (each.event->IsActing()) each.event->GetOwner()->KeepActing(std::move(each.event));
  deleted_.clear();
}

}  // namespace kestrin
