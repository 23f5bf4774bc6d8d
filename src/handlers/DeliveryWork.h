// Slow work on behalf of an event, in a thread of its own, after a question if there is one.
#pragma once

#include <functional>
#include <string>

#include "core/ports/EventActions.h"
#include "handlers/DeliveryAlert.h"

namespace kestrin {

struct DeliveryWork {
  const char* ThreadName = "";
  std::string Question;       ///< empty: nobody is asked
  std::string Command, File;  ///< what it carries out: the one or the other
  std::string FailureText;    ///< told when no thread can be had, or Run fails
  /// In the worker thread; works on copies, for the event may be gone. False tells the failure.
  std::function<bool(Desktop&)> Run;
};

/// Returns at once; holds the application until the work is done and everything told. The answer
/// "Cancel", which any end of the question but "Ok" counts as, drops the work.
void AskThenWork(const DeliveredEvent& delivered, DeliveryWork work);

/// What a record of the journal has left to do; the event may be gone. Nothing happens when another
/// session does it.
void WorkOfRecord(Context& context, const std::string& record, const ActionPlan& plan);

/// Whether the event's set came from elsewhere and has not been saved by the user since: then
/// nothing is started for it unasked.
bool IsDownloaded(const Event& event);

}  // namespace kestrin
