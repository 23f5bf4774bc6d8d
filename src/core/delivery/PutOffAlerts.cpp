#include "core/delivery/PutOffAlerts.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/events/EventIdentity.h"
#include "core/events/EventProgress.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/Clock.h"
#include "core/ports/EventActions.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/LaterMoments.h"

namespace kestrin {

namespace {

RecordKind KindOf(AlertRole role) {
  return role == AlertRole::Prewarning ? RecordKind::Prewarning
         : role == AlertRole::Nag      ? RecordKind::Nag
                                       : RecordKind::Event;
}

}  // namespace

FoundEvent PutOffAlerts::Find(const PutOffAlert& alert) {
  const AutoLock open(context_.openSets.Protect);
  const auto known = handles_.find(alert.Id);
  if (known != handles_.end()) {
    EventSet* const set = context_.openSets.FindHandle(known->second.Set);
    if (Event* const event = set ? set->FindEvent(known->second.Event) : nullptr)
      return {set, event};
  }
  const FoundEvent found = FindEvent(context_, alert.Set, alert.Event);
  if (found.event) handles_[alert.Id] = {found.set->GetHandle(), found.event->GetHandle()};
  return found;
}

std::string PutOffAlerts::Keep(const AlertRequest& request, const PutOffMoment& when) {
  PutOffAlert alert;
  if (const auto earlier = later_.Find(request.KeptId)) alert = *earlier;
  alert.Kind = KindOf(request.Role);
  alert.Occurrence = request.Occurrence;
  alert.Alert = KeepAlert(request);
  if (!request.Record.empty()) alert.Record = request.Record;
  alert.Run = request.Run;
  alert.Open = request.Open;
  alert.When = {when.moment, when.onWallClock ? std::optional(when.wall) : std::nullopt};
  const AutoLock open(context_.openSets.Protect);
  EventSet* const set = context_.openSets.FindHandle(request.Set);
  Event* const event = set ? set->FindEvent(request.Event) : nullptr;
  if (event) {
    alert.Set = JournalPath(*set);
    alert.Event = set->FileNames().Of(*set, *event);
    alert.Rule = RuleMark(event->Record());
  } else if (alert.Event.Name.empty()) {
    alert.Event.Name = request.Face.EventName;
  }
  const bool isUntilItBegins = request.Begins != 0 && when.moment >= request.Begins;
  if (!isUntilItBegins) {
    const status_t status = later_.PutOff(alert);
    if (status != StatusOk)
      return std::string("This cannot be put off: ") + std::strerror(-status) + ".";
    if (event) handles_[alert.Id] = {request.Set, request.Event};
    standing_.erase(alert.Id);
    Changed();
  } else if (!request.KeptId.empty()) {
    End(request.KeptId);
  }
  if (event && request.Role != AlertRole::Delivery && request.Role != AlertRole::Question) {
    const AutoLock lock(*set);
    PassRemindersOver(*event, when.moment);
  }
  context_.queue.Post(EVENT_SETS_CHANGED);
  return "";
}

void PutOffAlerts::Read() {
  later_.Read();
  Journal* const journal = context_.journal;
  if (!journal) return;
  for (const PutOffAlert& alert : All()) {
    const auto record = journal->Find(alert.Record);
    if (record && record->AlertIs == AlertStage::Shown && journal->Adopt(alert.Record))
      journal->PutOff(alert.Record);
  }
}

void PutOffAlerts::Asked(AlertRequest& request) {
  const auto asked = askedAnew_.find(request.Event);
  if (asked == askedAnew_.end() || request.Role != AlertRole::Question) return;
  request.KeptId = asked->second;
  askedAnew_.erase(asked);
}

/// The next occurrence ends what was put off and says so.
void PutOffAlerts::Opening(AlertRequest& request) {
  const bool isOccurrence =
      request.Role == AlertRole::Delivery || request.Role == AlertRole::Question;
  if (!isOccurrence || request.Event == 0 || request.IsReturning || !request.KeptId.empty()) return;
  if (All().empty()) return;
  const std::vector<PutOffAlert> all = All();
  for (const PutOffAlert& alert : all) {
    if (standing_.contains(alert.Id) || alert.Occurrence == request.Occurrence) continue;
    const auto known = handles_.find(alert.Id);
    if (known != handles_.end() && known->second.Event != request.Event) continue;
    const FoundEvent found = Find(alert);
    if (!found.event || found.event->GetHandle() != request.Event) continue;
    const std::string day =
        GetDateTimeString(alert.Occurrence, false, context_.zone, true).substr(0, 3);
    request.Text += "\n\nAlso unanswered: " + day + " " +
                    GetTimeOfDayText(SecondsIntoDay(context_.zone.AtMoment(alert.Occurrence)),
                                     context_.settings.Time24Hour);
    End(alert.Id);
  }
}

void PutOffAlerts::Ended(const AlertRequest& request) {
  if (!request.KeptId.empty()) End(request.KeptId);
}

void PutOffAlerts::End(const std::string& id) {
  later_.End(id);
  handles_.erase(id);
  standing_.erase(id);
  Changed();
}

void PutOffAlerts::EventDeleted(uint64 set, uint64 event) {
  const std::vector<PutOffAlert> all = All();
  for (const PutOffAlert& alert : all) {
    const FoundEvent found = Find(alert);
    if (found.event && found.event->GetHandle() == event && found.set->GetHandle() == set)
      End(alert.Id);
  }
}

const std::vector<PutOffAlert>& PutOffAlerts::All() {
  if (!all_) all_ = later_.All();
  return *all_;
}

void PutOffAlerts::Changed() {
  all_.reset();
  next_.reset();
}

int64 PutOffAlerts::NextReturn() {
  if (next_) return *next_;
  int64 next = 0;
  for (const PutOffAlert& alert : All()) {
    if (standing_.contains(alert.Id)) continue;
    const int64 at = std::max<int64>(alert.When.In(context_.zone), 1);
    if (next == 0 || at < next) next = at;
  }
  next_ = next;
  return next;
}

bool PutOffAlerts::Has(const Event& event) {
  if (All().empty()) return false;
  EventSet& set = *event.GetOwner();
  return !later_.About(JournalPath(set), set.FileNames().Of(set, event)).empty();
}

void PutOffAlerts::ReturnDue() {
  const int64 now = context_.clock.Now();
  if (NextReturn() == 0 || NextReturn() > now) return;
  later_.CatchUp();
  Changed();
  for (const PutOffAlert& alert : later_.Due(now, context_.zone))
    if (!standing_.contains(alert.Id)) Return(alert);
}

void PutOffAlerts::Return(const PutOffAlert& alert) {
  const FoundEvent found = Find(alert);
  if (found.event && (!found.event->GetActive() || RuleMark(found.event->Record()) != alert.Rule)) {
    End(alert.Id);
    return;
  }
  standing_.insert(alert.Id);
  if (alert.Alert.Role == AlertRole::Question && found.event)
    AskAnew(alert, *found.event);
  else
    ShowReturning(context_,
                  {alert.Alert, alert.Event.Name, alert.Occurrence, alert.Record, alert.Id,
                   alert.Run, alert.Open},
                  found);
}

/// With what the event holds now. Where its handler has no question any more, it has acted.
bool PutOffAlerts::AskAnew(const PutOffAlert& alert, Event& event) {
  const uint64 handle = event.GetHandle();
  askedAnew_[handle] = alert.Id;
  event.SetDelivery(alert.Record);
  context_.actions.DeliverEvent(event, false);
  event.SetDelivery("");
  if (context_.alerts.Asks(handle)) return true;
  askedAnew_.erase(handle);
  End(alert.Id);
  return false;
}

void PutOffAlerts::FollowNames() {
  const AutoLock open(context_.openSets.Protect);
  for (PutOffAlert& alert : later_.All()) {
    const FoundEvent found = Find(alert);
    if (!found.event || found.set->HasBeenModified() || found.set->IsUntitled()) continue;
    const EventName name = found.set->FileNames().Of(*found.set, *found.event);
    if (alert.Set == found.set->GetFileName() && alert.Event == name) continue;
    alert.Set = found.set->GetFileName();
    alert.Event = name;
    later_.PutOff(alert);
    Changed();
  }
}

}  // namespace kestrin
