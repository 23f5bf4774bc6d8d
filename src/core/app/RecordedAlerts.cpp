#include "core/app/RecordedAlerts.h"

#include <utility>

#include "core/app/AlertRecord.h"
#include "core/events/EventSet.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/EventActions.h"
#include "core/ports/UserInterface.h"

namespace kestrin {

void RecordedAlerts::ShowAgain() {
  if (!context_.ui.HasScreen()) return;
  shown_ = true;
  for (Message& record : recovery_.RecordedAlerts()) records_.emplace_back(std::move(record));
  for (size_t place = 0; place < records_.size(); ++place) Show(place);
}

void RecordedAlerts::Show(size_t place) {
  const Message record = *records_[place];
  std::optional<AlertRequest> request = AlertOfRecord(record);
  Event* const event = EventOfRecord(record, context_.openSets);
  if (request && (request->Role != AlertRole::Question || !event)) {
    ShowWithReply(std::move(*request), event, place);
    return;
  }
  // A question asks again; when it occurred is only known while it stands at that occurrence.
  if (request)
    context_.actions.DeliverEvent(*event, event->GetActualEventTime() == request->Occurrence);
  Done(place);
}

void RecordedAlerts::ShowWithReply(AlertRequest request, const Event* event, size_t place) {
  std::optional<MessageCode> reply;
  if (event && request.Role == AlertRole::Prewarning) reply = PREWARN_ALERT_REPLY;
  if (event && request.Role == AlertRole::Nag) reply = NAG_ALERT_REPLY;
  if (reply) {
    request.Set = event->GetOwner()->GetHandle();
    request.Event = event->GetHandle();
  }
  context_.holds.ProcessHold(request.Set);
  request.Done = [this, place, reply, set = request.Set, handle = request.Event,
                  occurrence = request.Occurrence](int which) {
    context_.queue.Post(reply ? AlertReply(*reply, set, handle, occurrence, which) : HoldDone(0));
    Done(place);
  };
  context_.alerts.Show(std::move(request));
}

/// An alert that was shown again and is answered needs no record any more.
void RecordedAlerts::Done(size_t place) {
  if (ended_) return;
  records_[place].reset();
  std::vector<Message> left;
  for (const std::optional<Message>& record : records_)
    if (record) left.push_back(*record);
  recovery_.RecordAlerts(left);
}

void RecordedAlerts::EndByForce() {
  ended_ = true;
  std::vector<Message> records;
  if (!shown_) records = recovery_.RecordedAlerts();
  for (const AlertRequest& request : context_.alerts.EndByForce())
    if (request.Role != AlertRole::Prompt && request.KeptId.empty())
      records.push_back(RecordAlert(request, context_.openSets));
  recovery_.RecordAlerts(records);
}

}  // namespace kestrin
