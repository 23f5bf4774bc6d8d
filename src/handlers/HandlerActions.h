// Deliveries as they are made in the application: alerts for prewarnings and nags, the handler for
// the event itself.
#pragma once

#include "core/ports/EventActions.h"

namespace kestrin {

class HandlerActions final : public EventActions {
 public:
  void DeliverPrewarnMessage(Event& event) override;
  void DeliverNagMessage(Event& event) override;
  /// What the handler throws is caught and reported.
  void DeliverEvent(Event& event, bool missed) override;
  bool CanDeliver(const Event& event) const override;
  ActionPlan PlanOf(const Event& event) const override;
  void CarryOut(Context& context, const std::string& record, const ActionPlan& plan) override;
};

}  // namespace kestrin
