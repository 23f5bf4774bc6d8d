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

/// The events of open sets, each set gone through once.
class EventsByName {
 public:
  explicit EventsByName(OpenSets& open) : open_(open) {}

  FoundEvent Find(const std::string& path, const EventName& name) {
    const auto [events, isFirst] = bySet_.try_emplace(path);
    if (isFirst) Fill(path, events->second);
    const auto found = events->second.find(name);
    return found == events->second.end() ? FoundEvent{} : found->second;
  }

 private:
  using Events = std::map<EventName, FoundEvent>;

  void Fill(const std::string& path, Events& events) {
    for (const auto& set : open_.Sets)
      if (JournalPath(*set) == path)
        for (const auto& event : set->Events())
          events.try_emplace(set->FileNames().Of(*set, *event), FoundEvent{set.get(), event.get()});
  }

  OpenSets& open_;
  std::map<std::string, Events> bySet_;
};

}  // namespace

/// Where the alert's event was found before.
FoundEvent PutOffAlerts::Known(const std::string& id) {
  const auto known = handles_.find(id);
  if (known == handles_.end()) return {};
  EventSet* const set = context_.openSets.FindHandle(known->second.Set);
  Event* const event = set ? set->FindEvent(known->second.Event) : nullptr;
  return event ? FoundEvent{set, event} : FoundEvent{};
}

FoundEvent PutOffAlerts::Find(const PutOffAlert& alert) {
  const AutoLock open(context_.openSets.Protect);
  if (const FoundEvent known = Known(alert.Id); known.event) return known;
  const FoundEvent found = FindEvent(context_, alert.Set, alert.Event);
  if (found.event) handles_[alert.Id] = {found.set->GetHandle(), found.event->GetHandle()};
  return found;
}

/// By the name that its file has for it, and those that this process has met by another.
std::vector<PutOffAlert> PutOffAlerts::About(EventSet& set, const Event& event) {
  std::vector<PutOffAlert> about = later_.Of(JournalPath(set), set.FileNames().Of(set, event));
  std::erase_if(about, [&](const PutOffAlert& alert) {
    const FoundEvent known = Known(alert.Id);
    return known.event && known.event != &event;
  });
  for (const auto& known : handles_) {
    const Handles& handles = known.second;
    const bool isThere = std::any_of(about.begin(), about.end(), [&known](const auto& alert) {
      return alert.Id == known.first;
    });
    if (handles.Event != event.GetHandle() || handles.Set != set.GetHandle() || isThere) continue;
    if (auto alert = later_.Find(known.first)) about.push_back(std::move(*alert));
  }
  return about;
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
  alert.IsBack = false;
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
    next_.reset();
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
  const auto isOpen = [](const JournalRecord& record) {
    return record.AlertIs == AlertStage::Shown;
  };
  const std::vector<JournalRecord> open = journal->Orphans(isOpen);
  if (open.empty()) return;
  const std::set<std::string> putOff = later_.Deliveries();
  for (const JournalRecord& record : open)
    if (putOff.contains(record.Id)) journal->PutOff(record.Id);
}

void PutOffAlerts::Asked(AlertRequest& request) {
  const auto asked = askedAnew_.find(request.Event);
  if (asked == askedAnew_.end() || request.Role != AlertRole::Question) return;
  request.KeptId = asked->second;
  askedAnew_.erase(asked);
}

/// The next occurrence ends what was put off and says so, to the next process as well.
void PutOffAlerts::Opening(AlertRequest& request) {
  const bool isOccurrence =
      request.Role == AlertRole::Delivery || request.Role == AlertRole::Question;
  if (!isOccurrence || request.Event == 0 || request.IsReturning || !request.KeptId.empty() ||
      later_.IsEmpty())
    return;
  const AutoLock open(context_.openSets.Protect);
  EventSet* const set = context_.openSets.FindHandle(request.Set);
  const Event* const event = set ? set->FindEvent(request.Event) : nullptr;
  if (!event) return;
  std::vector<std::string> ended;
  for (const PutOffAlert& alert : About(*set, *event)) {
    if (standing_.contains(alert.Id) || alert.Occurrence == request.Occurrence) continue;
    const std::string day =
        GetDateTimeString(alert.Occurrence, false, context_.zone, true).substr(0, 3);
    request.Text += "\n\nAlso unanswered: " + day + " " +
                    GetTimeOfDayText(SecondsIntoDay(context_.zone.AtMoment(alert.Occurrence)),
                                     context_.settings.Time24Hour);
    ended.push_back(alert.Id);
  }
  if (ended.empty()) return;
  if (context_.journal && context_.journal->Has(request.Record))
    context_.journal->Shown(request.Record, KeepAlert(request));
  for (const std::string& id : ended) End(id);
  context_.queue.Post(EVENT_SETS_CHANGED);  // the deliverer need not wake anybody for them
}

