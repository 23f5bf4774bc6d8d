#include "handlers/HandlerActions.h"

#include <utility>

#include "core/delivery/EventDelivery.h"
#include "core/delivery/StopReminding.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageCodes.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/EventTiming.h"
#include "core/timing/EventTypes.h"
#include "handlers/ActOnFileDataHandler.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/DeliveryAlert.h"
#include "handlers/DeliveryWork.h"

namespace kestrin {

namespace {

constexpr char HandlerFailed[] = "its handler reported an error";

struct Reminder {
  ReminderKind kind;
  AlertRole role;
  MessageCode reply;
  const char* title;
  const char* stopButton;
};

constexpr Reminder Prewarning = {ReminderKind::Prewarning, AlertRole::Prewarning,
                                 PREWARN_ALERT_REPLY, "Kestrin prewarning", "No more prewarnings"};
constexpr Reminder Nagging = {ReminderKind::Nag, AlertRole::Nag, NAG_ALERT_REPLY, "Kestrin nag",
                              "No more nagging"};

int32 ComesAgain(const Event& event, int64 now) {
  const EventTimes next = NextNag(event.Record(), now, event.GetOwner()->GetContext().zone);
  return next.Status == WaitingToNag ? next.NextEventTime : 0;
}

void Remind(const Event& event, const Reminder& reminder, const std::string& userText) {
  Context& context = event.GetOwner()->GetContext();
  const int64 now = context.clock.Now();
  const DeliveredEvent delivered(event, event.GetNextEventTime() < now - 60);
  AlertRequest request =
      AlertAbout(delivered, reminder.role,
                 GetNagOrPrewarnMessage(reminder.kind, event.GetName(), event.GetActualEventTime(),
                                        HasTimeOfDay(event.Record()), userText, now, context.zone,
                                        context.settings.Time24Hour));
  request.Title = reminder.title;
  request.NamesTime = true;
  if (reminder.role == AlertRole::Nag)
    request.ComesAgain = ComesAgain(event, now);
  else
    request.Begins = event.GetActualEventTime();
  request.Buttons = {reminder.stopButton, "OK"};
  request.HarmlessButton = 1;
  request.DefaultButton = 1;
  request.Done = [delivered, &reminder](int which) {
    if (which == 0)
      StopReminding(*delivered.context, {delivered.Set, delivered.Event, delivered.Occurrence},
                    reminder.role == AlertRole::Prewarning);
    // The reply releases the hold.
    delivered.context->queue.Post(
        AlertReply(reminder.reply, delivered.Set, delivered.Event, delivered.Occurrence, which));
  };
  context.holds.ProcessHold();
  context.alerts.Show(std::move(request));
}

/// Until a person has read it, in whatever process: nothing else tells why this did not come.
void TellFailure(const DeliveredEvent& delivered, const std::string& handler) {
  Context& context = *delivered.context;
  if (context.journal && context.journal->Has(delivered.Record))
    context.journal->Stage(delivered.Record, ActStage::Failed, HandlerFailed);
  AlertRequest request =
      AlertAbout(delivered, AlertRole::Delivery,
                 "Kestrin: The handler \"" + handler + "\" failed to deal with the event \"" +
                     delivered.Face.EventName + "\".");
  request.Title = "Kestrin recoverable error";
  request.Kind = AlertKind::Warning;
  request.Buttons = {"Continue"};
  request.Done = [&context](int) { context.queue.Post(PROCESS_HOLD_DONE); };
  context.holds.ProcessHold();
  context.alerts.Show(std::move(request));
}

bool NeedsScreen(const EventAddOnData* data) {
  if (!data) return false;
  const auto* acts = dynamic_cast<const ActsWithoutScreen*>(data);
  try {
    return !acts || acts->NeedsScreen();
  } catch (...) {
    return true;
  }
}

}  // namespace

void HandlerActions::DeliverPrewarnMessage(Event& event) {
  Remind(event, Prewarning, event.Record().PrewarnMessage);
}

void HandlerActions::DeliverNagMessage(Event& event) {
  Remind(event, Nagging, event.Record().NagMessage);
}

void HandlerActions::DeliverEvent(Event& event, bool missed) {
  AssertNoSetLocked("HandlerActions::DeliverEvent");
  EventAddOnData* data = event.GetAddOnData();
  if (!data) return;
  // Copied before the handler acts, which may delete its event.
  const DeliveredEvent delivered(event, missed);
  const std::string handler = event.GetHandlerName();
  try {
    data->DealWithEvent(missed);
  } catch (...) {
    TellFailure(delivered, handler);
  }
}

/// What asks first is claimed when it is answered.
ActionPlan HandlerActions::PlanOf(const Event& event) const {
  ActionPlan plan;
  const EventAddOnData* const data = event.GetAddOnData();
  if (event.GetSelectedHandler() >= NumberOfBuiltInHandlers) {
    plan.OneSession = true;
  } else if (const auto* const command = dynamic_cast<const CommandDataHandler*>(data)) {
    plan.Run = command->GetCommand();
    plan.OneSession = !plan.Run.empty() && !command->NeedsScreen();
  } else if (const auto* const file = dynamic_cast<const ActOnFileDataHandler*>(data)) {
    plan.Open = file->GetFileName();
    plan.OneSession = !plan.Open.empty() && !file->NeedsScreen();
  }
  return plan;
}

void HandlerActions::CarryOut(Context& context, const std::string& record, const ActionPlan& plan) {
  WorkOfRecord(context, record, plan);
}

bool HandlerActions::CanDeliver(const Event& event) const {
  const Context& context = event.GetOwner()->GetContext();
  if (context.ui.HasScreen()) return true;
  switch (event.GetStatus()) {
    case WaitingToNag:
      return false;
    case WaitingForPrewarning:
      if (context.clock.Now() < event.GetActualEventTime()) return false;
      [[fallthrough]];
    case WaitingForEvent:
      return !NeedsScreen(event.GetAddOnData());
    default:
      return true;
  }
}

}  // namespace kestrin
