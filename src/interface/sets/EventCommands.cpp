#include "interface/sets/EventCommands.h"

#include "core/events/EventSet.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"
#include "interface/list/ListEventView.h"
#include "interface/sets/EventClipboard.h"

namespace kestrin {

EventCommands::EventCommands(EventSet& set, ListEventView& list)
    : QObject(&list), set_(&set), list_(list) {}

void EventCommands::New() {
  if (!set_) return;
  Event* event = nullptr;
  {
    const AutoLock settings(set_->GetContext().settings.Protect);
    const AutoLock lock(*set_);
    event = set_->AddEvent(nullptr);
  }
  Select(event);
}

void EventCommands::Select(const Event* event) {
  list_.SelectEvent(event);
  emit Added();
}

void EventCommands::Edit(Event* event) {
  if (!set_ || !event) return;
  const AutoLock settings(set_->GetContext().settings.Protect);
  const AutoLock lock(*set_);
  event->OpenWindow();
}

void EventCommands::EditSelected() { Edit(list_.GetSelectedEvent()); }

void EventCommands::DeleteSelected() {
  Event* const event = list_.GetSelectedEvent();
  if (!set_ || !event) return;
  const std::string name = event->GetName();
  deleted_.Delete(*event);
  emit Deleted(name);
}

void EventCommands::Cut() {
  if (Copy()) DeleteSelected();
}

bool EventCommands::Copy() {
  Event* const event = list_.GetSelectedEvent();
  if (!set_ || !event) return false;
  if (EditorWindow* const editor = event->GetWindow()) editor->CommitEdits();
  const AutoLock lock(*set_);
  return CopyEvent(*event);
}

void EventCommands::Paste() {
  if (!set_) return;
  std::unique_ptr<Event> event = EventFromClipboard(*set_);
  if (!event) return;
  event->SetShouldWindowOpen(false);
  const Event* added = nullptr;
  {
    const AutoLock settings(set_->GetContext().settings.Protect);
    const AutoLock lock(*set_);
    added = set_->AddEvent(std::move(event));
  }
  Select(added);
}

void EventCommands::Undo() {
  if (!set_) return;
  if (const Event* const event = deleted_.RestoreLast()) Select(event);
}

void EventCommands::Forget() {
  deleted_.Clear();
  set_ = nullptr;
}

}  // namespace kestrin
