#include "core/events/NextEventIndex.h"

#include <algorithm>
#include <utility>

#include "core/events/Event.h"

namespace kestrin {

namespace {

bool IsPending(const Event* event) { return event->GetActive() && event->GetNextEventTime() != 0; }

}  // namespace

bool NextEventIndex::Before(const Event* a, const Event* b) {
  if (a->GetNextEventTime() != b->GetNextEventTime())
    return a->GetNextEventTime() < b->GetNextEventTime();
  return a->indexStamp < b->indexStamp;
}

void NextEventIndex::Place(size_t at, Event* event) {
  heap_[at] = event;
  event->indexPlace = static_cast<int32>(at);
}

void NextEventIndex::Rise(size_t at) {
  Event* const event = heap_[at];
  while (at > 0) {
    const size_t parent = (at - 1) / 2;
    if (!Before(event, heap_[parent])) break;
    Place(at, heap_[parent]);
    at = parent;
  }
  Place(at, event);
}

void NextEventIndex::Sink(size_t at) {
  Event* const event = heap_[at];
  for (;;) {
    size_t child = 2 * at + 1;
    if (child >= heap_.size()) break;
    if (child + 1 < heap_.size() && Before(heap_[child + 1], heap_[child])) ++child;
    if (!Before(heap_[child], event)) break;
    Place(at, heap_[child]);
    at = child;
  }
  Place(at, event);
}

void NextEventIndex::Forget() {
  for (Event* event : heap_) event->indexPlace = -1;
  heap_.clear();
  built_ = false;
}

void NextEventIndex::Build(const std::vector<std::unique_ptr<Event>>& events) {
  Forget();
  heap_.reserve(events.size());
  for (const auto& event : events)
    if (IsPending(event.get())) {
      heap_.push_back(event.get());
      event->indexPlace = static_cast<int32>(heap_.size() - 1);
    }
  for (size_t at = heap_.size() / 2; at-- > 0;) Sink(at);
  built_ = true;
}

void NextEventIndex::Changed(Event* event) {
  if (!built_) return;
  if (!IsPending(event)) {
    Remove(event);
    return;
  }
  if (event->indexPlace < 0) {
    heap_.push_back(event);
    event->indexPlace = static_cast<int32>(heap_.size() - 1);
  }
  Rise(static_cast<size_t>(event->indexPlace));
  Sink(static_cast<size_t>(event->indexPlace));
}

void NextEventIndex::Remove(Event* event) {
  if (event->indexPlace < 0) return;
  const size_t at = static_cast<size_t>(event->indexPlace);
  event->indexPlace = -1;
  Event* const last = heap_.back();
  heap_.pop_back();
  if (last == event) return;
  Place(at, last);
  Rise(at);
  Sink(static_cast<size_t>(last->indexPlace));
}

}  // namespace kestrin
