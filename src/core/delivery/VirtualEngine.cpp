#include "core/delivery/VirtualEngine.h"

namespace kestrin {

void RecordingActions::DeliverPrewarnMessage(Event& event) {
  if (OnDelivery) OnDelivery(DeliveryKind::Prewarning, event, false);
}

void RecordingActions::DeliverNagMessage(Event& event) {
  if (OnDelivery) OnDelivery(DeliveryKind::Nag, event, false);
}

void RecordingActions::DeliverEvent(Event& event, bool missed) {
  if (OnDelivery) OnDelivery(DeliveryKind::Event, event, missed);
}

VirtualEngine::VirtualEngine()
    : context{clock,   files,   queue,    holds,    ui,       alerts,         notices, desktop,
              workers, actions, openSets, settings, handlers, Zone::System(), 1} {}

}  // namespace kestrin
