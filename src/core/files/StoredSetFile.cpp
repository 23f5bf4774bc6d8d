#include "core/files/StoredSetFile.h"

#include <cstdio>
#include <map>
#include <memory>
#include <system_error>
#include <utility>

#include "core/events/EventIdentity.h"
#include "core/events/EventProgress.h"
#include "core/events/EventSet.h"
#include "core/files/OwnSets.h"
#include "core/files/RecoveryFolder.h"
#include "core/files/SetMerge.h"
#include "core/journal/Journal.h"
#include "core/loop/AppMessages.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/ports/Clock.h"
#include "core/settings/KestrinSettings.h"
#include "kestrin/BufferedFile.h"
#include "support/LocalTime.h"
#include "support/MemoryFile.h"
#include "support/Opened.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr char OriginAttribute[] = "user.xdg.origin.url";
constexpr char TypeAttribute[] = "user.mime_type";
constexpr int32 WriteBuffer = 65536;
constexpr int MostReadings = 5;

/// What the system says of a negative errno, as a sentence.
std::string SentenceOf(status_t status) {
  return status < 0 && status > -4096 ? std::generic_category().message(-status) + "."
                                      : "The file could not be written.";
}

struct Stored {
  std::unique_ptr<EventSet> set;
  StoredSetFile* file;  ///< the set's own
};

Stored MakeSet(Context& context, const std::string& name) {
  auto set = std::make_unique<EventSet>(context, name);
  auto file = std::make_unique<StoredSetFile>(*set);
  StoredSetFile* const stored = file.get();
  set->StoreIn(std::move(file));
  return {std::move(set), stored};
}

/// What the journal knows and the file does not: a delivery made it.
void FollowJournal(EventSet& set, const std::string& path) {
  const Journal* const journal = set.GetContext().journal;
  if (!journal || !journal->Knows(path)) return;
  std::vector<StoredEvent> events;
  events.reserve(set.Events().size());
  for (const auto& event : set.Events())
    events.push_back(
        {set.FileNames().Of(set, *event), RuleMark(event->Record()), StateOf(event->Record())});
  const std::vector<std::optional<EventState>> states = journal->Follow(path, events);
  const EventSet::DeliveryChange byDelivery(set);
  for (size_t i = states.size(); i-- > 0;)
    if (states[i]) AssignState(*set.Events()[i], *states[i]);
}

}  // namespace

std::unique_ptr<EventSet> NewSet(Context& context, const std::string& untitledName) {
  std::unique_ptr<EventSet> set = MakeSet(context, untitledName).set;
  set->BecomeUntitled(untitledName);
  set->Layout() = context.settings.Layout;
  set->Layout().WindowFrame = context.settings.SetWindowPosition.NextFrame();
  return set;
}

SetReading ReadSet(Context& context, const std::string& path, SetFileReport report) {
  SetReading reading{nullptr, ConstructorResult::Success, std::move(report)};
  Stored stored = MakeSet(context, path);
  reading.Result = stored.file->Read(reading.Report);
  if (reading.Report.Fault.empty()) reading.Set = std::move(stored.set);
  return reading;
}

FileDoor& StoredSetFile::Files() const { return set_.GetContext().files; }

StoredSetFile::Known& StoredSetFile::KnownOfFile() {
  if (known_.name != set_.GetFileName()) known_ = {set_.GetFileName(), {}, {}};
  return known_;
}

ConstructorResult StoredSetFile::Read(SetFileReport& report) {
  const std::string& path = set_.GetFileName();
  Notices& notices = set_.GetContext().notices;
  KnownOfFile().version = Version(path);
  const ConstructorResult result = ReadSetFile(set_, path, report);
  if (report.Fault.empty()) FollowJournal(set_, path);
  if (report.IsUnknownVersion && !report.IsKnown)
    notices.ReportError(
        "The EventSet file " + path +
        " was written by an unknown version of Kestrin.  It was written by version " +
        report.Version + ", and the current version is " + SetFileVersion +
        ".  The set will not be able to be opened until you get a newer version of Kestrin.");
  if (!report.Complaint.empty()) notices.ReportError(report.Complaint);
  origin_ = Files().GetAttribute(path, OriginAttribute);
  own_ = IsAsSaved(path);
  return result;
}

bool StoredSetFile::IsAsSaved(const std::string& path) const {
  const OwnSets* const known = set_.GetContext().ownSets;
  if (!known || !known->Knows(path)) return false;
  status_t status = StatusOk;
  const auto bytes = ReadWholeFile(Files(), path, status);
  return bytes && known->IsOwn(path, *bytes);
}

bool StoredSetFile::WriteTo(const std::string& path) {
  const AutoLock lock(set_);
  Opened<EndianIndependentFile> file(Files(), path, OpenWriteOnly | OpenCreate | OpenErase,
                                     WriteBuffer);
  const bool whole = file.InitCheck() == StatusOk && WriteSetFile(set_, file, whyNotSaved_);
  if (!whole && whyNotSaved_.empty())
    whyNotSaved_ =
        SentenceOf(file.InitCheck() != StatusOk ? file.InitCheck() : file.WriteFailure());
  return whole;
}

