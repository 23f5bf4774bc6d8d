#include "core/events/NamesInFile.h"

#include <algorithm>
#include <bit>
#include <functional>

#include "core/events/Event.h"
#include "core/events/EventSet.h"

namespace kestrin {

namespace {

constexpr int32 PlaceOfNew = 1 << 30;

/// How often each key has come: one flat table, for sets of a hundred thousand events.
class Counter {
 public:
  explicit Counter(size_t most) : slots_(std::bit_ceil(2 * most + 1)) {}

  /// How often it has come before.
  int32 Next(size_t key) {
    const size_t mark = key | 1;  // 0: a free slot
    size_t at = key & (slots_.size() - 1);
    while (slots_[at].mark != 0 && slots_[at].mark != mark) at = (at + 1) & (slots_.size() - 1);
    slots_[at].mark = mark;
    return slots_[at].count++;
  }

 private:
  struct Slot {
    size_t mark = 0;
    int32 count = 0;
  };
  std::vector<Slot> slots_;
};

}  // namespace

/// Once for each state of the file, before an event joins or leaves the set.
void NamesInFile::Keep(const EventSet& set) {
  if (kept_) return;
  kept_ = true;
  Counter counts(set.Events().size());
  const std::hash<std::string> hash;
  for (const auto& event : set.Events()) {
    firstNew_ = std::max(firstNew_, event->GetHandle() + 1);
    const auto changed = changed_.empty() ? changed_.end() : changed_.find(event->GetHandle());
    const bool isAsInFile = changed == changed_.end();
    const std::string& name = isAsInFile ? event->GetName() : changed->second.Name;
    const std::string& handler = isAsInFile ? event->GetHandlerName() : changed->second.Handler;
    const size_t key = hash(name) * 31 + hash(handler);
    const int32 place = counts.Next(key);
    if (place != 0) places_.emplace_back(event->GetHandle(), place);
  }
  if (!std::is_sorted(places_.begin(), places_.end())) std::sort(places_.begin(), places_.end());
}

NamesInFile::Places::const_iterator NamesInFile::PlaceOf(uint64 handle) const {
  const auto found = std::lower_bound(places_.begin(), places_.end(), std::pair(handle, int32{0}));
  return found != places_.end() && found->first == handle ? found : places_.end();
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
  const auto place = PlaceOf(handle);
  name.Place = place == places_.end() ? 0 : place->second;
  return name;
}

void NamesInFile::BeforeChange(const Event& event) {
  if (kept_ && event.GetHandle() >= firstNew_) return;
  changed_.try_emplace(event.GetHandle(), EventName{event.GetName(), event.GetHandlerName(), 0});
}

void NamesInFile::Removed(const Event& event) {
  removed_[event.GetHandle()] = Of(*event.GetOwner(), event);
}

std::vector<NamesInFile::Renaming> NamesInFile::Saved(const EventSet& set) {
  std::vector<Renaming> renamings;
  if (!kept_ && changed_.empty()) return renamings;
  Keep(set);
  NamesInFile now;
  now.Keep(set);
  const bool isAsItWas = changed_.empty() && added_.empty() && removed_.empty() &&
                         places_.size() == now.places_.size();
  if (!isAsItWas)
    for (const auto& event : set.Events()) {
      const uint64 handle = event->GetHandle();
      removed_.erase(handle);
      const bool concerned = changed_.contains(handle) || added_.contains(handle) ||
                             HasPlace(handle) || now.HasPlace(handle);
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
