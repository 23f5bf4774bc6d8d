// Files that others may write, as a port.
#pragma once

#include <set>
#include <string>

namespace kestrin {

/// Main thread.
class FileWatcher {
 public:
  virtual ~FileWatcher() = default;
  /// These and no others from now on. FILES_CHANGED is posted soon after one of them may have been
  /// written or replaced, by whom ever. One that cannot be watched is left out until it is asked
  /// for again. Only what was not watched before is looked at.
  virtual void Watch(const std::set<std::string>& files) = 0;
};

}  // namespace kestrin
