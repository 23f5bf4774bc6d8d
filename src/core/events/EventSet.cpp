#include "core/events/EventSet.h"

#include <cstdint>

#include "core/events/EditRecorder.h"
#include "core/events/EventIdentity.h"
#include "core/events/OpenSets.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/ports/Clock.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

EventSet::EventSet(Context& context, const std::string& fileName)
    : Locker("EventSet", LockRank::EventSet),
      context_(context),
      handle_(context.nextHandle++),
      fileName_(fileName) {}

EventSet::~EventSet() = default;

bool EventSet::HasEvent(const Event* event) const {
  return events_.PositionOf(event) < Events().size();
}

Event* EventSet::FindEvent(uint64 handle) const { return events_.Find(handle); }

void EventSet::AppendRead(std::unique_ptr<Event> event) { events_.Append(std::move(event)); }

Event* EventSet::AddEvent(std::unique_ptr<Event> event) {
  if (!event) event = std::make_unique<Event>(*this);
  Event* const added = event.get();
  fileNames_.BeforeMove(*this);
  events_.Append(std::move(event));
  if (window_) window_->EventAdded(*added);
  if (window_ && added->GetShouldWindowOpen()) added->OpenWindow();
  SetModified();
  context_.queue.Post(EVENT_SETS_CHANGED);
  return added;
}

void EventSet::RestoreEvents(std::vector<EventList::Removed> removed) {
  const int64 now = context_.clock.Now();
  bool isAnyDue = false;
  std::vector<Event*> events;
  for (const EventList::Removed& each : removed) {
    Event& event = *events.emplace_back(each.event.get());
    event.SetShouldWindowOpen(false);
    const int32 next = event.GetNextEventTime();
    isAnyDue = isAnyDue || (event.GetActive() && next != 0 && next <= now);
  }
  fileNames_.BeforeMove(*this);
  events_.Insert(std::move(removed));
  if (window_)
    for (Event* const event : events) window_->EventAdded(*event);
  SetModified();
  if (isAnyDue) context_.queue.Post(SETS_OPENED);
  context_.queue.Post(EVENT_SETS_CHANGED);
}

std::unique_ptr<Event> EventSet::RemoveEvent(Event* event) {
  if (!HasEvent(event)) return nullptr;
  return std::move(RemoveEvents({event}).front().event);
}

std::vector<EventList::Removed> EventSet::RemoveEvents(const std::vector<Event*>& events) {
  for (Event* const event : events) {
    if (deliveries_ == 0) context_.alerts.EventDeleted(handle_, event->GetHandle());
    if (EditorWindow* const editor = event->GetWindow()) editor->CloseNow();
  }
  if (window_) window_->EventsRemoved(events);
  for (const Event* const event : events) fileNames_.Removed(*event);
  std::vector<EventList::Removed> removed = events_.Remove(events);
  SetModified();
  context_.queue.Post(EVENT_SETS_CHANGED);
  return removed;
}

void EventSet::EventModified(Event* event) {
  if (event->indexStamp == 0) return;  // not in the list (yet)
  events_.Changed(event);
  if (window_) window_->EventModified(*event);
  SetModified();
  context_.queue.Post(EVENT_SETS_CHANGED);
}

void EventSet::SetModified() {
  if (deliveries_ == 0) {
    if (recorded_ == 0 && recorder_) recorder_->ChangedUnseen();
    ++edits_;
    context_.queue.Post(EDITS_CHANGED);
  }
  bool& flag = deliveries_ > 0 ? deliveryModified_ : modified_;
  if (flag) return;
  flag = true;
  if (window_) window_->SetChanged();
}

void EventSet::BackAsSaved() {
  modified_ = false;
  if (window_) window_->SetChanged();
}

Event* EventSet::GetNextEvent() { return events_.Next(); }

int32 EventSet::GetNextEventTime(Event** event) {
  *event = GetNextEvent();
  return *event ? (*event)->GetNextEventTime() : 0;
}

int32 EventSet::GetNextEventTime(Event** event, const std::function<bool(const Event&)>& passOver) {
  *event = nullptr;
  for (const auto& held : Events()) {
    if (!held->GetActive() || held->GetNextEventTime() == 0 || passOver(*held)) continue;
    if (!*event || held->GetNextEventTime() < (*event)->GetNextEventTime()) *event = held.get();
  }
  return *event ? (*event)->GetNextEventTime() : 0;
}

