#include "core/app/UnsavedEdits.h"

#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/MessageCodes.h"
#include "core/ports/Timers.h"

namespace kestrin {

void UnsavedEdits::Look() {
  const AutoLock open(context_.openSets.Protect);
  recovery_.DropSettled(context_.openSets);
  if (waiting_ || !context_.timers) return;
  for (const auto& set : context_.openSets.Sets) waiting_ |= recovery_.WantsCopy(*set);
  if (waiting_) context_.timers->PostAfter(CopyAfter, Message(COPY_EDITS));
}

/// A copy that could not be begun, because the earlier one is still being written, is wanted again
/// when Look looks next.
void UnsavedEdits::Copy() {
  waiting_ = false;
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets)
    if (recovery_.WantsCopy(*set)) recovery_.CopyInWorker(*set, context_.workers);
}

}  // namespace kestrin
