// The table of `kestrinctl next`.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/events/Context.h"
#include "core/timing/EventRecord.h"

namespace kestrin {

/// Takes from each event what its row says while the file is read: no event need be kept, and
/// nothing is printed before all of the file could be read.
class NextTable {
 public:
  explicit NextTable(const Context& context) : context_(context) {}
  void Add(const EventRecord& record);
  /// To standard output. Whether everything could be written.
  bool Print() const;

 private:
  /// Followed by the name's bytes.
  struct Row {
    int32 actual, next, status;
    bool active, actualHasTime, nextHasTime;
    std::uint16_t nameBytes, nameColumns;
  };
  template <typename Visitor>
  void ForEach(Visitor visit) const;

  const Context& context_;
  std::vector<std::string> blocks_;  ///< of rows, as large as allocators like them
};

}  // namespace kestrin
