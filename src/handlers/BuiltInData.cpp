#include "handlers/BuiltInData.h"

#include "core/events/EventSet.h"
#include "core/ports/UserInterface.h"

namespace kestrin {

QWidget* BuiltInData::CreateEditView(Rect frame) {
  return GetAttachedTo()->GetOwner()->GetContext().ui.CreateEditView(*this, frame);
}

void BuiltInData::Changed() {
  AutoLock lock(GetAttachedTo()->GetProtectionSemaphore());
  GetAttachedTo()->HandlerChanged();
}

}  // namespace kestrin
