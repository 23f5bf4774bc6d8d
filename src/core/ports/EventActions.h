// What an event does when something of it comes due, as a port under the delivery state machine.
#pragma once

#include <string>

namespace kestrin {

struct Context;
class Event;

/// What is known of an event's action before it is made.
struct ActionPlan {
  bool OneSession = false;  ///< a command, a file, an add-on, unasked: of all sessions one acts
  std::string Run, Open;    ///< what is carried out, perhaps after a question: a command, or a file
};

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
  /// Of the event itself.
  virtual ActionPlan PlanOf(const Event& event) const = 0;
  /// Carries out what a record of the journal has left to do, if no other session does, and writes
  /// down what becomes of it.
  virtual void CarryOut(Context& context, const std::string& record, const ActionPlan& plan) = 0;
};

}  // namespace kestrin
