#include "handlers/DeliveryWork.h"

#include <memory>
#include <utility>

#include "core/events/EventSet.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageCodes.h"
#include "core/ports/Desktop.h"
#include "core/ports/Workers.h"

namespace kestrin {

namespace {

constexpr char NoThread[] = "no thread could be had for it";

/// Whether this session is the one that carries it out.
bool IsOurs(const DeliveredEvent& delivered) {
  Journal* const journal = delivered.context->journal;
  return !journal || delivered.Record.empty() || journal->ClaimAgain(delivered.Record);
}

/// The caller's hold passes to the work.
void StartWork(const DeliveredEvent& delivered, const std::shared_ptr<DeliveryWork>& work) {
  const bool started = delivered.context->workers.Start(work->ThreadName, [delivered, work] {
    if (work->Run(delivered.context->desktop))
      delivered.context->queue.Post(PROCESS_HOLD_DONE);
    else
      ShowDeliveryAlert(delivered, work->FailureText);
  });
  Journal* const journal = delivered.context->journal;
  if (journal && !delivered.Record.empty())
    journal->Stage(delivered.Record, started ? ActStage::Acted : ActStage::Failed,
                   started ? "" : NoThread);
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
    if (which == 1 && IsOurs(delivered)) {
      delivered.context->holds.ProcessHold();
      StartWork(delivered, shared);
    }
    delivered.context->queue.Post(HoldDone(delivered.Set));
  };
  delivered.context->alerts.Show(std::move(request));
}

void WorkOfRecord(Context& context, const std::string& record, const ActionPlan& plan) {
  const DeliveredEvent delivered(context, record);
  if (!IsOurs(delivered)) return;
  const auto known = context.journal ? context.journal->Find(record) : std::nullopt;
  const auto work = std::make_shared<DeliveryWork>();
  work->ThreadName = plan.Run.empty() ? "ActOnFile" : "ExecuteCommand";
  work->FailureText = "Kestrin event:  " + (known ? known->Event.Name : std::string());
  work->FailureText += plan.Run.empty()
                           ? "\n\nKestrin failed to open the file \"" + plan.Open + "\"."
                           : "\n\nKestrin attempted to execute a shell command: \"" + plan.Run +
                                 "\".  The command failed to execute.";
  work->Run = [plan](Desktop& desktop) {
    if (plan.Run.empty()) return plan.Open.empty() || desktop.Launch(plan.Open);
    desktop.RunCommand(plan.Run);
    return true;
  };
  context.holds.ProcessHold();
  StartWork(delivered, work);
}

bool IsDownloaded(const Event& event) {
  const EventSet& set = *event.GetOwner();
  return !set.IsUntitled() &&
         set.GetContext().files.GetAttribute(set.GetFileName(), "user.xdg.origin.url").has_value();
}

}  // namespace kestrin
