// Which event of a set comes next: a heap on (NextEventTime, place in the list).
#pragma once

#include <memory>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

class Event;

/// Holds the events that are active and have a next time. Built on the first question; a change
/// then costs O(log n).
class NextEventIndex {
 public:
  /// The events are all new or their order has changed: build anew at the next question.
  void Forget();
  bool IsBuilt() const { return built_; }
  void Build(const std::vector<std::unique_ptr<Event>>& events);
  /// The event's next time or active flag may have changed.
  void Changed(Event* event);
  void Remove(Event* event);
  /// The earliest, of equal times the one that stands first in the list; null when there is none.
  Event* Next() const { return heap_.empty() ? nullptr : heap_.front(); }

 private:
  static bool Before(const Event* a, const Event* b);
  void Place(size_t at, Event* event);
  void Rise(size_t at);
  void Sink(size_t at);

  std::vector<Event*> heap_;
  bool built_ = false;
};

}  // namespace kestrin
