#include "core/app/AlertRecord.h"

#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"

namespace kestrin {

Message RecordAlert(const AlertRequest& request, OpenSets& sets) {
  Message record;
  record.Set("Title", request.Title);
  record.Set("Text", request.Text);
  for (size_t i = 0; i < request.Buttons.size(); ++i)
    record.Set("Button" + std::to_string(i), request.Buttons[i]);
  record.Set("Harmless", int32{request.HarmlessButton});
  record.Set("Default", int32{request.DefaultButton});
  record.Set("Warning", request.Kind == AlertKind::Warning);
  record.Set("Role", static_cast<int32>(request.Role));
  const AutoLock open(sets.Protect);
  const EventSet* const set = sets.FindHandle(request.Set);
  const Event* const event = set ? set->FindEvent(request.Event) : nullptr;
  if (event) {
    record.Set("EventSet", set->GetFileName());
    record.Set("Event", event->GetName());
    record.Set("Occurrence", request.Occurrence);
  }
  return record;
}

std::optional<AlertRequest> AlertOfRecord(const Message& record) {
  const auto text = record.Get<std::string>("Text");
  const auto role = record.Get<int32>("Role");
  if (!text || !role || *role < 0 || *role > static_cast<int32>(AlertRole::Question))
    return std::nullopt;
  AlertRequest request;
  request.Title = record.Get<std::string>("Title").value_or("");
  request.Text = *text;
  request.Buttons.clear();
  for (size_t i = 0; auto button = record.Get<std::string>("Button" + std::to_string(i)); ++i)
    request.Buttons.push_back(*button);
  if (request.Buttons.empty()) return std::nullopt;
  const auto inRange = [&](int32 which) {
    return which >= 0 && which < static_cast<int32>(request.Buttons.size()) ? which : 0;
  };
  request.HarmlessButton = inRange(record.Get<int32>("Harmless").value_or(0));
  request.DefaultButton = inRange(record.Get<int32>("Default").value_or(0));
  request.Kind =
      record.Get<bool>("Warning").value_or(false) ? AlertKind::Warning : AlertKind::Information;
  request.Role = static_cast<AlertRole>(*role);
  request.Occurrence = record.Get<int32>("Occurrence").value_or(0);
  return request;
}

Event* EventOfRecord(const Message& record, OpenSets& sets) {
  const auto path = record.Get<std::string>("EventSet");
  const auto name = record.Get<std::string>("Event");
  if (!path || !name) return nullptr;
  const AutoLock open(sets.Protect);
  const EventSet* const set = sets.FindFile(*path);
  if (!set) return nullptr;
  const bool anyOccurrence = record.Get<int32>("Role") == static_cast<int32>(AlertRole::Question);
  for (const auto& event : set->Events())
    if (event->GetName() == *name &&
        (anyOccurrence || event->GetActualEventTime() == record.Get<int32>("Occurrence")))
      return event.get();
  return nullptr;
}

}  // namespace kestrin