void EventSet::SetFileName(const std::string& path) {
  if (path == fileName_) return;
  fileName_ = path;
  for (const auto& event : Events())
    if (EditorWindow* editor = event->GetWindow()) editor->EventChanged();
}

void EventSet::BecomeUntitled(const std::string& name) {
  fileName_ = name;
  untitled_ = true;
}

void EventSet::Saved(const std::string& path) {
  if (untitled_ && context_.journal) context_.journal->Renamed(JournalPath(*this), path);
  SetFileName(path);
  untitled_ = modified_ = deliveryModified_ = false;
  FollowNames();
  context_.alerts.SetSaved(handle_);
  if (recorder_) recorder_->Saved();
  context_.queue.Post(EDITS_CHANGED);
  if (window_) window_->SetChanged();
}

void EventSet::IsAsInFile() {
  modified_ = deliveryModified_ = false;
  fileNames_ = {};
  if (window_) window_->SetChanged();
}

/// The file calls the events by other names: so does the journal.
void EventSet::FollowNames() {
  const std::vector<NamesInFile::Renaming> renamings = fileNames_.Saved(*this);
  Journal* const journal = context_.journal;
  if (!journal || renamings.empty()) return;
  const std::string path = JournalPath(*this);
  if (!journal->Knows(path)) return;
  // By way of names that nobody has, since one may have been given up for another.
  const auto between = [](EventName name, size_t number) {
    name.Place = INT32_MIN + static_cast<int32>(number);
    return name;
  };
  for (size_t i = 0; i < renamings.size(); ++i)
    journal->Renamed(path, renamings[i].first, between(renamings[i].second, i));
  for (size_t i = 0; i < renamings.size(); ++i)
    journal->Renamed(path, between(renamings[i].second, i), renamings[i].second);
}

void EventSet::Remember(bool remember) {
  KestrinSettings& settings = context_.settings;
  const AutoLock lock(settings.Protect);
  if (remember == settings.IsFileRemembered(fileName_)) return;
  if (remember)
    settings.RememberSet(fileName_);
  else
    settings.ForgetSet(fileName_);
  // A set that delivers from now on is like an opened one.
  context_.queue.Post(remember ? SETS_OPENED : EVENT_SETS_CHANGED);
  if (window_) window_->SetChanged();
}

std::string EventSet::LeafOf(const std::string& path) {
  // The last slash with something after it.
  for (size_t at = path.size(); at-- > 0;)
    if (path[at] == '/' && at + 1 < path.size()) return path.substr(at + 1);
  return path;
}

std::string EventSet::GetLeaf() const { return LeafOf(fileName_); }

void EventSet::OpenWindow() {
  if (window_) {
    window_->Activate();
    return;
  }
  window_ = context_.ui.OpenSetWindow(*this);
  if (window_) OpenEditors();
}

void EventSet::OpenEditors() {
  int32 opened = 0;
  for (const auto& event : Events())
    if (event->GetShouldWindowOpen() && opened++ < MaxEditorsAtOpening) event->OpenWindow();
}

void EventSet::CommitEdits() {
  for (const auto& event : Events())
    if (EditorWindow* const editor = event->GetWindow()) editor->CommitEdits();
  if (window_) window_->CommitEdits();
}

bool EventSet::Delivers(bool shown) const {
  const AutoLock lock(context_.settings.Protect);
  const bool remembered = context_.settings.IsFileRemembered(fileName_);
  switch (context_.settings.WhichEventsToDeliver) {
    case DeliverShown:
      return shown;
    case DeliverShownOrRemembered:
      return shown || remembered;
    case DeliverRemembered:
      return remembered;
    case DeliverRememberedNotShown:
      return remembered && !shown;
    default:
      return false;
  }
}

void EventSet::WindowClosed() {
  window_ = nullptr;
  for (const auto& event : Events()) {
    EditorWindow* const editor = event->GetWindow();
    event->SetShouldWindowOpen(editor != nullptr);
    if (editor) editor->CloseNow();
  }
  const bool kept = DeliversUnseen();
  const int32 mode = context_.settings.WhichEventsToDeliver;
  MessageQueue& queue = context_.queue;
  if (!kept) {
    queue.Post(EDITS_CHANGED);
    OpenSets& open = context_.openSets;
    const AutoLock lock(open.Protect);
    open.Destroy(this);
  }
  if (mode == DeliverShown || (mode == DeliverShownOrRemembered && !kept) ||
      (mode == DeliverRememberedNotShown && kept))
    queue.Post(EVENT_SETS_CHANGED);
}

}  // namespace kestrin
