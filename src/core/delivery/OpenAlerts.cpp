#include "core/delivery/OpenAlerts.h"

#include <optional>
#include <vector>

#include "core/delivery/ReturningAlert.h"
#include "core/delivery/UnfinishedActs.h"
#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/ports/EventActions.h"
#include "core/ports/UserInterface.h"

namespace kestrin {

OpenAlerts::OpenAlerts(Context& context) : context_(context) { context_.alerts.RecordWith(this); }

OpenAlerts::~OpenAlerts() { context_.alerts.RecordWith(nullptr); }

/// Of an alert that an add-on asks for after its action has returned.
std::string OpenAlerts::RecordOfDelivery(const AlertRequest& request) const {
  const AutoLock open(context_.openSets.Protect);
  EventSet* const set = context_.openSets.FindHandle(request.Set);
  const Event* const event = set ? set->FindEvent(request.Event) : nullptr;
  if (!event) return "";
  std::string id;
  for (const JournalRecord& record :
       context_.journal->About(JournalPath(*set), set->FileNames().Of(*set, *event)))
    if (record.Of.empty() && context_.journal->IsMine(record)) id = record.Id;
  return id;
}

/// What was put off stays on disk elsewhere until it is answered.
void OpenAlerts::Shown(AlertRequest& request) {
  Journal* const journal = context_.journal;
  if (!journal || !request.IsReminder() || !request.KeptId.empty()) return;
  if (request.Record.empty()) request.Record = RecordOfDelivery(request);
  if (!journal->Has(request.Record)) return request.Record.clear();
  const bool isAgain = again_.erase(request.Record) != 0;
  request.IsReturning = request.IsReturning || isAgain;
  if (!isAgain && !journal->Is(request.Record, AlertStage::None))
    request.Record = journal->Further(request.Record, KeepAlert(request));
  else
    journal->Shown(request.Record, KeepAlert(request));
}

void OpenAlerts::Opening() {
  if (context_.journal) context_.journal->EndHeap();
}

void OpenAlerts::Answered(const AlertRequest& request, int which) {
  Journal* const journal = context_.journal;
  const std::optional<JournalRecord> record =
      journal ? journal->Find(request.Record) : std::nullopt;
  if (!record) return;
  if (!record->IsAboutAnEvent()) return journal->Forget(record->Id);
  const bool starts = request.Role == AlertRole::Question && which == 1;
  const bool isButton = which >= 0 && which < static_cast<int>(request.Buttons.size());
  journal->Answered(request.Record, which,
                    isButton ? request.Buttons[static_cast<size_t>(which)] : "",
                    starts ? ActStage::Queued : ActStage::None);
}

void OpenAlerts::PutOff(const AlertRequest& request) {
  if (context_.journal && context_.journal->Has(request.Record))
    context_.journal->PutOff(request.Record);
}

void OpenAlerts::ShowAgain() {
  Journal* const journal = context_.journal;
  if (!journal || !context_.ui.HasScreen()) return;
  const auto isOpen = [](const JournalRecord& record) {
    return record.AlertIs == AlertStage::Shown;
  };
  for (const JournalRecord& record : journal->Orphans(isOpen))
    if (journal->Adopt(record.Id)) Show(record);
}

void OpenAlerts::Show(const JournalRecord& record) {
  const FoundEvent found = FindEvent(context_, record.Set, record.Event);
  again_.insert(record.Id);
  if (IsFailureAlert(record.Alert)) {
    const std::optional<JournalRecord> act = context_.journal->Find(record.Of);
    return ShowFailure(context_, act.value_or(record), record);
  }
  if (record.Alert.Role == AlertRole::Question && found.event) return AskAnew(record, *found.event);
  ShowReturning(context_,
                {record.Alert, record.Event.Name, record.Occurrence(), record.Id, "", record.Run,
                 record.Open},
                found);
}

/// With what the event holds now; that it was missed is only known while it stands at that
/// occurrence. Where its handler has no question any more, it acts.
void OpenAlerts::AskAnew(const JournalRecord& record, Event& event) {
  const bool isAtIt = event.GetActualEventTime() == record.Occurrence();
  if (context_.actions.PlanOf(event).OneSession && !context_.journal->ClaimAgain(record.Id)) return;
  const uint64 handle = event.GetHandle();
  event.SetDelivery(record.Id);
  context_.actions.DeliverEvent(event, isAtIt);
  event.SetDelivery("");
  // About a file it asks once the disk has answered.
  if (!record.Open.empty() && again_.contains(record.Id)) return;
  if (again_.erase(record.Id) == 0 || context_.alerts.Asks(handle)) return;
  context_.journal->Answered(record.Id, record.Alert.HarmlessButton, "");
}

}  // namespace kestrin
