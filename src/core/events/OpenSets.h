// Every event set of the process.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/Locker.h"

namespace kestrin {

class EventSet;

/// Goes before the context that its sets work with.
class OpenSets {
 public:
  OpenSets();
  ~OpenSets();
  OpenSets(const OpenSets&) = delete;
  OpenSets& operator=(const OpenSets&) = delete;

  /// Owned; in the order of opening. Guarded by Protect.
  std::vector<std::unique_ptr<EventSet>> Sets;
  Locker Protect{"Open sets", LockRank::OpenSets};

  /// Callers hold Protect. Null when there is none.
  EventSet* FindFile(const std::string& path) const;
  EventSet* FindHandle(uint64 handle) const;
  /// Takes the set out of the list and destroys it. While an action of it runs, that is left
  /// to DestroyDeparted.
  void Destroy(EventSet* set);
  /// What was delivered is in their files before they go.
  void DestroyDeparted();

 private:
  std::vector<std::unique_ptr<EventSet>> departed_;
};

}  // namespace kestrin
