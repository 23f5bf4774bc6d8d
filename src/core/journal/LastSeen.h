// When a process of this person last looked at the clock.
#pragma once

#include <optional>
#include <string>

#include "core/journal/RecordLog.h"

namespace kestrin {

/// A record of the journal that is about no set. Main thread.
class LastSeen {
 public:
  explicit LastSeen(RecordLog& log) : log_(log) {}
  /// Nothing before the first time. Seconds since 1970.
  std::optional<int64> Time() const;
  /// Not more than once a minute is written.
  void Set(int64 now);

 private:
  const RecordLine* Find() const;

  RecordLog& log_;
};

}  // namespace kestrin
