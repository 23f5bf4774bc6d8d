// Lines of a heap of records that wait for the next one that is written; docs/journal.md.
#pragma once

#include <cstddef>
#include <string>

#include "core/journal/RecordLine.h"

namespace kestrin {

/// Knows no threads: whoever has it guards it.
class DeferredLines {
 public:
  /// Whether the next record of a heap may wait: the first may not, nor the one after each one,
  /// two, four, ... that did. When one of them ends the process, half of those before it are in the
  /// file, and soon it is the first itself.
  bool NextMayWait();
  /// What comes then is another heap.
  void EndHeap() { most_ = waiting_ = 0; }

  void Begin(const std::string& id);
  /// Whether it is the one that was begun last, and waits still.
  bool IsLast(const std::string& id) const { return last_.Id == id; }
  /// To the one that was begun last.
  void Add(const RecordFields& fields) { last_.Fields.Merge(fields); }

  bool IsEmpty() const { return lines_.empty() && last_.Id.empty(); }
  bool AreMany() const { return lines_.size() > Limit; }
  /// A line for each record, in their order. None waits any more.
  std::string Take();

 private:
  static constexpr size_t Limit = size_t{1} << 16;  // bytes

  std::string lines_;
  RecordLine last_;  ///< behind them; without an id there is none
  size_t most_ = 0, waiting_ = 0;
};

}  // namespace kestrin
