// What a person has changed and not saved survives the end of the process.
#pragma once

#include "core/events/Context.h"
#include "core/files/RecoveryFolder.h"

namespace kestrin {

/// Main thread. Copies lag at most CopyAfter behind the edits, one set's copies follow one another.
class UnsavedEdits {
 public:
  /// Both outlive this.
  UnsavedEdits(Context& context, RecoveryFolder& recovery)
      : context_(context), recovery_(recovery) {}

  /// After each message: drops the copies of what was saved or has closed, and has COPY_EDITS
  /// posted if there is anything new to copy.
  void Look();
  /// COPY_EDITS.
  void Copy();

  static constexpr int32 CopyAfter = 2000;  ///< ms

 private:
  Context& context_;
  RecoveryFolder& recovery_;
  bool waiting_ = false;  ///< for COPY_EDITS
};

}  // namespace kestrin
