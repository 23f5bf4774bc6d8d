// One change of an event by the person at the windows.
#pragma once

#include "core/events/EditRecorder.h"
#include "core/events/EventSet.h"

namespace kestrin {

/// The door through which windows change an event: locks its set, and has what was changed while it
/// lives noted down as one edit. The event outlives it.
class EventEdit {
 public:
  explicit EventEdit(Event& event);
  ~EventEdit();
  EventEdit(const EventEdit&) = delete;
  EventEdit& operator=(const EventEdit&) = delete;

  Event* operator->() const { return &event_; }

 private:
  Event& event_;
  const AutoLock lock_;
  const EventSet::Recorded recorded_;
  EditedState before_;
};

EditedState StateOf(const Event& event);

}  // namespace kestrin
