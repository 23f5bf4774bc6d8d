// What outlives a forced end: copies of sets that have no file, and the alerts that stood open.
#pragma once

#include <string>
#include <vector>

#include "support/FileDoor.h"
#include "support/Message.h"

namespace kestrin {

class EventSet;

/// Copies lie in "recovered" below the state folder, alerts in "open-alerts.json" beside it.
class RecoveryFolder {
 public:
  RecoveryFolder(FileDoor& files, std::string stateFolder);

  /// Writes the set there: over the copy it was read from, or under a name of its own.
  bool SaveCopy(EventSet& set);
  /// Full paths, sorted.
  std::vector<std::string> Copies() const;

  /// Replaces the record; an empty one removes the file.
  bool RecordAlerts(const std::vector<Message>& alerts);
  std::vector<Message> RecordedAlerts() const;

 private:
  FileDoor& files_;
  std::string copies_;
  std::string alerts_;
};

}  // namespace kestrin