std::optional<std::string> StoredSetFile::Bytes() {
  const AutoLock lock(set_);
  auto memory = std::make_unique<MemoryFile>();
  MemoryFile& written = *memory;
  Opened<EndianIndependentFile> file(std::move(memory), OpenReadWrite, WriteBuffer);
  whyNotSaved_.clear();
  std::optional<std::string> bytes;
  if (WriteSetFile(set_, file, whyNotSaved_)) {
    bytes.emplace(static_cast<size_t>(written.Size()), '\0');
    written.ReadAt(0, bytes->data(), bytes->size());
  }
  if (!bytes && whyNotSaved_.empty()) whyNotSaved_ = SentenceOf(StatusFileError);
  return bytes;
}

bool StoredSetFile::SaveCopy(const std::string& path) {
  std::optional<FileVersion> written;
  return Replace(path, &written);
}

/// `written` tells the new file from all others, also where it came into place but the rest failed.
/// A file that is new gets owner and mode of `like`.
bool StoredSetFile::Replace(const std::string& path, std::optional<FileVersion>* written,
                            const std::string& like) {
  const auto write = [&](const std::string& temporary) {
    if (!WriteTo(temporary)) return false;
    *written = Version(temporary);
    // Of the file that nobody else knows yet.
    status_t status = StatusOk;
    if (set_.GetContext().ownSets)
      written_ = ReadWholeFile(Files(), temporary, status).value_or("");
    return true;
  };
  whyNotSaved_.clear();
  const status_t status = ReplaceFile(Files(), path, write, like);
  if (status != StatusOk) {
    if (whyNotSaved_.empty()) whyNotSaved_ = SentenceOf(status);
    return false;
  }
  if (origin_) Files().SetAttribute(path, OriginAttribute, *origin_);
  return true;
}

/// A name beside the file that says why it is there and that nobody has taken yet.
std::string StoredSetFile::NameBeside() const {
  const Context& context = set_.GetContext();
  std::string stem = set_.GetFileName();
  const std::string suffix = SetFileSuffix;
  if (stem.size() > suffix.size() && stem.ends_with(suffix))
    stem.resize(stem.size() - suffix.size());
  const CivilFields now = ToFields(context.zone.AtMoment(context.clock.Now()));
  char when[64];
  std::snprintf(when, sizeof when, " (kept apart %04d-%02d-%02d %02d.%02d.%02d",
                static_cast<int>(now.year), static_cast<int>(now.month + 1),
                static_cast<int>(now.day), static_cast<int>(now.hour), static_cast<int>(now.minute),
                static_cast<int>(now.second));
  for (int number = 1;; ++number) {
    std::string name =
        stem + when + (number > 1 ? ", " + std::to_string(number) : "") + ")" + suffix;
    if (Files().Kind(name) == FileKind::Missing) return name;
  }
}

void StoredSetFile::TellKeptApart(const std::string& earlier) {
  const Context& context = set_.GetContext();
  const AutoLock lock(context.settings.Protect);
  if (context.settings.IsFileRemembered(earlier)) context.settings.RememberSet(set_.GetFileName());
  context.notices.InformUser("The event set \"" + EventSet::LeafOf(earlier) +
                             "\" was changed by another program since Kestrin read it.  Your "
                             "events were saved beside it as \"" +
                             set_.GetLeaf() + "\", and the set now goes by that name.");
}

/// Where nothing is kept apart from the file, the stamp alone tells.
std::optional<FileVersion> StoredSetFile::Version(const std::string& path) const {
  return VersionOf(Files(), path, set_.GetContext().journal != nullptr);
}

uint64 StoredSetFile::Digest() const {
  return known_.name == set_.GetFileName() && known_.version ? known_.version->Digest.value_or(0)
                                                             : 0;
}

bool StoredSetFile::IsChangedByOthers() {
  Known& known = KnownOfFile();
  if (known.attempted && !HasChanged(Files(), known.name, *known.attempted))
    known.version = known.attempted;
  return known.version && HasChanged(Files(), known.name, *known.version);
}

bool StoredSetFile::ReadAgain() {
  const std::string path = set_.GetFileName();
  const std::optional<FileVersion> version = Version(path);
  SetFileReport report;
  if (!MergeFromFile(set_, path, report)) {
    whyNotSaved_ = "The file was changed by another program, and " + report.Fault + ".";
    return false;
  }
  if (!report.Complaint.empty()) set_.GetContext().notices.ReportError(report.Complaint);
  // Should others have written meanwhile, these are not the bytes of next time either.
  KnownOfFile() = {path, version, {}};
  origin_ = Files().GetAttribute(path, OriginAttribute);
  own_ = IsAsSaved(path);
  set_.IsAsInFile();
  FollowJournal(set_, path);
  return true;
}

std::optional<FileStamp> StoredSetFile::KnownStamp() const {
  const bool isKnown = known_.name == set_.GetFileName() && known_.version;
  return isKnown ? std::optional(known_.version->Stamp) : std::nullopt;
}

