#include "interface/sets/EventCommands.h"

#include "core/events/EventSet.h"
#include "core/files/EventMessage.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/EventTypes.h"
#include "interface/common/ShownText.h"
#include "interface/list/ListEventView.h"
#include "interface/sets/EventClipboard.h"

namespace kestrin {

EventCommands::EventCommands(EventSet& set, ListEventView& list)
    : QObject(&list), set_(&set), list_(list), history_(set) {}

void EventCommands::Add(std::vector<std::unique_ptr<Event>> events, EditKind kind) {
  if (!set_ || events.empty()) return;
  list_.SelectEvents(history_.Add(std::move(events), kind));
  emit Added();
}

void EventCommands::New() {
  std::vector<std::unique_ptr<Event>> one(1);
  Add(std::move(one), EditKind::New);
}

void EventCommands::Edit(Event* event) {
  if (!set_ || !event) return;
  const AutoLock settings(set_->GetContext().settings.Protect);
  const AutoLock lock(*set_);
  event->OpenWindow();
}

void EventCommands::EditSelected() { Edit(list_.GetSelectedEvent()); }

void EventCommands::DeleteSelected() {
  if (set_) history_.Remove(list_.GetSelectedEvents(), EditKind::Delete);
}

void EventCommands::DeleteFinished() {
  if (!set_) return;
  std::vector<Event*> finished;
  for (const auto& event : set_->Events())
    if (event->GetStatus() == DoneWithEvent) finished.push_back(event.get());
  if (finished.empty())
    emit Noted("No event is finished.");
  else
    history_.Remove(finished, EditKind::Delete);
}

void EventCommands::Duplicate() {
  if (!set_) return;
  std::vector<std::unique_ptr<Event>> copies;
  for (Event* const event : list_.GetSelectedEvents()) {
    if (EditorWindow* const editor = event->GetWindow()) editor->CommitEdits();
    Message message;
    if (!GenerateMessageForEvent(*event, &message)) continue;
    auto copy = EventFromMessage(*set_, message).NewEvent;
    if (!copy) continue;
    copy->SetShouldWindowOpen(false);
    copies.push_back(std::move(copy));
  }
  Add(std::move(copies), EditKind::Duplicate);
}

void EventCommands::SetActive(bool active) {
  if (set_) history_.SetActive(list_.GetSelectedEvents(), active);
}

void EventCommands::ToggleActive() {
  if (const Event* const current = list_.GetSelectedEvent()) SetActive(!current->GetActive());
}

void EventCommands::Cut() {
  if (Copy()) history_.Remove(list_.GetSelectedEvents(), EditKind::Cut);
}

bool EventCommands::Copy() {
  Event* const current = list_.GetSelectedEvent();
  if (!set_ || !current) return false;
  const std::vector<Event*> events = list_.GetSelectedEvents();
  for (Event* const event : events)
    if (EditorWindow* const editor = event->GetWindow()) editor->CommitEdits();
  const AutoLock lock(*set_);
  return CopyEvents(*current, events);
}

void EventCommands::Paste() {
  if (!set_) return;
  auto events = EventsFromClipboard(*set_);
  for (const auto& event : events) event->SetShouldWindowOpen(false);
  Add(std::move(events), EditKind::Paste);
}

void EventCommands::Undo() {
  if (set_) Tell(history_.Undo());
}

void EventCommands::Redo() {
  if (set_) Tell(history_.Redo());
}

void EventCommands::Tell(const std::optional<EditHistory::Done>& done) {
  if (!done || done->events.empty()) return;
  list_.SelectEvents(done->events);
  emit Added();
  if (!done->hasPassed.empty())
    emit Noted("“" + ShownLine(done->hasPassed) +
               "” is back at a moment that has passed; it will not ring.");
}

void EventCommands::Forget() {
  history_.Clear();
  set_ = nullptr;
}

}  // namespace kestrin
