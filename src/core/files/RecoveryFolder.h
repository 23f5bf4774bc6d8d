// What outlives a forced end or a crash: copies of what was not saved.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/ports/Processes.h"
#include "support/FileDoor.h"
#include "support/Message.h"

namespace kestrin {

class EventSet;
class OpenSets;
class Workers;

/// Where the note of a copy stands: what it is a copy of, and which process works with it.
std::string RecoveryNote(const std::string& copy);

/// A copy that nobody works with.
struct RecoveredCopy {
  std::string Path;
  std::string File;   ///< of the set that it was made of; empty: that had none
  uint64 Digest = 0;  ///< of the bytes in that file when the edits began
};

/// Main thread. Copies lie in "recovered" below the state folder. A set has one copy. Beside each
/// stands its note (docs/recovery.md), which says what it is a copy of and which process works with
/// it.
class RecoveryFolder {
 public:
  /// All outlive this.
  RecoveryFolder(FileDoor& files, const Processes& processes, const std::string& stateFolder);
  ~RecoveryFolder();

  /// Writes the set's copy at once.
  bool SaveCopy(EventSet& set);
  /// Whether a person has changed the set since its last copy, or its saving.
  bool WantsCopy(const EventSet& set) const;
  /// Makes the bytes, and has a worker write them; not while one is at the set's earlier copy. What
  /// fails is told on standard error.
  void CopyInWorker(EventSet& set, Workers& workers);
  /// Removes the copy of the set, if it has one: the set was saved there or elsewhere, or was
  /// thrown away. A file into which it was saved stays, were it where its copy lay.
  void Forget(uint64 set, const std::string& savedAs);
  /// Forgets those of sets that have gone, or that hold nothing any more that a person has changed.
  void DropSettled(const OpenSets& sets);
  /// Waits, a second at most, for what workers are writing and removing.
  void Finish();

  /// The copies that no living process works with, by their names.
  std::vector<RecoveredCopy> Copies() const;
  /// The copy was read into the set, and is this process's from now on.
  void TakeOver(const RecoveredCopy& copy, const EventSet& set);
  /// The copy says nothing that its set's file does not say.
  bool IsInFile(const RecoveredCopy& copy) const;
  void Discard(const RecoveredCopy& copy);
  /// The set has saved itself over the bytes of that digest: copies of its unsaved edits stay good.
  void FollowSave(const EventSet& set, uint64 digestBefore) const;

  /// Open alerts as earlier versions recorded them, in "open-alerts.json" beside the folder.
  std::vector<Message> OldAlerts() const;
  void RemoveOldAlerts();

 private:
  struct Copy;
  std::string NewName(const EventSet& set) const;
  std::shared_ptr<Copy> CopyOf(EventSet& set);
  std::string NoteOf(const EventSet& set) const;
  bool IsOurs(const std::string& path) const;

  FileDoor& files_;
  const Processes& processes_;
  std::string copies_;
  std::string alerts_;
  std::map<uint64, std::shared_ptr<Copy>> made_;  ///< by the set's handle
  std::vector<std::weak_ptr<Copy>> leaving_;      ///< forgotten while a worker was at them
};

}  // namespace kestrin
