#include "core/events/NamesInFile.h"

#include <algorithm>
#include <functional>

#include "core/events/Event.h"
#include "core/events/EventSet.h"

namespace kestrin {

namespace {

constexpr int32 PlaceOfNew = 1 << 30;

}  // namespace

/// Once for each state of the file.
void NamesInFile::Keep(const EventSet& set) {
  if (kept_) return;
  kept_ = true;
  std::unordered_map<size_t, int32> counts;
  counts.reserve(set.Events().size());
  const std::hash<std::string> hash;
  for (const auto& event : set.Events()) {
    firstNew_ = std::max(firstNew_, event->GetHandle() + 1);
    const size_t key = hash(event->GetName()) * 31 + hash(event->GetHandlerName());
    const int32 place = counts[key]++;
    if (place != 0) places_[event->GetHandle()] = place;
  }
}

EventName NamesInFile::Of(const EventSet& set, const Event& event) {
  Keep(set);
  const uint64 handle = event.GetHandle();
  if (handle >= firstNew_) {
    const auto [known, isFirst] = added_.try_emplace(
        handle, EventName{event.GetName(), event.GetHandlerName(),
                          PlaceOfNew | static_cast<int32>(handle & (PlaceOfNew - 1))});
    return known->second;
  }
  const auto changed = changed_.find(handle);
  EventName name = changed != changed_.end()
                       ? changed->second
                       : EventName{event.GetName(), event.GetHandlerName(), 0};
  const auto place = places_.find(handle);
  name.Place = place == places_.end() ? 0 : place->second;
  return name;
}

void NamesInFile::BeforeChange(const EventSet& set, const Event& event) {
  Keep(set);
  if (event.GetHandle() >= firstNew_) return;
  changed_.try_emplace(event.GetHandle(), EventName{event.GetName(), event.GetHandlerName(), 0});
}

void NamesInFile::Removed(const Event& event) {
  removed_[event.GetHandle()] = Of(*event.GetOwner(), event);
}

std::vector<NamesInFile::Renaming> NamesInFile::Saved(const EventSet& set) {
  std::vector<Renaming> renamings;
  if (!kept_) return renamings;
  NamesInFile now;
  now.Keep(set);
  const bool isAsItWas = changed_.empty() && added_.empty() && removed_.empty() &&
                         places_.size() == now.places_.size();
  if (!isAsItWas)
    for (const auto& event : set.Events()) {
      const uint64 handle = event->GetHandle();
      removed_.erase(handle);
      const bool concerned = changed_.contains(handle) || added_.contains(handle) ||
                             places_.contains(handle) || now.places_.contains(handle);
      if (!concerned) continue;
      Renaming renaming{Of(set, *event), now.Of(set, *event)};
      if (renaming.first != renaming.second) renamings.push_back(std::move(renaming));
    }
  for (const auto& [handle, name] : removed_)
    renamings.emplace_back(name, EventName{name.Name, name.Handler, -1});
  *this = std::move(now);
  return renamings;
}

}  // namespace kestrin
