#include "core/app/Settling.h"

#include <utility>
#include <vector>

#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/journal/Journal.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/Clock.h"
#include "core/ports/Workers.h"

namespace kestrin {

namespace {

/// What came due is on the screen by then: writing to a disk delays its painting.
constexpr int32 MillisecondsUntilPainted = 250;

}  // namespace

void Settling::Rest() {
  Journal* const journal = context_.journal;
  if (syncing_) {
    again_ = true;
    return;
  }
  if (!journal || (!journal->IsDirty() && !later_.IsDirty())) return Save();
  context_.holds.ProcessHold();
  const auto sync = [journal, &later = later_, &queue = context_.queue] {
    if (journal->IsDirty()) journal->Sync();  // one that fails is kept in memory, and was reported
    if (later.IsDirty()) later.Sync();
    queue.Post(JOURNAL_SYNCED);
  };
  syncing_ = context_.workers.StartLater("Journal", MillisecondsUntilPainted, sync);
  if (syncing_) return;
  Save();
  context_.holds.ProcessDone();
}

void Settling::Synced() {
  syncing_ = false;
  if (std::exchange(again_, false))
    Rest();
  else
    Save();
  context_.holds.ProcessDone();
}

void Settling::Save() {
  const std::vector<uint64> handles = saving_.SaveDeliveredSets();
  const AutoLock open(context_.openSets.Protect);
  for (const uint64 saved : handles)
    if (EventSet* const set = context_.openSets.FindHandle(saved)) Settle(*set);
  KeepShort();
}

void Settling::SaveEverything() {
  if (context_.journal) context_.journal->Sync();
  if (later_.IsDirty()) later_.Sync();
  saving_.SaveModifiedSets();
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets) Settle(*set);
}

void Settling::Settle(EventSet& set) {
  Journal* const journal = context_.journal;
  if (!journal || set.HasBeenModified() || set.IsUntitled()) return;
  const std::string path = JournalPath(set);
  if (!journal->Knows(path)) return;
  std::vector<EventName> names;
  names.reserve(set.Events().size());
  for (const auto& event : set.Events()) names.push_back(set.FileNames().Of(set, *event));
  journal->Settle(path, names);
}

void Settling::KeepShort() {
  Journal* const journal = context_.journal;
  if (!journal) return;
  if (journal->WantsCompaction()) Start("Compaction", journal->Compaction());
  if (later_.WantsCompaction()) Start("Compaction", later_.Compaction());
  const int64 now = context_.clock.Now();
  if (std::exchange(pruned_, true) || !journal->Past().WantsPruning(now)) return;
  Start("History", [journal, now] { journal->Past().Prune(now); });
}

/// The journal stays until the work is done.
void Settling::Start(const char* name, std::function<void()> work) {
  context_.holds.ProcessHold();
  const bool started =
      context_.workers.Start(name, [work = std::move(work), &queue = context_.queue] {
        work();
        queue.Post(PROCESS_HOLD_DONE);
      });
  if (!started) context_.holds.ProcessDone();
}

}  // namespace kestrin
