#include "core/Agenda.h"

#include <algorithm>
#include <optional>

#include "core/DeliveryPass.h"
#include "core/EventSet.h"
#include "core/OpenSets.h"

namespace kestrin {

namespace {

void RecomputeAll() {
  for (const auto& set : OpenSets::Sets)
    for (const auto& event : set->Events()) event->UpdateEventTime();
}

}  // namespace

bool ComputeAgenda(VirtualEngine& engine, const AgendaRequest& request,
                   std::vector<AgendaEntry>& entries) {
  if (request.From >= request.To) return true;
  engine.clock.Time = request.From;
  if (!request.Startup) RecomputeAll();
  engine.actions.OnDelivery = [&](DeliveryKind kind, const Event& event, bool missed) {
    entries.push_back(
        {engine.clock.Time, kind, event.GetName(), event.GetOwner()->GetHandle(), missed});
  };
  std::optional<int32> next;
  DeliveryPass pass(
      engine.context, [&](const Message& message, bool) { next = message.Get<int32>("When"); },
      [] {});
  pass.SetCounterForNextEvent(request.Startup);
  for (;;) {
    while (auto message = engine.queue.Take()) {
      pass.MessageReceived(*message);
      if (entries.size() > MaxAgendaEntries) return false;
    }
    if (!next || *next >= request.To) return true;
    engine.clock.Time = std::max<int64>(engine.clock.Time, *next);
    next.reset();
    pass.MessageReceived(Message(DELIVER_EVENTS));
  }
}

}  // namespace kestrin
