#include "core/files/RecoveryFolder.h"

#include <algorithm>
#include <cstdio>

#include "core/events/EventIdentity.h"
#include "core/events/EventSet.h"
#include "core/files/EventSetFile.h"
#include "core/journal/Journal.h"
#include "support/WholeFile.h"

namespace kestrin {

RecoveryFolder::RecoveryFolder(FileDoor& files, const std::string& stateFolder)
    : files_(files),
      copies_(stateFolder + "/recovered"),
      alerts_(stateFolder + "/open-alerts.json") {}

bool RecoveryFolder::SaveCopy(EventSet& set) {
  const std::string& recovered = set.File().RecoveredFrom();
  if (!recovered.empty()) return set.SaveCopy(recovered);
  if (files_.MakeFolders(copies_) != StatusOk) return false;
  std::string& path = made_[set.GetHandle()];
  if (path.empty() && !set.IsUntitled()) path = CopyOf(set.GetFileName());
  if (path.empty()) path = NewName(set);
  if (!set.IsUntitled() && !Note(path, set)) return false;
  if (!set.SaveCopy(path)) return false;
  // By the copy's path the next process knows the set.
  Journal* const journal = set.GetContext().journal;
  if (journal && set.IsUntitled()) journal->Renamed(JournalPath(set), path);
  return true;
}

std::string RecoveryFolder::NewName(const EventSet& set) const {
  std::string stem = set.GetLeaf();
  const std::string suffix = SetFileSuffix;
  if (stem.ends_with(suffix)) stem.resize(stem.size() - suffix.size());
  std::string path = copies_ + "/" + stem + suffix;
  for (int number = 2; files_.Kind(path) != FileKind::Missing; ++number)
    path = copies_ + "/" + stem + ", " + std::to_string(number) + suffix;
  return path;
}

std::string RecoveryNote(const std::string& copy) { return copy + ".of"; }

bool RecoveryFolder::Note(const std::string& copy, const EventSet& set) const {
  Message note;
  note.Set("File", set.GetFileName());
  note.Set("Digest", static_cast<int64>(set.File().Digest()));
  return WriteWholeFile(files_, RecoveryNote(copy), note.Flatten()) == StatusOk;
}

std::optional<RecoveryFolder::Origin> RecoveryFolder::OriginOf(const std::string& copy) const {
  status_t status = StatusOk;
  if (files_.Kind(RecoveryNote(copy)) == FileKind::Missing) return std::nullopt;
  const auto note =
      Message::Unflatten(ReadWholeFile(files_, RecoveryNote(copy), status).value_or(""));
  const auto file = note ? note->Get<std::string>("File") : std::nullopt;
  if (!file) return std::nullopt;
  return Origin{*file, static_cast<uint64>(note->Get<int64>("Digest").value_or(0))};
}

std::string RecoveryFolder::CopyOf(const std::string& file) const {
  for (const std::string& copy : Copies())
    if (const auto origin = OriginOf(copy); origin && origin->File == file) return copy;
  return "";
}

void RecoveryFolder::FollowSave(const EventSet& set, uint64 digestBefore) const {
  for (const std::string& copy : Copies())
    if (const auto origin = OriginOf(copy);
        origin && origin->File == set.GetFileName() && origin->Digest == digestBefore)
      Note(copy, set);
}

void RecoveryFolder::Forget(const EventSet& set) {
  const auto made = made_.find(set.GetHandle());
  if (made == made_.end()) return;
  files_.Remove(made->second);
  if (files_.Kind(RecoveryNote(made->second)) != FileKind::Missing)
    files_.Remove(RecoveryNote(made->second));
  made_.erase(made);
}

std::vector<std::string> RecoveryFolder::Copies() const {
  std::vector<std::string> paths;
  for (const std::string& name : files_.List(copies_).value_or(std::vector<std::string>()))
    if (name.ends_with(SetFileSuffix)) paths.push_back(copies_ + "/" + name);
  return paths;
}

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
