// What the application saves without being asked, and without asking.
#pragma once

#include <set>
#include <vector>

#include "core/events/Context.h"
#include "core/files/RecoveryFolder.h"

namespace kestrin {

class EventSet;

/// Main thread.
class SavingByItself {
 public:
  SavingByItself(Context& context, RecoveryFolder& recovery)
      : context_(context), recovery_(recovery) {}

  /// The sets in which only deliveries have changed anything. Their handles.
  std::vector<uint64> SaveDeliveredSets();
  /// At the end: every modified set, as a recovery copy where its file cannot take it.
  void SaveModifiedSets();
  /// What workers write of it is on disk, or given up.
  void Finish() { recovery_.Finish(); }
  /// Any thread, before an overrun stops the program: a copy of what a person has changed.
  void SaveRecoveryCopies();

 private:
  bool SaveItself(EventSet& set);
  void ReportUnsaved(const EventSet& set);

  Context& context_;
  RecoveryFolder& recovery_;
  std::set<uint64> reported_;  ///< handles of the sets whose saving has failed
};

}  // namespace kestrin
