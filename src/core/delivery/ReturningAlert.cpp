#include "core/delivery/ReturningAlert.h"

#include <functional>
#include <optional>
#include <utility>

#include "core/delivery/StopReminding.h"
#include "core/delivery/UnfinishedActs.h"
#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/EventActions.h"
#include "core/timing/EventTypes.h"

namespace kestrin {

namespace {

bool Reminds(const AlertRequest& request) {
  return request.Role == AlertRole::Prewarning || request.Role == AlertRole::Nag;
}

/// Without the button that needs the event.
void WithoutFirstButton(AlertRequest& request, bool isFailure) {
  if (!Reminds(request) && !isFailure) return;
  request.Buttons = {request.Buttons.back()};
  request.HarmlessButton = request.DefaultButton = 0;
}

std::function<void(int)> DoneOf(Context& context, const AlertRequest& request, bool isFailure) {
  if (isFailure)
    return
        [&context, record = request.Record, set = request.Set, event = request.Event](int which) {
          if (which == 0) TryAgain(context, record, set, event);
          context.queue.Post(PROCESS_HOLD_DONE);
        };
  const AlertSubject subject{request.Set, request.Event, request.Occurrence};
  if (request.Event != 0 && Reminds(request)) {
    const bool isPrewarning = request.Role == AlertRole::Prewarning;
    return [&context, isPrewarning, subject](int which) {
      if (which == 0) StopReminding(context, subject, isPrewarning);
      context.queue.Post(AlertReply(isPrewarning ? PREWARN_ALERT_REPLY : NAG_ALERT_REPLY,
                                    subject.Set, subject.Event, subject.Occurrence, which));
    };
  }
  const bool asks = request.Role == AlertRole::Question;
  return [&context, asks, record = request.Record,
          plan = ActionPlan{true, request.Run, request.Open}](int which) {
    if (asks && which == 1) context.actions.CarryOut(context, record, plan);
    context.queue.Post(PROCESS_HOLD_DONE);
  };
}

}  // namespace

FoundEvent FindEvent(const Context& context, const std::string& path, const EventName& name) {
  const AutoLock open(context.openSets.Protect);
  for (const auto& set : context.openSets.Sets) {
    if (JournalPath(*set) != path) continue;
    for (const auto& event : set->Events())
      if (set->FileNames().Of(*set, *event) == name) return {set.get(), event.get()};
    return {set.get(), nullptr};
  }
  return {};
}

void ShowReturning(Context& context, const ReturningAlert& alert, const FoundEvent& found) {
  AlertRequest request = AlertOf(alert.Alert);
  const bool isFailure = IsFailureAlert(alert.Alert) && context.journal;
  request.Face.EventName = alert.EventName;
  request.KeptId = alert.KeptId;
  request.IsReturning = true;
  request.Record = alert.Record;
  request.Occurrence = alert.Occurrence;
  request.Run = alert.Run;
  request.Open = alert.Open;
  request.OccursAtTime = SecondsIntoDay(context.zone.AtMoment(alert.Occurrence)) != 0;
  if (request.Role == AlertRole::Prewarning) request.Begins = alert.Occurrence;
  if (const Event* const event = found.event) {
    request.Set = found.set->GetHandle();
    request.Event = event->GetHandle();
    request.OccursAtTime = event->GetApplyTime();
    const bool nags =
        event->GetStatus() == WaitingToNag && event->GetActualEventTime() == alert.Occurrence;
    if (request.Role == AlertRole::Nag && nags) request.ComesAgain = event->GetNextEventTime();
  } else {
    WithoutFirstButton(request, isFailure);
  }
  request.Done = DoneOf(context, request, isFailure);
  context.holds.ProcessHold();
  context.alerts.Show(std::move(request));
}

}  // namespace kestrin
