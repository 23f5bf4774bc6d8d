// What an event does when something of it comes due, as a port under the delivery state machine.
#pragma once

namespace kestrin {

class Event;

/// Main thread, with no set locked. Must return at once.
class EventActions {
 public:
  virtual ~EventActions() = default;
  virtual void DeliverPrewarnMessage(Event& event) = 0;
  virtual void DeliverNagMessage(Event& event) = 0;
  /// The event itself: its handler acts.
  virtual void DeliverEvent(Event& event, bool missed) = 0;
  /// False when what is due needs a screen and there is none: the event stays due.
  virtual bool CanDeliver(const Event& event) const = 0;
};

}  // namespace kestrin
