#include "core/delivery/DeliveryRecord.h"

#include <optional>
#include <utility>

#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/journal/Journal.h"
#include "core/ports/EventActions.h"

namespace kestrin {

namespace {

constexpr char FurtherOnes[] = "further occurrences had passed by then";

JournalRecord RecordOf(Event& event, const DeliveryRecord::Delivery& delivery, ActStage act) {
  EventSet& set = *event.GetOwner();
  JournalRecord record;
  record.Set = JournalPath(set);
  record.Event = set.FileNames().Of(set, event);
  record.Rule = RuleMark(event.Record());
  record.Kind = delivery.Kind;
  record.From = delivery.From;
  record.To = delivery.To;
  record.Missed = delivery.Missed;
  record.Trial = delivery.Trial;
  if (delivery.Skips) record.Why = FurtherOnes;
  record.Act = act;
  return record;
}

}  // namespace

DeliveryRecord::DeliveryRecord(Event& event, const Delivery& delivery)
    : journal_(event.GetOwner()->GetContext().journal), to_(delivery.To) {
  if (!journal_) return;
  JournalRecord record = RecordOf(event, delivery, ActStage::Acting);
  ActionPlan plan;
  if (delivery.Kind == RecordKind::Event)
    plan = event.GetOwner()->GetContext().actions.PlanOf(event);
  record.Run = std::move(plan.Run);
  record.Open = std::move(plan.Open);
  if (!plan.OneSession || delivery.Trial) {
    const bool onlyShows = !plan.OneSession && record.Run.empty() && record.Open.empty();
    id_ = onlyShows ? journal_->BeginInHeap(std::move(record)) : journal_->Begin(std::move(record));
    return;
  }
  const std::optional<std::string> claimed = journal_->Claim(std::move(record));
  mayAct_ = claimed.has_value();
  id_ = claimed.value_or("");
}

void DeliveryRecord::Acted(const EventState& to) {
  if (!journal_ || id_.empty()) return;
  if (to != to_) journal_->Became(id_, to);
  if (journal_->Is(id_, ActStage::Acting)) journal_->Stage(id_, ActStage::Acted);
}

void DeliveryRecord::WriteMissed(Event& event, const EventState& from, bool skips) {
  Journal* const journal = event.GetOwner()->GetContext().journal;
  if (!journal) return;
  const Delivery delivery{RecordKind::Event, from, StateOf(event.Record()), true, false, skips};
  journal->BeginInHeap(RecordOf(event, delivery, ActStage::Missed));
}

}  // namespace kestrin