bool StoredSetFile::TakeOthersEdits() {
  if (set_.HasBeenModified() || set_.IsUntitled() || !IsChangedByOthers()) return false;
  set_.CommitEdits();
  if (set_.HasBeenModified()) return false;
  const int64 now = set_.GetContext().clock.Now();
  std::map<uint64, std::pair<uint32, EventState>> due;
  for (const auto& event : set_.Events())
    if (event->GetNextEventTime() != 0 && event->GetNextEventTime() <= now)
      due[event->GetHandle()] = {RuleMark(event->Record()), StateOf(event->Record())};
  if (!ReadAgain()) return false;
  const EventSet::DeliveryChange byItself(set_);
  for (const auto& event : set_.Events()) {
    const auto found = due.find(event->GetHandle());
    if (found != due.end() && found->second.first == RuleMark(event->Record()))
      AssignState(*event, found->second.second);
  }
  return true;
}

bool StoredSetFile::Save(SavedBy by) {
  const std::string earlier = set_.GetFileName();
  const bool deliveriesAlone = by == SavedBy::Itself && set_.OnlyDeliveriesChanged();
  bool changedByOthers = IsChangedByOthers();
  for (int tries = 0; deliveriesAlone && changedByOthers; ++tries) {
    if (tries == MostReadings) return whyNotSaved_ = "Other programs keep changing it.", false;
    if (!ReadAgain()) return false;
    if (!set_.HasBeenModified()) return true;  // others have saved what was delivered
    changedByOthers = IsChangedByOthers();
  }
  Known& known = KnownOfFile();
  const std::string target = changedByOthers ? NameBeside() : earlier;
  known.attempted.reset();
  if (!Replace(target, &known.attempted, changedByOthers ? earlier : "")) return false;
  if (by == SavedBy::User) {
    Files().RemoveAttribute(target, OriginAttribute);
    origin_.reset();
  }
  Files().SetAttribute(target, TypeAttribute, SetFileType);
  if (!known.attempted) known.attempted = Version(target);
  known.version = std::exchange(known.attempted, std::nullopt);
  known.name = target;
  own_ = own_ || by == SavedBy::User;
  if (OwnSets* const own = set_.GetContext().ownSets; own && own_) own->Saved(target, written_);
  written_.clear();
  set_.Saved(target);
  DiscardRecovered();
  if (changedByOthers) TellKeptApart(earlier);
  return true;
}

bool StoredSetFile::SaveAs(const std::string& path, bool remember) {
  const std::string earlier = set_.GetFileName();
  const bool hadFile = !set_.IsUntitled() && path != earlier;
  const bool wasRemembered = set_.DeliversUnseen();
  if (hadFile && !remember) SaveDeliveriesAlone();
  const Known before = KnownOfFile();
  // What is known of a set that goes by another path goes with it.
  Journal* const journal = hadFile && remember ? set_.GetContext().journal : nullptr;
  if (journal) journal->Renamed(earlier, path);
  set_.SetFileName(path);
  if (!Save(SavedBy::User)) {
    if (journal) journal->Renamed(path, earlier);
    set_.SetFileName(earlier);
    if (path != earlier) known_ = before;
    return false;
  }
  set_.Remember(remember);
  if (!hadFile) return true;
  const Context& context = set_.GetContext();
  const AutoLock lock(context.settings.Protect);
  if (remember) {
    context.settings.ForgetSet(earlier);
  } else if (wasRemembered && context.settings.IsFileRemembered(earlier)) {
    context.queue.Post(OpenFiles({earlier}, false));
  }
  return true;
}

void StoredSetFile::SaveDeliveriesAlone() {
  const std::string& path = set_.GetFileName();
  Context& context = set_.GetContext();
  const bool mayDiffer = context.journal && context.journal->Knows(path);
  if (!mayDiffer || set_.IsUntitled() || IsChangedByOthers()) return;
  const Stored inFile = MakeSet(context, path);
  SetFileReport report;
  inFile.file->Read(report);
  if (!report.Fault.empty()) return;
  if (inFile.set->HasBeenModified() && inFile.file->Save(SavedBy::Itself))
    known_.version = inFile.file->known_.version;
}

void StoredSetFile::BecomeRecovered(const std::string& untitledName) {
  recoveredFrom_ = set_.GetFileName();
  set_.BecomeUntitled(untitledName);
  set_.SetModified();
}

bool StoredSetFile::TakeUnsaved(const std::string& copy, uint64 digest) {
  SetFileReport report;
  if (!MergeFromFile(set_, copy, report)) return false;
  recoveredFrom_ = copy;
  if (Known& known = KnownOfFile(); known.version && known.version->Digest != digest)
    known.version = FileVersion{{}, digest};
  set_.SetModified();
  return true;
}

void StoredSetFile::DiscardRecovered() {
  if (recoveredFrom_.empty()) return;
  if (recoveredFrom_ != set_.GetFileName()) Files().Remove(recoveredFrom_);
  const std::string note = RecoveryNote(recoveredFrom_);
  if (Files().Kind(note) != FileKind::Missing) Files().Remove(note);
  recoveredFrom_.clear();
}

}  // namespace kestrin
