// What follows when the passes rest: the journal is made durable, then the sets that deliveries
// have changed are saved, then the journal gives what is settled to the history. What was put off
// is made durable with the journal, and its file kept short as well.
#pragma once

#include <functional>

#include "core/app/SavingByItself.h"
#include "core/events/Context.h"
#include "core/journal/Later.h"

namespace kestrin {

/// Main thread. All outlive this.
class Settling {
 public:
  Settling(Context& context, SavingByItself& saving, Later& later)
      : context_(context), saving_(saving), later_(later) {}

  /// PASSES_AT_REST.
  void Rest();
  /// JOURNAL_SYNCED: the worker is done.
  void Synced();
  /// At once, every modified set: the process may end any moment.
  void SaveEverything();
  /// What workers write of unsaved edits is on disk, or given up.
  void Finish() { saving_.Finish(); }

 private:
  void Save();
  void Settle(EventSet& set);
  void KeepShort();
  void Start(const char* name, std::function<void()> work);

  Context& context_;
  SavingByItself& saving_;
  Later& later_;
  bool syncing_ = false;
  bool again_ = false;
  bool pruned_ = false;  ///< the history, in this process
};

}  // namespace kestrin
