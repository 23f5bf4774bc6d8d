#include "core/events/DeliveredLog.h"

#include <algorithm>
#include <vector>

#include "core/events/Event.h"
#include "core/events/EventProgress.h"
#include "core/events/EventSet.h"

namespace kestrin {

void DeliveredLog::RecordRename(const Event& event) {
  namesInFile_.try_emplace(event.GetHandle(), event.GetName());
}

void DeliveredLog::RecordDelivered(const Event& event, int32 status) {
  const auto renamed = namesInFile_.find(event.GetHandle());
  delivered_.try_emplace(
      event.GetHandle(),
      Delivered{renamed == namesInFile_.end() ? event.GetName() : renamed->second,
                event.GetActualEventTime(), status});
}

void DeliveredLog::Clear() {
  delivered_.clear();
  namesInFile_.clear();
}

void DeliveredLog::MoveOnDelivered(EventSet& set, int64 now) const {
  std::unordered_map<uint64, Delivered> left = delivered_;
  std::vector<Event*> due;
  for (const auto& event : set.Events())
    if (event->GetNextEventTime() != 0 && event->GetNextEventTime() <= now)
      due.push_back(event.get());
  for (Event* const event : due) {
    const Delivered state{event->GetName(), event->GetActualEventTime(), event->GetStatus()};
    const auto known = std::find_if(left.begin(), left.end(),
                                    [&](const auto& entry) { return entry.second == state; });
    if (known == left.end()) continue;
    left.erase(known);
    set.Delivered().RecordDelivered(*event, state.status);
    MoveOn(*event);
  }
}

}  // namespace kestrin
