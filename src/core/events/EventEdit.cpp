#include "core/events/EventEdit.h"

#include "core/events/Event.h"

namespace kestrin {

EditedState StateOf(const Event& event) {
  const IconPair* const own = event.GetOwnIcon();
  return {event.Record(), own ? std::optional(*own) : std::nullopt, event.GetSelectedHandler()};
}

EventEdit::EventEdit(Event& event)
    : event_(event),
      lock_(event.GetProtectionSemaphore()),
      recorded_(*event.GetOwner()),
      before_(StateOf(event)) {}

EventEdit::~EventEdit() {
  if (EditRecorder* const recorder = event_.GetOwner()->Recorder())
    recorder->Edited(event_, before_);
}

}  // namespace kestrin
