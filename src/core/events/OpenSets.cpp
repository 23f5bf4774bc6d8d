#include "core/events/OpenSets.h"

#include <algorithm>
#include <utility>

#include "core/events/EventSet.h"

namespace kestrin {

OpenSets::OpenSets() = default;
OpenSets::~OpenSets() = default;

EventSet* OpenSets::FindFile(const std::string& path) const {
  for (const auto& set : Sets)
    if (set->GetFileName() == path) return set.get();
  return nullptr;
}

EventSet* OpenSets::FindHandle(uint64 handle) const {
  for (const auto& set : Sets)
    if (set->GetHandle() == handle) return set.get();
  return nullptr;
}

void OpenSets::Destroy(EventSet* set) {
  const auto found =
      std::find_if(Sets.begin(), Sets.end(), [set](const auto& open) { return open.get() == set; });
  if (found == Sets.end()) return;
  std::unique_ptr<EventSet> gone = std::move(*found);
  Sets.erase(found);
  if (gone->IsActionRunning()) departed_.push_back(std::move(gone));
}

void OpenSets::DestroyDeparted() {
  for (const auto& set : std::exchange(departed_, {}))
    if (!FindFile(set->GetFileName())) set->SaveDeliveriesAlone();
}

}  // namespace kestrin
