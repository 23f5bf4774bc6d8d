// Every event set of the process.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/Locker.h"

namespace kestrin {

class EventSet;

class OpenSets {
 public:
  /// Owned; in the order of opening. Guarded by Protect.
  static std::vector<std::unique_ptr<EventSet>> Sets;
  static Locker Protect;

  /// Callers hold Protect. Null when there is none.
  static EventSet* FindFile(const std::string& path);
  static EventSet* FindHandle(uint64 handle);
  /// Takes the set out of the list and destroys it. While an action of it runs, that is left
  /// to DestroyDeparted.
  static void Destroy(EventSet* set);
  /// What was delivered is in their files before they go.
  static void DestroyDeparted();

 private:
  static std::vector<std::unique_ptr<EventSet>> departed_;
};

}  // namespace kestrin
