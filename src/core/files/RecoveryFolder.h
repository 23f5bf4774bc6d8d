// What outlives a forced end: copies of sets that have no file.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/FileDoor.h"
#include "support/Message.h"

namespace kestrin {

class EventSet;

/// Beside a copy of a set that has a file: which file, and which bytes it held then.
std::string RecoveryNote(const std::string& copy);

/// Copies lie in "recovered" below the state folder.
class RecoveryFolder {
 public:
  RecoveryFolder(FileDoor& files, const std::string& stateFolder);

  /// Of which file a copy is, and the digest of its bytes then.
  struct Origin {
    std::string File;
    uint64 Digest = 0;
  };

  /// Writes the set there: over the copy it was read from or that there is of its file, or under a
  /// new name.
  bool SaveCopy(EventSet& set);
  /// Removes the copy that SaveCopy made of the set, if it did: the set is in its file now.
  void Forget(const EventSet& set);
  /// Full paths, sorted.
  std::vector<std::string> Copies() const;
  /// Nothing for a copy of a set that had no file.
  std::optional<Origin> OriginOf(const std::string& copy) const;
  /// The set has saved itself over the bytes of that digest: copies of its unsaved edits stay good.
  void FollowSave(const EventSet& set, uint64 digestBefore) const;

  /// Open alerts as earlier versions recorded them, in "open-alerts.json" beside it.
  std::vector<Message> OldAlerts() const;
  void RemoveOldAlerts();

 private:
  std::string NewName(const EventSet& set) const;
  std::string CopyOf(const std::string& file) const;
  bool Note(const std::string& copy, const EventSet& set) const;

  FileDoor& files_;
  std::string copies_;
  std::string alerts_;
  std::map<uint64, std::string> made_;  ///< by the set's handle
};

}  // namespace kestrin