void PutOffAlerts::Ended(const AlertRequest& request) {
  if (!request.KeptId.empty()) End(request.KeptId);
}

void PutOffAlerts::End(const std::string& id) {
  later_.End(id);
  handles_.erase(id);
  standing_.erase(id);
  next_.reset();
}

/// A deletion that was undone is none.
void PutOffAlerts::SetSaved(uint64 set) {
  for (const auto& [id, of] : std::map(deleted_)) {
    if (of != set) continue;
    deleted_.erase(id);
    handles_.erase(id);
    const auto alert = later_.Find(id);
    if (alert && !Find(*alert).event) End(id);
  }
  next_.reset();
}

/// The deletion was undone, or the set was closed and its changes thrown away.
void PutOffAlerts::TakeBackUndone() {
  if (deleted_.empty()) return;
  const AutoLock open(context_.openSets.Protect);
  const auto isUndone = [this](const auto& entry) {
    return !context_.openSets.FindHandle(entry.second) || Known(entry.first).event;
  };
  if (std::erase_if(deleted_, isUndone) > 0) next_.reset();
}

void PutOffAlerts::EventDeleted(uint64 set, uint64 event) {
  if (later_.IsEmpty()) return;
  const AutoLock open(context_.openSets.Protect);
  EventSet* const from = context_.openSets.FindHandle(set);
  const Event* const deleted = from ? from->FindEvent(event) : nullptr;
  if (!deleted) return;
  for (const PutOffAlert& alert : About(*from, *deleted)) {
    deleted_[alert.Id] = set;
    handles_[alert.Id] = {set, event};
  }
  next_.reset();
}

int64 PutOffAlerts::NextReturn() {
  TakeBackUndone();
  if (next_) return *next_;
  std::set<std::string> silent = standing_;
  for (const auto& [id, set] : deleted_) silent.insert(id);
  next_ = later_.NextReturn(context_.zone, silent);
  return *next_;
}

bool PutOffAlerts::Has(const Event& event) {
  if (later_.IsEmpty()) return false;
  EventSet& set = *event.GetOwner();
  return !later_.Of(JournalPath(set), set.FileNames().Of(set, event)).empty();
}

void PutOffAlerts::ReturnDue() {
  const int64 now = context_.clock.Now();
  if (NextReturn() == 0 || NextReturn() > now) return;
  later_.CatchUp();
  next_.reset();
  for (const PutOffAlert& alert : later_.Due(now, context_.zone))
    if (!standing_.contains(alert.Id) && !deleted_.contains(alert.Id)) Return(alert);
}

void PutOffAlerts::Return(const PutOffAlert& alert) {
  const FoundEvent found = Find(alert);
  const bool isChanged =
      found.event && (!found.event->GetActive() || RuleMark(found.event->Record()) != alert.Rule);
  if (isChanged && !alert.IsBack) return End(alert.Id);
  standing_.insert(alert.Id);
  if (!alert.IsBack) later_.IsBack(alert.Id);
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
  EventsByName byName(context_.openSets);
  for (const Later::Subject& alert : later_.All()) {
    FoundEvent found = Known(alert.Id);
    if (!found.event) {
      found = byName.Find(alert.Set, alert.Event);
      if (found.event) handles_[alert.Id] = {found.set->GetHandle(), found.event->GetHandle()};
    }
    if (!found.event || found.set->HasBeenModified() || found.set->IsUntitled()) continue;
    const EventName name = found.set->FileNames().Of(*found.set, *found.event);
    if (alert.Set == found.set->GetFileName() && alert.Event == name) continue;
    std::optional<PutOffAlert> renamed = later_.Find(alert.Id);
    renamed->Set = found.set->GetFileName();
    renamed->Event = name;
    later_.PutOff(*renamed);
    next_.reset();
  }
}

}  // namespace kestrin
