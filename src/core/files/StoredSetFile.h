// Reads sets from their files and writes them back: as a whole, beside what others have written,
// with the marks that belong to the file.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/events/Event.h"
#include "core/events/SetFile.h"
#include "core/files/EventSetFile.h"
#include "core/files/FileVersion.h"
#include "support/FileDoor.h"

namespace kestrin {

struct Context;

/// A new, empty, untitled set with the layout that new sets have.
std::unique_ptr<EventSet> NewSet(Context& context, const std::string& untitledName);

struct SetReading {
  std::unique_ptr<EventSet> Set;  ///< null when the file was refused
  /// Success also for an unknown version, of which the user has been told.
  ConstructorResult Result = ConstructorResult::Success;
  SetFileReport Report;
};

/// Main thread; the set is not among the open ones. Tells the user of an unknown version and of
/// handlers that failed; everything else is for the caller to tell. `report` brings what the caller
/// wants to be called with.
SetReading ReadSet(Context& context, const std::string& path, SetFileReport report = {});

class StoredSetFile final : public SetFile {
 public:
  /// `set` owns this. Nothing is known of a file of its name yet.
  explicit StoredSetFile(EventSet& set) : set_(set) {}

  bool Save(SavedBy by) override;
  const std::string& WhyNotSaved() const override { return whyNotSaved_; }
  bool SaveCopy(const std::string& path) override;
  bool SaveAs(const std::string& path, bool remember) override;
  void SaveDeliveriesAlone() override;
  std::optional<FileStamp> KnownStamp() const override;
  bool TakeOthersEdits() override;
  void BecomeRecovered(const std::string& untitledName) override;
  bool TakeUnsaved(const std::string& copy, uint64 digest) override;
  uint64 Digest() const override;
  bool IsDownloaded() const override { return origin_.has_value(); }
  bool IsOwn() const override { return own_; }
  std::optional<std::string> Bytes() override;
  void CopiedTo(const std::string& copy) override { recoveredFrom_ = copy; }
  const std::string& RecoveredFrom() const override { return recoveredFrom_; }
  void DiscardRecovered() override;

  /// Fills the set, which is new and empty, from the file of its name.
  ConstructorResult Read(SetFileReport& report);

 private:
  /// What is known of the file of one name.
  struct Known {
    std::string name;
    std::optional<FileVersion> version;  ///< as it was read or last written
    /// What a save wrote that then failed: it may have come into place all the same.
    std::optional<FileVersion> attempted;
  };

  FileDoor& Files() const;
  /// Forgets what it knows when the set has another name by now.
  Known& KnownOfFile();
  bool WriteTo(const std::string& path);
  bool IsAsSaved(const std::string& path) const;
  bool Replace(const std::string& path, std::optional<FileVersion>* written,
               const std::string& like = {});
  bool IsChangedByOthers();
  bool ReadAgain();
  std::optional<FileVersion> Version(const std::string& path) const;
  std::string NameBeside() const;
  void TellKeptApart(const std::string& earlier);

  EventSet& set_;
  Known known_;
  std::optional<std::string> origin_;  ///< the mark of a downloaded file
  std::string recoveredFrom_;
  std::string whyNotSaved_;
  bool own_ = false;
  std::string written_;  ///< while a save lasts whose bytes are to be remembered as the person's
};

}  // namespace kestrin
