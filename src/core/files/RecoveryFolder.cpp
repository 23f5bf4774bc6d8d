#include "core/files/RecoveryFolder.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <system_error>
#include <utility>

#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/files/EventSetFile.h"
#include "core/journal/Journal.h"
#include "core/ports/Workers.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr std::chrono::seconds WorkerPatience{1};

std::string NoteText(const std::string& file, uint64 digest, const ProcessOwner& by) {
  Message note;
  note.Set("File", file);
  note.Set("Digest", static_cast<int64>(digest));
  note.Set("Boot", by.Boot);
  note.Set("Process", by.Process);
  note.Set("Started", by.Started);
  return note.Flatten() + "\n";
}

void Complain(const std::string& path, status_t status) {
  std::fprintf(stderr, "kestrin: unsaved changes were not copied to %s (%s)\n", path.c_str(),
               std::generic_category().message(status < 0 ? -status : status).c_str());
}

}  // namespace

std::string RecoveryNote(const std::string& copy) { return copy + ".of"; }

/// Shared with the worker that writes it.
struct RecoveryFolder::Copy {
  explicit Copy(std::string file) : path(std::move(file)) {}

  const std::string path;
  uint64 edits = 0;  ///< main thread: how many the set had when it was last copied

  std::mutex guard;  ///< of the rest; never held while a file is touched
  std::condition_variable rests;
  bool busy = false;  ///< a worker is at the files
  bool gone = false;  ///< they are to go
  std::string kept;   ///< the file that the set was saved into, which stays

  void Remove(FileDoor& files) const {
    for (const std::string& each : {path, RecoveryNote(path)})
      if (each != kept && files.Kind(each) != FileKind::Missing) files.Remove(each);
  }
  /// False when a worker does not come back.
  bool Rest() {
    std::unique_lock lock(guard);
    return rests.wait_for(lock, WorkerPatience, [this] { return !busy; });
  }
  /// In the worker.
  void Write(FileDoor& files, const std::string& note, const std::string& bytes) {
    status_t status = WriteWholeFile(files, RecoveryNote(path), note, NewFile::Private);
    if (status == StatusOk) status = WriteWholeFile(files, path, bytes, NewFile::Private);
    if (status != StatusOk) Complain(path, status);
    std::unique_lock lock(guard);
    if (gone) {
      lock.unlock();
      Remove(files);
      lock.lock();
    }
    busy = false;
    rests.notify_all();
  }
};

RecoveryFolder::RecoveryFolder(FileDoor& files, const Processes& processes,
                               const std::string& stateFolder)
    : files_(files),
      processes_(processes),
      copies_(stateFolder + "/recovered"),
      alerts_(stateFolder + "/open-alerts.json") {}

RecoveryFolder::~RecoveryFolder() = default;

std::shared_ptr<RecoveryFolder::Copy> RecoveryFolder::CopyOf(EventSet& set) {
  std::shared_ptr<Copy>& copy = made_[set.GetHandle()];
  if (copy) return copy;
  // A copy of the file that nobody has taken up is written over: no death leaves one more.
  for (const RecoveredCopy& known : Copies())
    if (!set.IsUntitled() && known.File == set.GetFileName())
      copy = std::make_shared<Copy>(known.Path);
  if (!copy) copy = std::make_shared<Copy>(NewName(set));
  if (!set.IsUntitled()) return copy;
  // By the copy's path the next process knows the set, and the journal from now on.
  if (Journal* const journal = set.GetContext().journal)
    journal->Renamed(JournalPath(set), copy->path);
  set.File().CopiedTo(copy->path);
  return copy;
}

std::string RecoveryFolder::NoteOf(const EventSet& set) const {
  return NoteText(set.IsUntitled() ? "" : set.GetFileName(), set.File().Digest(),
                  processes_.Self());
}

bool RecoveryFolder::SaveCopy(EventSet& set) {
  if (files_.MakeFolders(copies_) != StatusOk) return false;
  const std::shared_ptr<Copy> copy = CopyOf(set);
  copy->Rest();
  copy->edits = set.CountEdits();
  return WriteWholeFile(files_, RecoveryNote(copy->path), NoteOf(set), NewFile::Private) ==
             StatusOk &&
         set.SaveCopy(copy->path);
}

bool RecoveryFolder::WantsCopy(const EventSet& set) const {
  if (!set.HasBeenModified() || set.OnlyDeliveriesChanged()) return false;
  const auto made = made_.find(set.GetHandle());
  return made == made_.end() || made->second->edits != set.CountEdits();
}

void RecoveryFolder::CopyInWorker(EventSet& set, Workers& workers) {
  if (const status_t status = files_.MakeFolders(copies_); status != StatusOk)
    Complain(copies_, status);
  const std::shared_ptr<Copy> copy = CopyOf(set);
  {
    const std::lock_guard lock(copy->guard);
    if (copy->busy) return;
    copy->busy = true;
  }
  copy->edits = set.CountEdits();
  const auto bytes = set.File().Bytes();
  const auto write = [&files = files_, copy, note = NoteOf(set), bytes] {
    copy->Write(files, note, *bytes);
  };
  if (!bytes)
    std::fprintf(stderr, "kestrin: unsaved changes of %s: %s\n", set.GetFileName().c_str(),
                 set.WhyNotSaved().c_str());
  if (bytes && workers.Start("Recovery copy", write)) return;
  if (bytes) copy->edits = UINT64_MAX;  // nothing is copied: wanted still
  const std::lock_guard lock(copy->guard);
  copy->busy = false;
}

