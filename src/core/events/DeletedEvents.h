// Events that were deleted from a set and may still come back.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/events/Event.h"

namespace kestrin {

/// Keeps what it deletes until it is cleared, which must come before the set goes. Main thread
/// only.
class DeletedEvents {
 public:
  /// Closes the event's editor and takes it out of its set.
  void Delete(Event& event);
  /// Puts the event that was deleted last back in its place; null when there is none.
  Event* RestoreLast();
  /// The one that would be put back; null when there is none.
  const Event* Last() const { return deleted_.empty() ? nullptr : deleted_.back().event.get(); }
  void Clear();

 private:
  struct Deleted {
    std::unique_ptr<Event> event;
    size_t place;
  };
  std::vector<Deleted> deleted_;
};

}  // namespace kestrin
