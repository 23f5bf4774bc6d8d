#include "core/events/EventList.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace kestrin {

size_t EventList::PositionOf(const Event* event) const {
  const auto found = std::find_if(events_.begin(), events_.end(),
                                  [event](const auto& held) { return held.get() == event; });
  return static_cast<size_t>(found - events_.begin());
}

Event* EventList::Find(uint64 handle) const {
  for (const auto& event : events_)
    if (event->GetHandle() == handle) return event.get();
  return nullptr;
}

void EventList::Append(std::unique_ptr<Event> event) {
  event->indexStamp = nextPlace_++;
  next_.Changed(event.get());
  events_.push_back(std::move(event));
}

void EventList::Insert(Removed removed) {
  Event* const event = removed.event.get();
  event->indexStamp = removed.place;
  const auto after =
      std::upper_bound(events_.begin(), events_.end(), removed.place,
                       [](uint64 place, const auto& held) { return place < held->indexStamp; });
  events_.insert(after, std::move(removed.event));
  next_.Changed(event);
}

void EventList::Insert(std::vector<Removed> removed) {
  if (removed.size() == 1) {
    Insert(std::move(removed.front()));
    return;
  }
  next_.Forget();
  const auto middle = static_cast<std::ptrdiff_t>(events_.size());
  for (Removed& each : removed) {
    each.event->indexStamp = each.place;
    events_.push_back(std::move(each.event));
  }
  const auto before = [](const auto& a, const auto& b) { return a->indexStamp < b->indexStamp; };
  std::sort(events_.begin() + middle, events_.end(), before);
  std::inplace_merge(events_.begin(), events_.begin() + middle, events_.end(), before);
}

EventList::Removed EventList::TakeOut(std::unique_ptr<Event>& event) {
  const uint64 place = std::exchange(event->indexStamp, 0);
  return {std::move(event), place};
}

std::vector<EventList::Removed> EventList::Remove(const std::vector<Event*>& events) {
  std::vector<Removed> removed;
  if (events.size() == 1) {
    const size_t at = PositionOf(events.front());
    if (at == events_.size()) return removed;
    next_.Remove(events.front());
    removed.push_back(TakeOut(events_[at]));
    events_.erase(events_.begin() + static_cast<std::ptrdiff_t>(at));
    return removed;
  }
  next_.Forget();
  const std::unordered_set<const Event*> wanted(events.begin(), events.end());
  for (auto& event : events_)
    if (wanted.contains(event.get())) removed.push_back(TakeOut(event));
  std::erase(events_, nullptr);
  return removed;
}

Event* EventList::Next() {
  if (!next_.IsBuilt()) next_.Build(events_);
  return next_.Next();
}

}  // namespace kestrin
