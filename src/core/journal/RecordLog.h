// A file of records that several processes append to, and what it adds up to in memory.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/journal/DeferredLines.h"
#include "core/journal/RecordLine.h"
#include "support/FileDoor.h"

namespace kestrin {

/// docs/journal.md tells how processes meet in the file. Main thread, but for what says otherwise.
/// Whatever fails, the records are kept in memory and what could not be written is tried again with
/// the next line, and when a heap ends.
class RecordLog {
 public:
  /// `mark`: what tells this process's ids from all others. `report` gets a sentence for the
  /// person; once for each kind of failure until it is over.
  using Report = std::function<void(const std::string& words)>;
  RecordLog(FileDoor& files, std::string path, std::string mark, Report report);

  /// Where a record stands among the others: smaller was begun earlier.
  using Place = uint64;
  using Records = std::map<Place, RecordLine>;
  /// Told of every change of a record in memory. `earlier` is null for a new one, `now` for one
  /// that has ended. May be empty.
  std::function<void(Place place, const RecordLine* earlier, const RecordLine* now)> OnChange;

  /// Reads the whole file. What is damaged is set aside.
  void Read();
  /// Reads what others appended since.
  void CatchUp();

  std::string NewId();
  /// StatusOk when the line is in the file (not yet durable); at once in memory.
  status_t Append(const std::string& id, const RecordFields& fields);
  /// Ends the record.
  status_t End(const std::string& id);
  /// Begins a record of a heap: it may wait for the next line that is written, since nothing but a
  /// window follows it.
  void AppendInHeap(const std::string& id, const RecordFields& fields);
  /// Waits with its record, or is appended.
  void Continue(const std::string& id, const RecordFields& fields);
  /// Writes what waits.
  void EndHeap();
  /// Any thread. Seen in memory after the next CatchUp.
  void AppendFromThread(const std::string& id, const RecordFields& fields);

  const Records& All() const { return records_; }
  /// Smaller than that of any record that comes later.
  Place LastPlace() const { return nextPlace_ - 1; }
  /// Null when there is none. Valid until the next change.
  const RecordLine* Find(const std::string& id) const;

  /// The lock for claims and for replacing; may be null.
  std::unique_ptr<FileLock> Lock() const;

  /// Whether something was appended since Sync began last. Any thread, both.
  bool IsDirty() const { return dirty_; }
  /// Makes what was appended durable.
  status_t Sync();

  /// Forgets the record here without a line: the next compaction leaves it out of the file.
  void Drop(const std::string& id);
  /// Most of the file says nothing any more.
  bool WantsCompaction() const { return lines_ > 2 * records_.size() + SpareLines; }
  /// What replaces the file with a short one; to be run in any thread, this log alive.
  std::function<void()> Compaction();

 private:
  static constexpr size_t SpareLines = 500;
  static constexpr size_t BacklogLimit = size_t{1} << 20;

  bool Open(status_t& status);
  bool IsOurs();
  bool DeferLast(const std::string& id, const RecordFields& fields);
  status_t Write(const std::string& line, bool& isNext);
  status_t WriteDeferred();
  bool IsAllWritten() const { return deferred_.IsEmpty() && backlog_.empty(); }
  void Merge(RecordLine line);
  void ReadFrom(int64 position, bool wholeFile);
  void DropAllBut(const std::unordered_set<std::string>& ids);
  void SetAside(const std::string& bytes);
  void Replace(const std::string& text, int64 covered, const std::shared_ptr<OpenFile>& old);
  void Failed(status_t status);

  FileDoor& files_;
  std::string path_, mark_;
  Report report_;
  uint64 nextId_ = 1;
  Place nextPlace_ = 1;
  Records records_;
  std::unordered_map<std::string_view, Place> places_;  ///< by the ids that stand in the records
  size_t lines_ = 0;                                    ///< in the file, about
  bool reported_ = false;

  std::mutex guard_;  ///< of what follows, which the compaction replaces in a worker
  std::shared_ptr<OpenFile> file_;
  int64 position_ = 0;  ///< up to which the file has been read
  bool isCut_ = false;  ///< the file ends within a line
  bool folderIsNew_ = true;
  std::string backlog_;
  DeferredLines deferred_;
  std::atomic<bool> dirty_ = false;
};

}  // namespace kestrin
