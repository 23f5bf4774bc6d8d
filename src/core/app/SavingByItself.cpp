#include "core/app/SavingByItself.h"

#include <cstdio>

#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/Notices.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

std::vector<uint64> SavingByItself::SaveDeliveredSets() {
  std::vector<uint64> saved;
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets)
    if (set->OnlyDeliveriesChanged() && !set->IsUntitled() && SaveItself(*set))
      saved.push_back(set->GetHandle());
  return saved;
}

void SavingByItself::SaveModifiedSets() {
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  recovery_.DropSettled(context_.openSets);
  for (const auto& set : context_.openSets.Sets) {
    const bool titled = !set->IsUntitled();
    if (!set->HasBeenModified() || (titled && SaveItself(*set))) {
      recovery_.Forget(set->GetHandle(), set->GetFileName());
      continue;
    }
    // What only deliveries have changed is in the journal; in the sample nobody has written a word.
    if (set->OnlyDeliveriesChanged()) continue;
    if (recovery_.SaveCopy(*set)) continue;
    std::fprintf(stderr, "kestrin: %s was not copied: %s\n", set->GetFileName().c_str(),
                 set->WhyNotSaved().c_str());
    if (!titled) ReportUnsaved(*set);
  }
}

bool SavingByItself::SaveItself(EventSet& set) {
  const uint64 before = set.File().Digest();
  if (!set.SaveData(EventSet::SavedBy::Itself)) {
    ReportUnsaved(set);
    return false;
  }
  reported_.erase(set.GetHandle());
  recovery_.FollowSave(set, before);
  return true;
}

/// Once: the quit that follows when the alert is closed goes on.
void SavingByItself::ReportUnsaved(const EventSet& set) {
  if (!reported_.insert(set.GetHandle()).second) return;
  std::fprintf(stderr, "kestrin: %s was not saved: %s\n", set.GetFileName().c_str(),
               set.WhyNotSaved().c_str());
  context_.notices.ReportCompoundError("Kestrin was unable to save the event set ",
                                       set.GetFileName(), "." + Because(set.WhyNotSaved()));
}

/// What somebody has locked may be half changed: it is left out.
void SavingByItself::SaveRecoveryCopies() {
  if (!context_.openSets.Protect.TryLock()) return;
  for (const auto& set : context_.openSets.Sets) {
    if (!set->TryLock()) continue;
    if (set->HasBeenModified() && !set->OnlyDeliveriesChanged()) recovery_.SaveCopy(*set);
    set->Unlock();
  }
  context_.openSets.Protect.Unlock();
}

}  // namespace kestrin
