#include "handlers/CommandDataHandler.h"

#include <memory>

#include "core/events/Event.h"
#include "handlers/DeliveryWork.h"

namespace kestrin {

void CommandDataHandler::SetCommand(const char* command) {
  content_.SetText(command);
  Changed();
}

bool CommandDataHandler::MustAsk() const {
  return GetVerify() || !IsTrusted(*GetAttachedTo()->GetOwner());
}

bool CommandDataHandler::NeedsScreen() const { return !content_.Text.Empty() && MustAsk(); }

void CommandDataHandler::DealWithEvent(bool missed) {
  if (content_.Text.Empty()) return;
  const Event& event = *GetAttachedTo();
  AskThenWork(DeliveredEvent(event, missed),
              {MessageAlertText(event, missed, {}), MustAsk(), GetCommand(), ""});
}

EventAddOnData* DefHandCommand_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  auto data = std::make_unique<CommandDataHandler>(event);
  *ok = !file || data->ReadData(*file);
  return data.release();
}

}  // namespace kestrin
