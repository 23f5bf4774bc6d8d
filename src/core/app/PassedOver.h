// What a start after a long time, or with a clock that was set ahead, passed over unshown.
#pragma once

#include <optional>
#include <string>

#include "core/events/Context.h"

namespace kestrin {

struct JournalRecord;

/// Main thread.
class PassedOver {
 public:
  explicit PassedOver(Context& context) : context_(context) {}

  /// The journal has been read.
  void Begin();
  /// PASSES_AT_REST: the first time tells, if over a day has gone by since somebody looked.
  void Rest();
  /// The process looks at the clock.
  void Seen();
  /// Whether the clock has been set back since somebody looked.
  bool HasGoneBack() const;

 private:
  std::string Line(const JournalRecord& record) const;
  void Tell();
  void Show(std::string text);

  Context& context_;
  std::optional<int64> lastSeen_;  ///< until it has been told
};

}  // namespace kestrin
