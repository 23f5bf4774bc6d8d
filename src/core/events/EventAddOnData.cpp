#include "kestrin/EventAddOnData.h"

#include <utility>

#include "core/events/AddOnServices.h"
#include "core/events/Context.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/UserInterface.h"

namespace kestrin {

constinit std::atomic<Context*> AddOnServices = nullptr;

EventAddOnData::EventAddOnData(Event* attachedTo) : attachedTo_(attachedTo) {}

EventAddOnData::~EventAddOnData() { EventAddOnData::DestroyEditView(); }

void EventAddOnData::DestroyEditView() {
  QWidget* view = std::exchange(editView_, nullptr);
  Context* context = AddOnServices;
  if (view && context) context->ui.DestroyEditView(view);
}

void EventAddOnData::EAODReserved1() {}
void EventAddOnData::EAODReserved2() {}
void EventAddOnData::EAODReserved3() {}
void EventAddOnData::EAODReserved4() {}
void EventAddOnData::EAODReserved5() {}
void EventAddOnData::EAODReserved6() {}

void EventAddOnData::ProcessHold() {
  if (Context* context = AddOnServices) context->holds.ProcessHold();
}

void EventAddOnData::ProcessDone() {
  if (Context* context = AddOnServices) context->queue.Post(PROCESS_HOLD_DONE);
}

ActsWithoutScreen::~ActsWithoutScreen() = default;

}  // namespace kestrin
