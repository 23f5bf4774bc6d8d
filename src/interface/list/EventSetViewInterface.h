// A view of a set's events, as the set's window knows it. The operations are those of any view
// mode: they stand whole for a further one, also those that the list's window does not need.
#pragma once

#include "interface/list/EventOrder.h"

class QWidget;

namespace kestrin {

class EventSet;

class EventSetViewInterface {
 public:
  explicit EventSetViewInterface(EventSet& set) : set_(set) {}
  virtual ~EventSetViewInterface() = default;

  virtual void SetColumnShown(Columns column, bool shown) = 0;
  /// The view itself. It belongs to the window.
  virtual QWidget* GetBViewPart() = 0;
  virtual void AddEvent(Event* event) = 0;
  /// The event is about to go.
  virtual void RemoveEvent(Event* event) = 0;
  virtual void SortEvents() = 0;
  /// Null when none is selected.
  virtual Event* GetSelectedEvent() = 0;
  virtual void EventModified(Event* event) = 0;

 protected:
  EventSet& GetEventSet() const { return set_; }

 private:
  EventSet& set_;
};

}  // namespace kestrin
