#include "core/delivery/UnfinishedActs.h"

#include <optional>
#include <utility>
#include <vector>

#include "core/delivery/EventDelivery.h"
#include "core/delivery/ReturningAlert.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/events/OpenSets.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageCodes.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/EventActions.h"
#include "core/ports/UserInterface.h"
#include "support/Bitmap.h"

namespace kestrin {

namespace {

constexpr char TryAgainButton[] = "Try again";
constexpr char EndedMeanwhile[] = "Kestrin ended while it was being carried out";
constexpr char TookTooLong[] = "it took more than one second, and Kestrin had to stop";
constexpr char EndedReading[] = "Kestrin ended while its handler read its data";

/// Its alert was all that there was to do, and that is shown again.
bool IsShown(const Context& context, const JournalRecord& record) {
  const int32 row = context.handlers.Find(record.Event.Handler);
  const bool isBuiltIn = row != UnknownHandler && row < NumberOfBuiltInHandlers;
  return record.AlertIs != AlertStage::None && (isBuiltIn || record.Kind != RecordKind::Event);
}

std::string FailureText(const JournalRecord& act) {
  const std::string which =
      "the event \"" + act.Event.Name + "\" of the event set \"" + EventSet::LeafOf(act.Set) + "\"";
  const std::string text = "Kestrin event:  " + act.Event.Name + "\n\n";
  if (act.Act == ActStage::Reading)
    return text + "The handler \"" + act.Event.Handler + "\" did not come to the end of reading " +
           "or showing its data of " + which + ": " + act.Why +
           ".  The data are kept unchanged and unread.  \"Try again\" lets the handler read them "
           "when the event set is opened next.";
  return text + "The handler \"" + act.Event.Handler + "\" did not come to its end with " + which +
         ": " + act.Why + ".  It is not carried out again by itself.";
}

void TryAgain(Context& context, const JournalRecord& act, uint64 setHandle, uint64 eventHandle) {
  if (eventHandle == 0) return;
  if (act.Act == ActStage::Reading) return context.journal->Forget(act.Id);
  EventSet* set = nullptr;
  {
    const AutoLock open(context.openSets.Protect);
    set = context.openSets.FindHandle(setHandle);
  }
  if (Event* const event = set ? set->FindEvent(eventHandle) : nullptr) ActAgain(*event, act.Kind);
}

/// Adopted. Without a screen the next process tells.
void GoOnWith(Context& context, JournalRecord record) {
  if (record.Act == ActStage::Acting && IsShown(context, record))
    return context.journal->Stage(record.Id, ActStage::Acted);
  if (record.Act != ActStage::Reading) {
    record.Why = record.Act == ActStage::Acting ? EndedMeanwhile
                 : record.Why == Overrun        ? TookTooLong
                                                : record.Why;
    record.Act = ActStage::Failed;
  } else {
    record.Why = EndedReading;
  }
  if (!context.ui.HasScreen() && record.Why == TookTooLong) return;
  context.journal->Stage(record.Id, record.Act, record.Why);
  if (context.ui.HasScreen()) ShowFailure(context, record, record);
}

}  // namespace

bool IsFailureAlert(const KeptAlert& alert) {
  return alert.Buttons.size() == 2 && alert.Buttons[0] == TryAgainButton;
}

/// What has been settled meanwhile is no longer known: then it was the event's own action.
void TryAgain(Context& context, const std::string& alertRecord, uint64 set, uint64 event) {
  const Journal& journal = *context.journal;
  const std::optional<JournalRecord> alert = journal.Find(alertRecord);
  const std::optional<JournalRecord> act = alert ? journal.Find(alert->Of) : std::nullopt;
  TryAgain(context, act ? *act : alert.value_or(JournalRecord()), set, event);
}

void ShowFailure(Context& context, const JournalRecord& act, const JournalRecord& alert) {
  const FoundEvent found = FindEvent(context, act.Set, act.Event);
  AlertRequest request;
  request.Kind = AlertKind::Warning;
  request.Role = AlertRole::Delivery;
  request.Text = IsFailureAlert(alert.Alert) ? alert.Alert.Text : FailureText(act);
  request.Record = alert.Id;
  request.Occurrence = act.Occurrence();
  request.Face.EventName = act.Event.Name;
  request.Buttons = {"Ok"};
  if (found.event) {
    request.Set = found.set->GetHandle();
    request.Event = found.event->GetHandle();
    request.Face.IconNumber = found.event->Record().IconNumber;
    if (const IconPair* const own = found.event->GetOwnIcon()) request.Face.OwnIcon = *own;
    request.Buttons = {TryAgainButton, "Ok"};
    request.HarmlessButton = request.DefaultButton = 1;
  }
  request.Done = [&context, act, set = request.Set, event = request.Event](int which) {
    if (which == 0) TryAgain(context, act, set, event);
    context.queue.Post(PROCESS_HOLD_DONE);
  };
  context.holds.ProcessHold();
  context.alerts.Show(std::move(request));
}

std::vector<JournalRecord> FindUnfinishedActs(const Context& context) {
  if (!context.journal) return {};
  return context.journal->Orphans([](const JournalRecord& record) {
    return record.Act == ActStage::Queued || record.Act == ActStage::Acting || record.IsUntold();
  });
}

/// What waited for its turn goes first. A question that was asked anew meanwhile may have gone on.
void GoOnWithUnfinishedActs(Context& context, const std::vector<JournalRecord>& unfinished) {
  std::vector<JournalRecord> untold;
  for (const JournalRecord& found : unfinished) {
    const std::optional<JournalRecord> record = context.journal->Find(found.Id);
    if (!record || record->Act != found.Act || !context.journal->Adopt(found.Id)) continue;
    if (record->Act == ActStage::Queued)
      context.actions.CarryOut(context, record->Id, {true, record->Run, record->Open});
    else
      untold.push_back(*record);
  }
  for (const JournalRecord& record : untold) GoOnWith(context, record);
}

}  // namespace kestrin
