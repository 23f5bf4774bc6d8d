// Deliveries that are only written down.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/events/Event.h"
#include "core/ports/EventActions.h"

namespace kestrin {

class FakeEventActions final : public EventActions {
 public:
  struct Delivery {
    std::string Kind;  ///< "prewarning", "event" or "nag"
    std::string Name;
    int32 Occurrence = 0;
    bool Missed = false;
    bool operator==(const Delivery&) const = default;
  };

  std::vector<Delivery> Deliveries;
  ActionPlan Plan;                                              ///< of every event
  std::vector<std::pair<std::string, std::string>> CarriedOut;  ///< records, commands and files
  bool Able = true;                                             ///< what CanDeliver answers
  std::function<void(Event&)> WhenEvent;  ///< may be null; called within DeliverEvent

  /// The names of what was delivered since the last time, with " missed" appended.
  std::vector<std::string> TakeNames() {
    std::vector<std::string> names;
    for (const auto& each : std::exchange(Deliveries, {}))
      names.push_back(each.Name + (each.Missed ? " missed" : ""));
    return names;
  }

  void DeliverPrewarnMessage(Event& event) override { Record("prewarning", event, false); }
  void DeliverNagMessage(Event& event) override { Record("nag", event, false); }
  void DeliverEvent(Event& event, bool missed) override {
    Record("event", event, missed);
    if (WhenEvent) WhenEvent(event);
  }
  bool CanDeliver(const Event&) const override { return Able; }
  ActionPlan PlanOf(const Event&) const override { return Plan; }
  void CarryOut(Context&, const std::string& record, const ActionPlan& plan) override {
    CarriedOut.emplace_back(record, plan.Run + plan.Open);
  }

 private:
  void Record(const char* kind, const Event& event, bool missed) {
    Deliveries.push_back({kind, event.GetName(), event.GetActualEventTime(), missed});
  }
};

}  // namespace kestrin
