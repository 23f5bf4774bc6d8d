// Where a set is stored, as the set knows it.
#pragma once

#include <optional>
#include <string>

#include "kestrin/Types.h"
#include "support/FileDoor.h"

namespace kestrin {

/// Each set has one. Main thread.
class SetFile {
 public:
  virtual ~SetFile() = default;

  enum class SavedBy { User, Itself };
  /// Writes the file as a whole. On success nothing is modified any more. If the file holds other
  /// bytes than were read, the set is written beside it, keeps that new name and the user is told;
  /// but where deliveries alone have changed the set and it saves itself, the file is read again in
  /// place, and what was delivered moved on. A save by the user takes the mark of a downloaded file
  /// off.
  virtual bool Save(SavedBy by) = 0;
  /// One sentence for people on why the last Save, SaveAs or SaveCopy failed; empty when it did
  /// not.
  virtual const std::string& WhyNotSaved() const = 0;
  /// Writes a copy elsewhere, marked like this set if it was downloaded; name and modified flag
  /// stay.
  virtual bool SaveCopy(const std::string& path) = 0;
  /// Saves under another name, as the user. When that fails, the set keeps the name it has. When it
  /// succeeds, the new file is remembered for delivery or not, as `remember` says. With `remember`
  /// the earlier file is not remembered any longer; without, it goes on as it was left there.
  virtual bool SaveAs(const std::string& path, bool remember) = 0;
  /// Writes into the file what deliveries have changed in it, as the journal has it, without the
  /// user's changes.
  virtual void SaveDeliveriesAlone() = 0;

  /// The file as the set knows it; nothing where it has none.
  virtual std::optional<FileStamp> KnownStamp() const = 0;
  /// Reads the file again in place if others have written it and nobody has unsaved changes here.
  /// What is due by its old rule stays due: each session shows its alert. True if it was read.
  virtual bool TakeOthersEdits() = 0;

  /// Whether the file bore the mark of a downloaded one when it was read, and no person has saved
  /// the set since.
  virtual bool IsDownloaded() const = 0;
  /// Whether the file was as a person has saved it here, when it was read or since.
  virtual bool IsOwn() const = 0;
  /// What a save would write now; nothing when a handler fails.
  virtual std::optional<std::string> Bytes() = 0;

  /// The set was read from a recovery copy: it goes by that name, unsaved, and the copy goes when
  /// the set is saved or discarded.
  virtual void BecomeRecovered(const std::string& untitledName) = 0;
  /// The set, which is not modified, takes over what was not saved of it, from a recovery copy that
  /// was made when its file had these bytes. False when the copy cannot be read.
  virtual bool TakeUnsaved(const std::string& copy, uint64 digest) = 0;
  /// Of the bytes in the file as the set knows it; 0 when they are not known.
  virtual uint64 Digest() const = 0;
  /// A set that has no file has a recovery copy now.
  virtual void CopiedTo(const std::string& copy) = 0;
  virtual const std::string& RecoveredFrom() const = 0;
  /// Removes the recovery copy, if there is one.
  virtual void DiscardRecovered() = 0;
};

}  // namespace kestrin
