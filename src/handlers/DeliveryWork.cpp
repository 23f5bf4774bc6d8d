#include "handlers/DeliveryWork.h"

#include <memory>
#include <utility>

#include "core/events/EventSet.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageCodes.h"
#include "core/ports/Desktop.h"
#include "core/ports/Workers.h"

namespace kestrin {

namespace {

/// The caller's hold passes to the work.
void StartWork(const DeliveredEvent& delivered, const std::shared_ptr<DeliveryWork>& work) {
  const bool started = delivered.context->workers.Start(work->ThreadName, [delivered, work] {
    if (work->Run(delivered.context->desktop))
      delivered.context->queue.Post(PROCESS_HOLD_DONE);
    else
      ShowDeliveryAlert(delivered, work->FailureText);
  });
  if (!started) ShowDeliveryAlert(delivered, work->FailureText);
}

}  // namespace

void AskThenWork(const DeliveredEvent& delivered, DeliveryWork work) {
  const auto shared = std::make_shared<DeliveryWork>(std::move(work));
  Holds& holds = delivered.context->holds;
  if (shared->Question.empty()) {
    holds.ProcessHold();
    StartWork(delivered, shared);
    return;
  }
  AlertRequest request = AlertAbout(delivered, AlertRole::Question, shared->Question);
  request.Buttons = {"Cancel", "Ok"};
  request.Run = shared->Command;
  request.Open = shared->File;
  request.HarmlessButton = 0;
  request.DefaultButton = 0;
  // While the question is open the hold belongs to the set; what runs after it belongs to nobody.
  holds.ProcessHold(delivered.Set);
  request.Done = [delivered, shared](int which) {
    if (which == 1) {
      delivered.context->holds.ProcessHold();
      StartWork(delivered, shared);
    }
    delivered.context->queue.Post(HoldDone(delivered.Set));
  };
  delivered.context->alerts.Show(std::move(request));
}

bool IsDownloaded(const Event& event) {
  const EventSet& set = *event.GetOwner();
  return !set.IsUntitled() &&
         set.GetContext().files.GetAttribute(set.GetFileName(), "user.xdg.origin.url").has_value();
}

}  // namespace kestrin
