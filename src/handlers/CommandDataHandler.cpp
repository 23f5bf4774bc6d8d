#include "handlers/CommandDataHandler.h"

#include "core/events/Event.h"
#include "handlers/DeliveryWork.h"

namespace kestrin {

void CommandDataHandler::DealWithEvent(bool missed) {
  if (*GetCommand() == '\0') return;
  const Event& event = *GetAttachedTo();
  AskThenWork(DeliveredEvent(event, missed),
              {MessageAlertText(event, missed, {}), MustAsk(), GetCommand(), ""});
}

EventAddOnData* DefHandCommand_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  return NewStartingData<CommandDataHandler>(event, file, ok);
}

}  // namespace kestrin
