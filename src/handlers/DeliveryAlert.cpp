#include "handlers/DeliveryAlert.h"

#include <utility>

#include "core/events/EventSet.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageCodes.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"

namespace kestrin {

namespace {

std::string MissedLine(int32 when, const Context& context) {
  return "\nThe event was missed.  It occurred " +
         GetDateTimeString(when, true, context.zone, context.settings.Time24Hour);
}

}  // namespace

DeliveredEvent::DeliveredEvent(const class Event& event, bool missed)
    : context(&event.GetOwner()->GetContext()),
      Set(event.GetOwner()->GetHandle()),
      Event(event.GetHandle()),
      Occurrence(event.GetActualEventTime()),
      AtTime(event.GetApplyTime()),
      Missed(missed),
      Face{event.GetName(), event.Record().IconNumber, {}},
      Record(event.GetDelivery()) {
  if (const IconPair* own = event.GetOwnIcon()) Face.OwnIcon = *own;
}

std::string MessageAlertText(const Event& event, bool missed,
                             std::initializer_list<const char*> parts) {
  std::string text = "Kestrin event:  " + event.GetName();
  if (missed) text += MissedLine(event.GetActualEventTime(), event.GetOwner()->GetContext());
  for (const char* part : parts)
    if (part) text += part;
  return text;
}

AlertRequest AlertAbout(const DeliveredEvent& delivered, AlertRole role, std::string text) {
  AlertRequest request;
  request.Text = std::move(text);
  request.Role = role;
  request.Set = delivered.Set;
  request.Event = delivered.Event;
  request.Occurrence = delivered.Occurrence;
  request.Face = delivered.Face;
  request.Record = delivered.Record;
  request.OccursAtTime = delivered.AtTime;
  request.NamesTime = delivered.Missed;
  request.Away = delivered.Missed;
  return request;
}

void ShowDeliveryAlert(const DeliveredEvent& delivered, std::string text,
                       std::optional<NotificationUrgency> notify) {
  AlertRequest request = AlertAbout(delivered, AlertRole::Delivery, std::move(text));
  request.Buttons = {"Ok"};
  request.Notify = notify;
  request.Done = [context = delivered.context](int) { context->queue.Post(PROCESS_HOLD_DONE); };
  delivered.context->alerts.Show(std::move(request));
}

void TellOfDelivery(const Event& event, bool missed, std::initializer_list<const char*> parts) {
  const DeliveredEvent delivered(event, missed);
  delivered.context->holds.ProcessHold();
  ShowDeliveryAlert(delivered, MessageAlertText(event, missed, parts));
}

}  // namespace kestrin
