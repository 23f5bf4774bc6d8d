// The events of a set in the order in which they came, and which of them comes next.
#pragma once

#include <memory>
#include <vector>

#include "core/events/Event.h"
#include "core/events/NextEventIndex.h"

namespace kestrin {

/// Every event has a place, a number that is larger than those of the events before it. One that
/// was taken out gets back to its place by that number, whatever else has come and gone meanwhile.
class EventList {
 public:
  struct Removed {
    std::unique_ptr<Event> event;
    uint64 place;
  };

  const std::vector<std::unique_ptr<Event>>& All() const { return events_; }
  void Reserve(size_t count) { events_.reserve(count); }
  /// Where the event stands, or the number of events when it is not here. Takes any pointer.
  size_t PositionOf(const Event* event) const;
  Event* Find(uint64 handle) const;

  /// The last of the list; the next time is looked at.
  void Append(std::unique_ptr<Event> event);
  /// Back at its place.
  void Insert(Removed removed);
  void Insert(std::vector<Removed> removed);
  /// In the order of the list; those that are not in it are passed over.
  std::vector<Removed> Remove(const std::vector<Event*>& events);

  void Changed(Event* event) { next_.Changed(event); }
  /// Null when nothing is pending.
  Event* Next();

 private:
  Removed TakeOut(std::unique_ptr<Event>& event);

  std::vector<std::unique_ptr<Event>> events_;
  NextEventIndex next_;
  uint64 nextPlace_ = 1;
};

}  // namespace kestrin
