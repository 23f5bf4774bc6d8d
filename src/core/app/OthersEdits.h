// What others write into the files of open sets: another session, a synchronised folder.
#pragma once

#include "core/events/Context.h"

namespace kestrin {

/// Main thread.
class OthersEdits {
 public:
  explicit OthersEdits(Context& context) : context_(context) {}

  /// PASSES_AT_REST: looks for them in a worker. What somebody has written is read again in place,
  /// where nobody has unsaved changes.
  void Look();

 private:
  void Take();

  Context& context_;
  bool looks_ = false;
};

}  // namespace kestrin
