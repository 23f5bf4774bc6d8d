#include "handlers/ActOnFileDataHandler.h"

#include <memory>

#include "core/events/Event.h"
#include "handlers/DeliveryWork.h"

namespace kestrin {

void ActOnFileDataHandler::SetFileName(const char* path) {
  content_.SetText(path);
  Changed();
}

bool ActOnFileDataHandler::MustAsk() const {
  return GetVerify() || !IsTrusted(*GetAttachedTo()->GetOwner());
}

/// Whether the file is there is found out by a worker: what it has to say then waits for a screen.
bool ActOnFileDataHandler::NeedsScreen() const { return !content_.Text.Empty() && MustAsk(); }

void ActOnFileDataHandler::DealWithEvent(bool missed) {
  if (content_.Text.Empty()) return;
  const Event& event = *GetAttachedTo();
  AskThenWork(DeliveredEvent(event, missed),
              {MessageAlertText(event, missed, {}), MustAsk(), "", GetFileName()});
}

EventAddOnData* DefHandActOnFile_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  auto data = std::make_unique<ActOnFileDataHandler>(event);
  *ok = !file || data->ReadData(*file);
  return data.release();
}

}  // namespace kestrin
