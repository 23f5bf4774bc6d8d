#include "core/delivery/Agenda.h"

#include <algorithm>
#include <optional>

#include "core/delivery/DeliveryPass.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/MessageCodes.h"

namespace kestrin {

namespace {

void RecomputeAll(const OpenSets& open) {
  for (const auto& set : open.Sets)
    for (const auto& event : set->Events()) event->UpdateEventTime();
}

int64 EarliestDue(const OpenSets& open) {
  int64 earliest = 0;
  for (const auto& set : open.Sets) {
    Event* event = nullptr;
    const int64 time = set->GetNextEventTime(&event);
    if (time != 0 && (earliest == 0 || time < earliest)) earliest = time;
  }
  return earliest;
}

/// What the delivery of `event` would end with deleting it puts it to sleep instead: to take events
/// out of a long list one by one takes as long as the list is long.
void SpareFromDeletion(Event& event) {
  if (!event.Record().DeleteOnceDelivered || event.Record().ApplyNag) return;
  event.SetDeleteOnceDelivered(false);
  event.SetActive(false);
}

}  // namespace

bool ComputeAgenda(VirtualEngine& engine, const AgendaRequest& request,
                   std::vector<AgendaEntry>& entries) {
  if (request.From >= request.To) return true;
  engine.clock.Time = request.From;
  if (!request.Startup) RecomputeAll(engine.openSets);
  int64 due = 0;
  size_t names = 0;
  for (const AgendaEntry& entry : entries) names += entry.Event.size();
  engine.actions.OnDelivery = [&](DeliveryKind kind, Event& event, bool missed) {
    entries.push_back(
        {engine.clock.Time, kind, event.GetName(), event.GetOwner()->GetHandle(), missed, due});
    names += event.GetName().size();
    if (kind == DeliveryKind::Event) SpareFromDeletion(event);
  };
  std::optional<int32> next;
  DeliveryPass pass(engine.context,
                    [&](const Message& message, bool) { next = message.Get<int32>("When"); });
  due = EarliestDue(engine.openSets);
  pass.SetCounterForNextEvent(request.Startup);
  for (;;) {
    while (auto message = engine.queue.Take()) {
      due = EarliestDue(engine.openSets);
      pass.MessageReceived(*message);
      if (entries.size() > MaxAgendaEntries || names > MaxAgendaNames) return false;
    }
    if (!next || *next >= request.To) return true;
    engine.clock.Time = std::max<int64>(engine.clock.Time, *next);
    next.reset();
    due = EarliestDue(engine.openSets);
    pass.MessageReceived(Message(DELIVER_EVENTS));
  }
}

}  // namespace kestrin
