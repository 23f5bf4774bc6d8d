#include "handlers/ActOnFileDataHandler.h"

#include "core/events/Event.h"
#include "handlers/DeliveryWork.h"

namespace kestrin {

void ActOnFileDataHandler::DealWithEvent(bool missed) {
  if (*GetFileName() == '\0') return;
  const Event& event = *GetAttachedTo();
  AskThenWork(DeliveredEvent(event, missed),
              {MessageAlertText(event, missed, {}), MustAsk(), "", GetFileName()});
}

EventAddOnData* DefHandActOnFile_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  return NewStartingData<ActOnFileDataHandler>(event, file, ok);
}

}  // namespace kestrin
