#include "core/editing/EditHistory.h"

#include <algorithm>
#include <utility>

#include "core/events/EventEdit.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/files/HandlerBlock.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/EventTypes.h"

namespace kestrin {

/// For steps of many events; a few are looked for one by one.
class EditHistory::EventsByHandle {
 public:
  EventsByHandle(const EventSet& set, size_t wanted) : set_(set) {
    constexpr size_t Few = 4;
    if (wanted <= Few) return;
    for (const auto& event : set.Events()) all_.emplace(event->GetHandle(), event.get());
  }
  Event* Find(uint64 handle) const {
    if (all_.empty()) return set_.FindEvent(handle);
    const auto found = all_.find(handle);
    return found == all_.end() ? nullptr : found->second;
  }

 private:
  const EventSet& set_;
  std::unordered_map<uint64, Event*> all_;
};

EditHistory::EditHistory(EventSet& set) : set_(&set) { set.SetRecorder(this); }
EditHistory::~EditHistory() { Clear(); }

void EditHistory::Clear() {
  if (!set_) return;
  DropSteps(0);
  blocks_.clear();
  std::exchange(set_, nullptr)->SetRecorder(nullptr);
}

/// An event whose action still runs lives on until that has ended.
void EditHistory::DropSteps(size_t from) {
  for (size_t i = from; i < steps_.size(); ++i)
    for (EditStep::Moved& each : steps_[i].moved)
      if (each.kept.event && each.kept.event->IsActing())
        set_->KeepActing(std::move(each.kept.event));
  steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(from), steps_.end());
  position_ = std::min(position_, from);
  if (saved_ && *saved_ > from) saved_.reset();
}

void EditHistory::TellChanged() {
  if (Changed) Changed();
}

// ---- Noting down ----

void EditHistory::Push(EditStep step) {
  DropSteps(position_);
  steps_.push_back(std::move(step));
  ++position_;
  TellChanged();
}

bool EditHistory::JoinWithLast(const Event& event, const std::vector<FieldChange>& fields) {
  if (!sitting_ || position_ == 0 || position_ != steps_.size()) return false;
  EditStep& last = steps_.back();
  if (last.kind != EditKind::Change || last.FirstEvent() != event.GetHandle() ||
      !TouchSameField(last.changed.front().fields, fields))
    return false;
  JoinChanges(last.changed.front().fields, fields);
  if (last.changed.front().fields.empty()) {
    DropSteps(position_ - 1);
    EndSitting();
  }
  return true;
}

void EditHistory::Note(Event& event, std::vector<FieldChange> fields) {
  if (fields.empty() || applying_) return;
  if (JoinWithLast(event, fields)) {
    CompareWithSaved();
    TellChanged();
    return;
  }
  EditStep step;
  step.name = event.GetName();
  step.changed.push_back({event.GetHandle(), std::move(fields)});
  Push(std::move(step));
  sitting_ = true;
}

void EditHistory::Edited(Event& event, const EditedState& before) {
  if (event.indexStamp != 0) Note(event, ChangesBetween(before, StateOf(event)));
}

void EditHistory::HandlerShown(Event& event) {
  EventAddOnData* const data = event.GetAddOnData();
  std::optional<std::string> bytes = data ? HandlerBlockOf(*data) : std::nullopt;
  if (bytes)
    blocks_[event.GetHandle()] = {event.GetSelectedHandler(), std::move(*bytes)};
  else
    blocks_.erase(event.GetHandle());
}

void EditHistory::HandlerChanged(Event& event) {
  const auto known = blocks_.find(event.GetHandle());
  if (known == blocks_.end() || known->second.handler != event.GetSelectedHandler()) {
    if (!event.IsActing()) ChangedUnseen();
    return;
  }
  const std::string before = known->second.bytes;
  HandlerShown(event);
  const auto now = blocks_.find(event.GetHandle());
  if (now == blocks_.end()) {
    ChangedUnseen();
    return;
  }
  if (!event.IsActing() && before != now->second.bytes)
    Note(event, {HandlerDataChange(before, now->second.bytes)});
}

void EditHistory::ChangedUnseen() {
  if (!applying_) saved_.reset();
}

void EditHistory::Saved() {
  saved_ = position_;
  EndSitting();
}

/// Called after every move through the history.
void EditHistory::CompareWithSaved() {
  if (saved_ == position_) set_->BackAsSaved();
}

// ---- Steps of whole events ----

std::vector<Event*> EditHistory::Add(std::vector<std::unique_ptr<Event>> events, EditKind kind) {
  std::vector<Event*> added;
  const AutoLock settings(set_->GetContext().settings.Protect);
  const AutoLock lock(*set_);
  const EventSet::Recorded recorded(*set_);
  EditStep step;
  step.kind = kind;
  for (auto& event : events) {
    added.push_back(set_->AddEvent(std::move(event)));
    step.moved.push_back({added.back()->GetHandle(), {}});
  }
  step.name = added.front()->GetName();
  Push(std::move(step));
  return added;
}

void EditHistory::Remove(const std::vector<Event*>& events, EditKind kind) {
  if (events.empty()) return;
  for (Event* const event : events)
    if (EditorWindow* const editor = event->GetWindow()) editor->CloseNow();
  const AutoLock open(set_->GetContext().openSets.Protect);
  const AutoLock lock(*set_);
  const EventSet::Recorded recorded(*set_);
  EditStep step;
  step.kind = kind;
  step.name = events.front()->GetName();
  for (EventList::Removed& each : set_->RemoveEvents(events)) {
    const uint64 handle = each.event->GetHandle();
    step.moved.push_back({handle, std::move(each)});
  }
  Push(std::move(step));
}

