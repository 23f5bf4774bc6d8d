#include "core/events/EventSet.h"

#include <algorithm>

#include "core/events/OpenSets.h"
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

bool EventSet::HasEvent(const Event* event) const { return PlaceOf(event) < events_.size(); }

size_t EventSet::PlaceOf(const Event* event) const {
  const auto found = std::find_if(events_.begin(), events_.end(),
                                  [event](const auto& held) { return held.get() == event; });
  return static_cast<size_t>(found - events_.begin());
}

Event* EventSet::FindEvent(uint64 handle) const {
  for (const auto& event : events_)
    if (event->GetHandle() == handle) return event.get();
  return nullptr;
}

void EventSet::AppendRead(std::unique_ptr<Event> event) {
  event->indexStamp = nextStamp_++;
  events_.push_back(std::move(event));
}

Event* EventSet::AddEvent(std::unique_ptr<Event> event) {
  if (!event) event = std::make_unique<Event>(*this);
  return InsertEvent(std::move(event), events_.size());
}

Event* EventSet::InsertEvent(std::unique_ptr<Event> event, size_t place) {
  Event* const added = event.get();
  if (place >= events_.size()) {
    AppendRead(std::move(event));
    index_.Changed(added);
  } else {
    events_.insert(events_.begin() + static_cast<std::ptrdiff_t>(place), std::move(event));
    nextStamp_ = 1;
    for (const auto& held : events_) held->indexStamp = nextStamp_++;
    index_.Forget();
  }
  if (window_) window_->EventAdded(*added);
  if (window_ && added->GetShouldWindowOpen()) added->OpenWindow();
  SetModified();
  context_.queue.Post(EVENT_SETS_CHANGED);
  return added;
}

Event* EventSet::RestoreEvent(std::unique_ptr<Event> event, size_t place) {
  event->SetShouldWindowOpen(false);
  const int32 next = event->GetNextEventTime();
  // Ahead of the message that the insertion posts.
  if (event->GetActive() && next != 0 && next <= context_.clock.Now())
    context_.queue.Post(SETS_OPENED);
  return InsertEvent(std::move(event), place);
}

std::unique_ptr<Event> EventSet::RemoveEvent(Event* event) {
  const size_t place = PlaceOf(event);
  if (place == events_.size()) return nullptr;
  if (deliveries_ == 0) context_.alerts.EventDeleted(handle_, event->GetHandle());
  if (EditorWindow* editor = event->GetWindow()) editor->CloseNow();
  if (window_) window_->EventRemoved(*event);
  index_.Remove(event);
  std::unique_ptr<Event> removed = std::move(events_[place]);
  events_.erase(events_.begin() + static_cast<std::ptrdiff_t>(place));
  removed->indexStamp = 0;
  SetModified();
  context_.queue.Post(EVENT_SETS_CHANGED);
  return removed;
}

void EventSet::EventModified(Event* event) {
  if (event->indexStamp == 0) return;  // not in the list (yet)
  index_.Changed(event);
  if (window_) window_->EventModified(*event);
  SetModified();
  context_.queue.Post(EVENT_SETS_CHANGED);
}

void EventSet::SetModified() {
  bool& flag = deliveries_ > 0 ? deliveryModified_ : modified_;
  if (flag) return;
  flag = true;
  if (window_) window_->SetChanged();
}

Event* EventSet::GetNextEvent() {
  if (!index_.IsBuilt()) index_.Build(events_);
  return index_.Next();
}

int32 EventSet::GetNextEventTime(Event** event) {
  *event = GetNextEvent();
  return *event ? (*event)->GetNextEventTime() : 0;
}

int32 EventSet::GetNextEventTime(Event** event, const std::function<bool(const Event&)>& passOver) {
  *event = nullptr;
  for (const auto& held : events_) {
    if (!held->GetActive() || held->GetNextEventTime() == 0 || passOver(*held)) continue;
    if (!*event || held->GetNextEventTime() < (*event)->GetNextEventTime()) *event = held.get();
  }
  return *event ? (*event)->GetNextEventTime() : 0;
}

void EventSet::SetFileName(const std::string& path) {
  if (path == fileName_) return;
  fileName_ = path;
  for (const auto& event : events_)
    if (EditorWindow* editor = event->GetWindow()) editor->EventChanged();
}

void EventSet::BecomeUntitled(const std::string& name) {
  fileName_ = name;
  untitled_ = true;
}

void EventSet::Saved(const std::string& path) {
  SetFileName(path);
  untitled_ = modified_ = deliveryModified_ = false;
  delivered_.Clear();
  if (window_) window_->SetChanged();
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
  for (const auto& event : events_)
    if (event->GetShouldWindowOpen() && opened++ < MaxEditorsAtOpening) event->OpenWindow();
}

void EventSet::CommitEdits() {
  for (const auto& event : events_)
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
  for (const auto& event : events_) {
    EditorWindow* const editor = event->GetWindow();
    event->SetShouldWindowOpen(editor != nullptr);
    if (editor) editor->CloseNow();
  }
  const bool kept = DeliversUnseen();
  const int32 mode = context_.settings.WhichEventsToDeliver;
  MessageQueue& queue = context_.queue;
  if (!kept) {
    OpenSets& open = context_.openSets;
    const AutoLock lock(open.Protect);
    open.Destroy(this);
  }
  if (mode == DeliverShown || (mode == DeliverShownOrRemembered && !kept) ||
      (mode == DeliverRememberedNotShown && kept))
    queue.Post(EVENT_SETS_CHANGED);
}

}  // namespace kestrin
