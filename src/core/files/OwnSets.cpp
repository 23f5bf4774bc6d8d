#include "core/files/OwnSets.h"

#include <errno.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

#include "support/Message.h"
#include "support/Sha256.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr int32 LockPatience = 100;  // ms, for another session that writes

}  // namespace

OwnSets::OwnSets(FileDoor& files, const std::string& stateFolder, Report report)
    : files_(files), file_(stateFolder + "/mine"), report_(std::move(report)) {}

void OwnSets::Read(const std::vector<std::string>& remembered) {
  ReadFile();
  if (!isNew_) return;
  for (const std::string& path : remembered) {
    status_t status = StatusOk;
    if (const auto bytes = ReadWholeFile(files_, path, status)) entries_[path] = Sha256(*bytes);
  }
  Write();
}

/// What another session has written is taken in; entries of this one stay.
void OwnSets::ReadFile() {
  status_t status = StatusOk;
  const auto text = ReadWholeFile(files_, file_, status);
  isNew_ = status == -ENOENT;
  keptFile_ = text.has_value() || isNew_;
  bool damaged = false;
  for (size_t at = 0; text && at < text->size();) {
    const size_t end = std::min(text->find('\n', at), text->size());
    const auto line = Message::Unflatten(std::string_view(*text).substr(at, end - at));
    const auto path = line ? line->Get<std::string>("Path") : std::nullopt;
    const auto digest = line ? line->Get<std::string>("Digest") : std::nullopt;
    damaged = damaged || !path || !digest;
    if (path && digest) entries_.emplace(*path, *digest);
    at = end + 1;
  }
  if (damaged) SetAside();
}

void OwnSets::SetAside() {
  const std::string aside = file_ + " (damaged)";
  files_.Rename(file_, aside);
  report_(
      "The list of the event sets that were saved here was damaged.  It is kept as \"" + aside +
      "\".  Kestrin may ask before it carries out what such a set is to do, until you save it.");
}

bool OwnSets::IsOwn(const std::string& path, std::string_view bytes) const {
  const auto found = entries_.find(path);
  return found != entries_.end() && found->second == Sha256(bytes);
}

void OwnSets::Saved(const std::string& path, std::string_view bytes) {
  entries_[path] = Sha256(bytes);
  Write();
}

void OwnSets::Write() {
  const std::string folder = file_.substr(0, file_.rfind('/'));
  status_t status = files_.MakeFolders(folder, 0700);
  const std::unique_ptr<FileLock> lock = files_.Lock(file_ + ".lock", LockPatience);
  ReadFile();
  std::string lines;
  for (const auto& [path, digest] : entries_) {
    Message line;
    line.Set("Path", path);
    line.Set("Digest", digest);
    lines += line.Flatten() + "\n";
  }
  if (status == StatusOk && keptFile_)
    status = WriteWholeFile(files_, file_, lines, NewFile::Private);
  if (status != StatusOk)
    std::fprintf(stderr, "kestrin: %s could not be written (%d)\n", file_.c_str(), status);
}

}  // namespace kestrin