void EditHistory::SetActive(const std::vector<Event*>& events, bool active) {
  const AutoLock lock(*set_);
  const EventSet::Recorded recorded(*set_);
  EditStep step;
  step.kind = active ? EditKind::Activate : EditKind::Deactivate;
  for (Event* const event : events) {
    if (event->GetActive() == active) continue;
    const EditedState before = StateOf(*event);
    event->SetActive(active);
    step.changed.push_back({event->GetHandle(), ChangesBetween(before, StateOf(*event))});
    if (EditorWindow* const editor = event->GetWindow()) editor->EventChanged();
    if (step.name.empty()) step.name = event->GetName();
  }
  if (!step.changed.empty()) Push(std::move(step));
}

// ---- Taking back and doing again ----

bool EditHistory::IsPossible(const EditStep& step, bool undo) const {
  if (step.IsMove() && step.Takes() == undo)
    return std::any_of(step.moved.begin(), step.moved.end(),
                       [](const EditStep::Moved& each) { return each.kept.event != nullptr; });
  if (set_->FindEvent(step.FirstEvent())) return true;
  const EventsByHandle events(*set_, step.Count());
  const auto isHere = [&events](const auto& each) { return events.Find(each.event) != nullptr; };
  return std::any_of(step.moved.begin(), step.moved.end(), isHere) ||
         std::any_of(step.changed.begin(), step.changed.end(), isHere);
}

ToldStep EditHistory::Told(const EditStep& step) const {
  const Event* const event = set_->FindEvent(step.FirstEvent());
  return {step.kind, event ? event->GetName() : step.name, step.Count()};
}

std::optional<ToldStep> EditHistory::NextUndo() const {
  for (size_t i = position_; i-- > 0;)
    if (IsPossible(steps_[i], true)) return Told(steps_[i]);
  return std::nullopt;
}

std::optional<ToldStep> EditHistory::NextRedo() const {
  for (size_t i = position_; i < steps_.size(); ++i)
    if (IsPossible(steps_[i], false)) return Told(steps_[i]);
  return std::nullopt;
}

std::optional<EditHistory::Done> EditHistory::Undo() {
  set_->CommitEdits();
  EndSitting();
  std::optional<Done> done;
  while (!done && position_ > 0) {
    EditStep& step = steps_[--position_];
    if (IsPossible(step, true)) done = Apply(step, true);
  }
  CompareWithSaved();
  TellChanged();
  return done;
}

std::optional<EditHistory::Done> EditHistory::Redo() {
  set_->CommitEdits();
  EndSitting();
  std::optional<Done> done;
  while (!done && position_ < steps_.size()) {
    EditStep& step = steps_[position_++];
    if (IsPossible(step, false)) done = Apply(step, false);
  }
  CompareWithSaved();
  TellChanged();
  return done;
}

EditHistory::Done EditHistory::Apply(EditStep& step, bool undo) {
  const EventSet::Recorded recorded(*set_);
  applying_ = true;
  Done done{Told(step), {}, {}};
  if (!step.IsMove()) {
    const AutoLock lock(*set_);
    ApplyChanges(step, undo, done);
  } else if (step.Takes() == undo) {
    const AutoLock lock(*set_);
    PutBack(step, done);
  } else {
    TakeOut(step);
  }
  applying_ = false;
  return done;
}

void EditHistory::ApplyChanges(EditStep& step, bool undo, Done& done) {
  const EventsByHandle events(*set_, step.Count());
  for (const EditStep::Changed& each : step.changed) {
    Event* const event = events.Find(each.event);
    if (!event) continue;
    const bool wasDone = event->GetStatus() == DoneWithEvent;
    PutIntoEvent(each.fields, undo, *event);
    if (blocks_.contains(each.event)) HandlerShown(*event);
    if (!wasDone && event->GetStatus() == DoneWithEvent && event->GetActive())
      done.hasPassed = event->GetName();
    done.events.push_back(event);
  }
}

void EditHistory::PutBack(EditStep& step, Done& done) {
  std::vector<EventList::Removed> kept;
  for (EditStep::Moved& each : step.moved) {
    if (!each.kept.event) continue;
    done.events.push_back(each.kept.event.get());
    kept.push_back(std::move(each.kept));
  }
  set_->RestoreEvents(std::move(kept));
}

void EditHistory::TakeOut(EditStep& step) {
  const EventsByHandle events(*set_, step.Count());
  std::vector<Event*> here;
  std::unordered_map<uint64, EditStep::Moved*> places;
  for (EditStep::Moved& each : step.moved)
    if (Event* const event = events.Find(each.event)) {
      here.push_back(event);
      places.emplace(each.event, &each);
    }
  for (Event* const event : here)
    if (EditorWindow* const editor = event->GetWindow()) editor->CloseNow();
  const AutoLock open(set_->GetContext().openSets.Protect);
  const AutoLock lock(*set_);
  for (EventList::Removed& each : set_->RemoveEvents(here)) {
    EditStep::Moved& place = *places[each.event->GetHandle()];
    place.kept = std::move(each);
  }
}

}  // namespace kestrin