std::string RecoveryFolder::NewName(const EventSet& set) const {
  std::string stem = set.GetLeaf();
  const std::string suffix = SetFileSuffix;
  if (stem.ends_with(suffix)) stem.resize(stem.size() - suffix.size());
  const auto isTaken = [this](const std::string& path) {
    return files_.Kind(path) != FileKind::Missing || IsOurs(path);
  };
  std::string path = copies_ + "/" + stem + suffix;
  for (int number = 2; isTaken(path); ++number)
    path = copies_ + "/" + stem + ", " + std::to_string(number) + suffix;
  return path;
}

bool RecoveryFolder::IsOurs(const std::string& path) const {
  return std::any_of(made_.begin(), made_.end(), [&path](const auto& entry) {
    return entry.second && entry.second->path == path;
  });
}

void RecoveryFolder::Forget(uint64 set, const std::string& savedAs) {
  const auto made = made_.find(set);
  if (made == made_.end()) return;
  const std::shared_ptr<Copy> copy = made->second;
  made_.erase(made);
  {
    const std::lock_guard lock(copy->guard);
    copy->gone = true;
    copy->kept = savedAs;
    if (copy->busy) {
      leaving_.push_back(copy);  // the worker removes what it writes
      return;
    }
  }
  copy->Remove(files_);
}

void RecoveryFolder::DropSettled(const OpenSets& sets) {
  std::vector<std::pair<uint64, std::string>> settled;
  for (const auto& [handle, copy] : made_) {
    const EventSet* const set = sets.FindHandle(handle);
    if (!set || !set->HasBeenModified() || set->OnlyDeliveriesChanged())
      settled.emplace_back(handle, set ? set->GetFileName() : "");
  }
  for (const auto& [handle, file] : settled) Forget(handle, file);
}

void RecoveryFolder::Finish() {
  for (const auto& [handle, copy] : made_) copy->Rest();
  for (const auto& leaving : leaving_)
    if (const auto copy = leaving.lock()) copy->Rest();
  leaving_.clear();
}

std::vector<RecoveredCopy> RecoveryFolder::Copies() const {
  std::vector<RecoveredCopy> copies;
  for (const std::string& name : files_.List(copies_).value_or(std::vector<std::string>())) {
    RecoveredCopy copy{copies_ + "/" + name, {}, 0};
    if (!name.ends_with(SetFileSuffix) || IsOurs(copy.Path)) continue;
    status_t status = StatusOk;
    const auto text = ReadWholeFile(files_, RecoveryNote(copy.Path), status);
    const Message note = Message::Unflatten(text.value_or("")).value_or(Message());
    const auto number = [&note](const char* key) { return note.Get<int64>(key).value_or(0); };
    const ProcessOwner by{note.Get<std::string>("Boot").value_or(""), number("Process"),
                          number("Started")};
    if (by.Process != 0 && by != processes_.Self() && processes_.Lives(by)) continue;
    copy.File = note.Get<std::string>("File").value_or("");
    copy.Digest = static_cast<uint64>(number("Digest"));
    copies.push_back(std::move(copy));
  }
  return copies;
}

void RecoveryFolder::TakeOver(const RecoveredCopy& copy, const EventSet& set) {
  const auto taken = std::make_shared<Copy>(copy.Path);
  taken->edits = set.CountEdits();
  made_[set.GetHandle()] = taken;
  WriteWholeFile(files_, RecoveryNote(copy.Path),
                 NoteText(copy.File, copy.Digest, processes_.Self()), NewFile::Private);
}

bool RecoveryFolder::IsInFile(const RecoveredCopy& copy) const {
  status_t status = StatusOk;
  const auto inFile = copy.File.empty() ? std::nullopt : ReadWholeFile(files_, copy.File, status);
  return inFile && inFile == ReadWholeFile(files_, copy.Path, status);
}

void RecoveryFolder::FollowSave(const EventSet& set, uint64 digestBefore) const {
  for (const RecoveredCopy& copy : Copies())
    if (copy.File == set.GetFileName() && copy.Digest == digestBefore)
      WriteWholeFile(files_, RecoveryNote(copy.Path), NoteText(copy.File, set.File().Digest(), {}),
                     NewFile::Private);
}

void RecoveryFolder::Discard(const RecoveredCopy& copy) { Copy(copy.Path).Remove(files_); }

std::vector<Message> RecoveryFolder::OldAlerts() const {
  std::vector<Message> alerts;
  if (files_.Kind(alerts_) == FileKind::Missing) return alerts;
  status_t status = StatusOk;
  const std::string lines = ReadWholeFile(files_, alerts_, status).value_or("");
  for (size_t at = 0; at < lines.size();) {
    const size_t end = std::min(lines.find('\n', at), lines.size());
    if (auto alert = Message::Unflatten(std::string_view(lines).substr(at, end - at)))
      alerts.push_back(std::move(*alert));
    else
      std::fprintf(stderr, "kestrin: %s: a line that is no alert was passed over\n",
                   alerts_.c_str());
    at = end + 1;
  }
  return alerts;
}

void RecoveryFolder::RemoveOldAlerts() {
  if (files_.Kind(alerts_) != FileKind::Missing) files_.Remove(alerts_);
}

}  // namespace kestrin
