// What is settled, for people to look back at: appended, never read at a start.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/journal/JournalRecord.h"
#include "support/FileDoor.h"

namespace kestrin {

/// Main thread, but for Prune. Keeps 90 days or 5 MB.
class History {
 public:
  static constexpr int64 KeptDays = 90;
  static constexpr int64 KeptBytes = 5'000'000;

  History(FileDoor& files, const std::string& stateFolder);

  /// StatusOk, or why the records stay where they are.
  status_t Append(const std::vector<JournalRecord>& records);

  /// Everything, oldest first, each record once. `status`: StatusOk, also when there is no history
  /// yet; -EBADMSG when lines were damaged, which are left out; else why it cannot be read. Up to
  /// 5 MB are read: not at a start.
  std::vector<JournalRecord> Read(status_t& status) const;

  /// Whether its older part is to go. Reads its first line at most.
  bool WantsPruning(int64 now) const;
  /// In a worker: leaves out what is too old. What is appended meanwhile is kept.
  void Prune(int64 now) const;

  const std::string& Path() const { return path_; }

 private:
  FileDoor& files_;
  std::string path_;
};

}  // namespace kestrin
