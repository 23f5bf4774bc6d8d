// What outlives a forced end: copies of sets that have no file.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/FileDoor.h"
#include "support/Message.h"

namespace kestrin {

class EventSet;

/// Copies lie in "recovered" below the state folder.
class RecoveryFolder {
 public:
  RecoveryFolder(FileDoor& files, const std::string& stateFolder);

  /// Writes the set there: over the copy it was read from or has there, or under a new name.
  bool SaveCopy(EventSet& set);
  /// Removes the copy that SaveCopy made of the set, if it did: the set is in its file now.
  void Forget(const EventSet& set);
  /// Full paths, sorted.
  std::vector<std::string> Copies() const;

  /// Open alerts as earlier versions recorded them, in "open-alerts.json" beside it.
  std::vector<Message> OldAlerts() const;
  void RemoveOldAlerts();

 private:
  std::string NewName(const EventSet& set) const;

  FileDoor& files_;
  std::string copies_;
  std::string alerts_;
  std::map<uint64, std::string> made_;  ///< by the set's handle
};

}  // namespace kestrin
