// What others write into the files of open sets: another session, a synchronised folder.
#pragma once

#include "core/events/Context.h"
#include "core/ports/FileWatcher.h"

namespace kestrin {

/// Main thread.
class OthersEdits {
 public:
  /// `watcher` may be null. Both outlive this.
  OthersEdits(Context& context, FileWatcher* watcher) : context_(context), watcher_(watcher) {}

  /// PASSES_AT_REST and FILES_CHANGED: looks for them in a worker. What somebody has written is
  /// read again in place, where nobody has unsaved changes.
  void Look();

 private:
  void Take();

  Context& context_;
  FileWatcher* watcher_;
  bool looks_ = false;
  bool again_ = false;  ///< something has changed meanwhile
};

}  // namespace kestrin
