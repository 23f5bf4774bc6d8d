#include "kestrin/EventServices.h"

#include <algorithm>
#include <string>

#include "core/events/AddOnServices.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/loop/Notices.h"
#include "core/settings/KestrinSettings.h"
#include "core/settings/SettingsStore.h"
#include "handlers/DeliveryAlert.h"

namespace kestrin {

const char* GetEventName(const Event* event) { return event->GetName().c_str(); }
const char* GetEventComment(const Event* event) { return event->GetComment().c_str(); }
int32 GetActualEventTime(const Event* event) { return event->GetActualEventTime(); }
int32 GetNextEventTime(const Event* event) { return event->GetNextEventTime(); }
bool GetEventApplyTime(const Event* event) { return event->GetApplyTime(); }

const char* GetEventSetFileName(const Event* event) {
  return event->GetOwner()->GetFileName().c_str();
}

void LockEvent(Event* event) { event->GetProtectionSemaphore().Lock(); }
void UnlockEvent(Event* event) { event->GetProtectionSemaphore().Unlock(); }

/// What an action changes in its own data is saved without a question.
void SetEventModified(Event* event) {
  if (!event->IsActing()) {
    event->HandlerChanged();
    return;
  }
  const EventSet::DeliveryChange byAction(*event->GetOwner());
  event->HandlerChanged();
}

char* GenerateMessageAlertText(Event* event, bool missed, const char* s1, const char* s2,
                               const char* s3, const char* s4, const char* s5) {
  const std::string text = MessageAlertText(*event, missed, {s1, s2, s3, s4, s5});
  char* copy = new char[text.size() + 1];
  std::copy_n(text.c_str(), text.size() + 1, copy);
  return copy;
}

void DeliverEventMessage(Event* event, bool missed, const char* s1, const char* s2, const char* s3,
                         const char* s4, const char* s5) {
  ShowDeliveryAlert(DeliveredEvent(*event, missed),
                    MessageAlertText(*event, missed, {s1, s2, s3, s4, s5}));
}

void DeliverEventNotification(Event* event, bool missed, uint32 urgency, const char* s1,
                              const char* s2, const char* s3, const char* s4, const char* s5) {
  ShowDeliveryAlert(DeliveredEvent(*event, missed),
                    MessageAlertText(*event, missed, {s1, s2, s3, s4, s5}),
                    static_cast<NotificationUrgency>(std::min<uint32>(urgency, UrgencyCritical)));
}

status_t ReadAddOnSetting(const char* name, const void*& data, int32& size, uint32& type) {
  const Context* const context = AddOnServices;
  if (!context) return StatusError;
  const AutoLock lock(context->settings.Protect);
  const SettingsStore* const store = context->handlers.AddOnSettings;
  const auto value = store ? store->Get(name) : std::nullopt;
  if (!value) return StatusError;
  data = value->bytes.data();
  size = static_cast<int32>(value->bytes.size());
  type = value->type;
  return StatusOk;
}

status_t WriteAddOnSetting(const char* name, const void* data, uint32 size, uint32 type) {
  const Context* const context = AddOnServices;
  if (!context) return StatusError;
  const AutoLock lock(context->settings.Protect);
  SettingsStore* const store = context->handlers.AddOnSettings;
  if (!store) return StatusError;
  const status_t status = store->Set(name, {static_cast<const char*>(data), size}, type);
  if (status == StatusOk) context->settings.Changed();
  return status;
}

void ReportError(const char* text) {
  if (const Context* const context = AddOnServices) context->notices.ReportError(text ? text : "");
}

}  // namespace kestrin
