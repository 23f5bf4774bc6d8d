// The kernel tells what happens to files.
#pragma once

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QTimer>
#include <set>
#include <string>

#include "core/loop/MessageQueue.h"
#include "core/ports/FileWatcher.h"

namespace kestrin {

/// After the toolkit's application object. What another machine writes to a file on a network is
/// not noticed.
class SystemFileWatcher final : public FileWatcher {
 public:
  /// The queue outlives this.
  explicit SystemFileWatcher(MessageQueue& queue);
  void Watch(const std::set<std::string>& files) override;

 private:
  void Changed(const QString& file);

  MessageQueue& queue_;
  QFileSystemWatcher watcher_;
  QTimer quiet_;
};

}  // namespace kestrin
