#include "core/loop/Holds.h"

#include "core/loop/AppMessages.h"

namespace kestrin {

void Holds::ProcessHold(uint64 set) {
  ++count_;
  if (set == 0) return;
  std::lock_guard lock(guard_);
  ++perSet_[set];
}

void Holds::ProcessDone(uint64 set) {
  if (set != 0) {
    std::lock_guard lock(guard_);
    const auto found = perSet_.find(set);
    if (found != perSet_.end() && --found->second == 0) perSet_.erase(found);
  }
  if (count_.fetch_sub(1) != 1) return;
  queue_.Post(QuitIfIdle());
}

int32 Holds::CountFor(uint64 set) const {
  std::lock_guard lock(guard_);
  const auto found = perSet_.find(set);
  return found == perSet_.end() ? 0 : found->second;
}

}  // namespace kestrin
