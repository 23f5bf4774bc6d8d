#include "handlers/StartingData.h"

#include "core/events/Event.h"
#include "handlers/DeliveryWork.h"

namespace kestrin {

bool StartingData::MustAsk() const {
  return GetVerify() || !IsTrusted(*GetAttachedTo()->GetOwner());
}

void StartingData::SetText(const char* text) {
  content_.SetText(text);
  Changed();
}

}  // namespace kestrin
