#include "core/delivery/PutOffAlerts.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/events/EventProgress.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/Clock.h"
#include "core/ports/Desktop.h"
#include "core/ports/EventActions.h"
#include "core/ports/Workers.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventRecord.h"
#include "core/timing/EventTypes.h"
#include "core/timing/LaterMoments.h"

namespace kestrin {

namespace {

RecordKind KindOf(AlertRole role) {
  return role == AlertRole::Prewarning ? RecordKind::Prewarning
         : role == AlertRole::Nag      ? RecordKind::Nag
                                       : RecordKind::Event;
}

/// The number, and for an event's own icon its bitmaps.
std::string TextOfIcon(const AlertFace& face) {
  const std::string number = std::to_string(face.IconNumber);
  return face.OwnIcon.large.empty() ? number
                                    : number + ":" + face.OwnIcon.large + face.OwnIcon.mini;
}

AlertFace FaceOf(const PutOffAlert& alert) {
  AlertFace face;
  face.EventName = alert.Event.Name;
  const std::string& text = alert.Alert.Icon;
  face.IconNumber = text.empty() ? -1 : std::atoi(text.c_str());
  const size_t bitmaps = text.find(':');
  if (bitmaps != std::string::npos &&
      text.size() - bitmaps - 1 == size_t{LargeIconBytes} + size_t{MiniIconBytes})
    face.OwnIcon = {text.substr(bitmaps + 1, LargeIconBytes),
                    text.substr(bitmaps + 1 + LargeIconBytes)};
  return face;
}

/// Another number means that a person has changed when the event occurs.
uint32 RuleMark(const EventRecord& rule) {
  std::string text;
  for (const int64 value :
       {int64{rule.PeriodType}, int64{rule.Multiple}, int64{rule.TimingType}, int64{rule.EventTime},
        int64{rule.DayOfMonth}, int64{rule.WeekOfMonth}, int64{rule.DayOfWeek}, int64{rule.Month},
        int64{rule.MultiStartTime}, int64{rule.ApplyTime}, int64{rule.TimeToApply},
        int64{rule.SubIntType}, int64{rule.ApplyStop}, int64{rule.StopTime}})
    text += std::to_string(value) + " ";
  return Fnv32(text);
}

EventName NameOf(const EventSet& set, const Event& event) {
  EventName name{event.GetName(), event.GetHandlerName(), 0};
  for (const auto& each : set.Events()) {
    if (each.get() == &event) break;
    if (each->GetName() == name.Name && each->GetHandlerName() == name.Handler) ++name.Place;
  }
  return name;
}

/// What a question about an event that has gone would have carried out.
void CarryOut(Context& context, const std::string& run, const std::string& file) {
  context.holds.ProcessHold();
  const bool started = context.workers.Start("PutOff", [&context, run, file] {
    if (!run.empty())
      context.desktop.RunCommand(run);
    else if (!file.empty())
      context.desktop.Launch(file);
    context.queue.Post(HoldDone(0));
  });
  if (!started) context.holds.ProcessDone();
}

void WithoutStopButton(AlertRequest& request) {
  if (request.Role != AlertRole::Prewarning && request.Role != AlertRole::Nag) return;
  request.Buttons = {"OK"};
  request.HarmlessButton = request.DefaultButton = 0;
}

}  // namespace

PutOffAlerts::Found PutOffAlerts::Find(const PutOffAlert& alert) {
  const AutoLock open(context_.openSets.Protect);
  const auto known = handles_.find(alert.Id);
  if (known != handles_.end()) {
    EventSet* const set = context_.openSets.FindHandle(known->second.Set);
    if (Event* const event = set ? set->FindEvent(known->second.Event) : nullptr)
      return {set, event};
  }
  EventSet* const set = context_.openSets.FindFile(alert.Set);
  if (!set) return {};
  int32 place = alert.Event.Place;
  for (const auto& event : set->Events())
    if (event->GetName() == alert.Event.Name && event->GetHandlerName() == alert.Event.Handler &&
        place-- == 0) {
      handles_[alert.Id] = {set->GetHandle(), event->GetHandle()};
      return {set, event.get()};
    }
  return {set, nullptr};
}

std::string PutOffAlerts::Keep(const AlertRequest& request, const PutOffMoment& when) {
  PutOffAlert alert;
  if (const auto earlier = later_.Find(request.KeptId)) alert = *earlier;
  alert.Kind = KindOf(request.Role);
  alert.Occurrence = request.Occurrence;
  alert.Alert = KeepAlert(request);
  alert.Alert.Icon = TextOfIcon(request.Face);
  alert.Run = request.Run;
  alert.Open = request.Open;
  alert.When = {when.moment, when.onWallClock ? std::optional(when.wall) : std::nullopt};
  const AutoLock open(context_.openSets.Protect);
  EventSet* const set = context_.openSets.FindHandle(request.Set);
  Event* const event = set ? set->FindEvent(request.Event) : nullptr;
  if (event) {
    alert.Set = set->GetFileName();
    alert.Event = NameOf(*set, *event);
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

/// The next occurrence ends what was put off and says so.
void PutOffAlerts::Opening(AlertRequest& request) {
  if (const auto asked = askedAnew_.find(request.Event);
      asked != askedAnew_.end() && request.Role == AlertRole::Question) {
    request.KeptId = asked->second;
    askedAnew_.erase(asked);
    return;
  }
  const bool isOccurrence =
      request.Role == AlertRole::Delivery || request.Role == AlertRole::Question;
  if (!isOccurrence || request.Event == 0 || !request.KeptId.empty()) return;
  if (All().empty()) return;
  const std::vector<PutOffAlert> all = All();
  for (const PutOffAlert& alert : all) {
    if (standing_.contains(alert.Id) || alert.Occurrence == request.Occurrence) continue;
    const auto known = handles_.find(alert.Id);
    if (known != handles_.end() && known->second.Event != request.Event) continue;
    const Found found = Find(alert);
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
    const Found found = Find(alert);
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

void PutOffAlerts::ReturnDue() {
  const int64 now = context_.clock.Now();
  if (NextReturn() == 0 || NextReturn() > now) return;
  later_.CatchUp();
  Changed();
  for (const PutOffAlert& alert : later_.Due(now, context_.zone))
    if (!standing_.contains(alert.Id)) Return(alert);
}

void PutOffAlerts::Return(const PutOffAlert& alert) {
  const Found found = Find(alert);
  if (found.event && (!found.event->GetActive() || RuleMark(found.event->Record()) != alert.Rule)) {
    End(alert.Id);
    return;
  }
  standing_.insert(alert.Id);
  if (alert.Alert.Role == AlertRole::Question && found.event)
    AskAnew(alert, *found.event);
  else
    ShowAgain(alert, found);
}

/// With what the event holds now. Where its handler has no question any more, it has acted.
bool PutOffAlerts::AskAnew(const PutOffAlert& alert, Event& event) {
  const uint64 handle = event.GetHandle();
  askedAnew_[handle] = alert.Id;
  context_.actions.DeliverEvent(event, false);
  if (context_.alerts.Asks(handle)) return true;
  askedAnew_.erase(handle);
  End(alert.Id);
  return false;
}

void PutOffAlerts::ShowAgain(const PutOffAlert& alert, const Found& found) {
  AlertRequest request = AlertOf(alert.Alert);
  request.KeptId = alert.Id;
  request.Occurrence = alert.Occurrence;
  request.Face = FaceOf(alert);
  request.Run = alert.Run;
  request.Open = alert.Open;
  request.OccursAtTime = SecondsIntoDay(context_.zone.AtMoment(alert.Occurrence)) != 0;
  if (request.Role == AlertRole::Prewarning) request.Begins = alert.Occurrence;
  if (found.event) {
    request.Set = found.set->GetHandle();
    request.Event = found.event->GetHandle();
    request.OccursAtTime = found.event->GetApplyTime();
    const bool nags = found.event->GetStatus() == WaitingToNag &&
                      found.event->GetActualEventTime() == alert.Occurrence;
    if (request.Role == AlertRole::Nag && nags)
      request.ComesAgain = found.event->GetNextEventTime();
  } else {
    WithoutStopButton(request);
  }
  request.Done = DoneOf(request);
  context_.holds.ProcessHold(request.Set);
  context_.alerts.Show(std::move(request));
}

std::function<void(int)> PutOffAlerts::DoneOf(const AlertRequest& request) const {
  std::optional<MessageCode> reply;
  if (request.Event != 0 && request.Role == AlertRole::Prewarning) reply = PREWARN_ALERT_REPLY;
  if (request.Event != 0 && request.Role == AlertRole::Nag) reply = NAG_ALERT_REPLY;
  const bool asks = request.Role == AlertRole::Question;
  return [&context = context_, reply, asks, set = request.Set, event = request.Event,
          occurrence = request.Occurrence, run = request.Run, file = request.Open](int which) {
    if (asks && which == 1) CarryOut(context, run, file);
    context.queue.Post(reply ? AlertReply(*reply, set, event, occurrence, which) : HoldDone(set));
  };
}

void PutOffAlerts::FollowNames() {
  const AutoLock open(context_.openSets.Protect);
  for (PutOffAlert& alert : later_.All()) {
    const Found found = Find(alert);
    if (!found.event || found.set->HasBeenModified() || found.set->IsUntitled()) continue;
    const EventName name = NameOf(*found.set, *found.event);
    if (alert.Set == found.set->GetFileName() && alert.Event == name) continue;
    alert.Set = found.set->GetFileName();
    alert.Event = name;
    later_.PutOff(alert);
    Changed();
  }
}

}  // namespace kestrin
