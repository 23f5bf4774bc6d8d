#include "support/WholeFile.h"

#include <errno.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <random>

#include "kestrin/BufferedFile.h"

namespace kestrin {

namespace {

constexpr size_t LongestName = 255;
constexpr int NameAttempts = 20;
constexpr int RandomDigits = 16;
constexpr std::string_view TemporarySuffix = ".new";
constexpr int64 AbandonedAfter = int64{24} * 3600 * 1'000'000'000;  // ns

// What may be left of a name shortened to `limit` bytes without splitting a UTF-8 character.
std::string Shortened(std::string name, size_t limit) {
  if (name.size() <= limit) return name;
  while (limit > 0 && (static_cast<unsigned char>(name[limit]) & 0xC0) == 0x80) --limit;
  name.resize(limit);
  return name;
}

std::string TemporaryName(const std::string& leaf) {
  std::random_device random;
  char suffix[24];
  std::snprintf(suffix, sizeof suffix, ".%08x%08x.new", random(), random());
  return "." + Shortened(leaf, LongestName - 1 - std::string_view(suffix).size()) + suffix;
}

bool IsTemporaryName(std::string_view name) {
  if (!name.starts_with('.') || !name.ends_with(TemporarySuffix)) return false;
  name.remove_suffix(TemporarySuffix.size());
  if (name.size() < 1 + RandomDigits || name[name.size() - 1 - RandomDigits] != '.') return false;
  return name.find_first_not_of("0123456789abcdef", name.size() - RandomDigits) ==
         std::string_view::npos;
}

/// The folder's own clock says how old a file is: that of the one that was just written there.
void RemoveAbandoned(FileDoor& door, const std::string& folder, const std::string& fresh) {
  const auto names = door.List(folder);
  const auto now = names ? door.Stamp(fresh) : std::nullopt;
  if (!now) return;
  for (const std::string& name : *names) {
    if (!IsTemporaryName(name)) continue;
    const std::string path = folder + "/" + name;
    const auto stamp = door.Stamp(path);
    if (stamp && now->modifiedNanoseconds - stamp->modifiedNanoseconds > AbandonedAfter &&
        door.Kind(path) == FileKind::Regular)
      door.Remove(path);
  }
}

status_t MayReplace(FileDoor& door, const std::string& target, FileKind kind) {
  if (kind == FileKind::Missing) return StatusOk;
  if (kind == FileKind::Folder) return -EISDIR;
  if (kind == FileKind::Other) return -EINVAL;
  // A file protected against writing is not replaced behind its owner's back.
  status_t status = StatusOk;
  door.Open(target, OpenWriteOnly, status);
  return status;
}

std::unique_ptr<OpenFile> CreateBeside(FileDoor& door, const std::string& folder,
                                       const std::string& leaf, uint32 permissions,
                                       std::string& path, status_t& status) {
  std::string name = leaf;
  for (int attempt = 0; attempt < NameAttempts; ++attempt) {
    path = folder + "/" + TemporaryName(name);
    std::unique_ptr<OpenFile> file =
        door.Open(path, OpenWriteOnly | OpenCreate | OpenExclusive, status, permissions);
    if (file) return file;
    if (status == -ENAMETOOLONG)
      name.clear();  // a file system with shorter names
    else if (status != -EEXIST)
      return nullptr;
  }
  return nullptr;
}

// Everything between the creation of the temporary file and its removal after a failure.
status_t FillAndRename(FileDoor& door, OpenFile& file, const std::string& temporary,
                       const std::string& target, FileKind kind,
                       const std::function<bool(const std::string&)>& write,
                       const std::string& like) {
  if (!write(temporary)) return StatusFileError;
  status_t status = StatusOk;
  if (kind == FileKind::Regular)
    status = door.CopyAttributes(target, temporary);
  else if (!like.empty())
    door.CopyAttributes(like, temporary);
  if (status == StatusOk) status = file.Sync();
  if (status == StatusOk) status = door.Rename(temporary, target);
  return status;
}

bool WriteAll(OpenFile& file, std::string_view bytes, status_t& status) {
  while (!bytes.empty()) {
    const int64 written = file.Write(bytes.data(), bytes.size());
    if (written <= 0) {
      status = written < 0 ? static_cast<status_t>(written) : -ENOSPC;
      return false;
    }
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  status = file.Sync();
  return status == StatusOk;
}

}  // namespace

status_t ReplaceFile(FileDoor& door, const std::string& path,
                     const std::function<bool(const std::string& temporaryPath)>& write,
                     const std::string& like) {
  const std::string target = door.Canonical(path);
  const FileKind kind = door.Kind(target);
  const size_t slash = target.find_last_of('/');
  if (slash == std::string::npos) return -ENOENT;
  const std::string folder = target.substr(0, slash), leaf = target.substr(slash + 1);
  status_t status = MayReplace(door, target, kind);
  if (status != StatusOk) return status;

  std::string temporary;
  const uint32 permissions = kind == FileKind::Regular || !like.empty() ? 0600 : 0666;
  const std::unique_ptr<OpenFile> file =
      CreateBeside(door, folder, leaf, permissions, temporary, status);
  if (!file) return status;
  status = FillAndRename(door, *file, temporary, target, kind, write, like);
  if (status != StatusOk) {
    door.Remove(temporary);
    return status;
  }
  status = door.SyncFolder(folder.empty() ? "/" : folder);
  RemoveAbandoned(door, folder.empty() ? "/" : folder, target);
  return status;
}

status_t WriteWholeFile(FileDoor& door, const std::string& path, std::string_view bytes,
                        NewFile mode) {
  status_t reason = StatusOk;
  const auto write = [&](const std::string& temporary) {
    const std::unique_ptr<OpenFile> file = door.Open(temporary, OpenWriteOnly, reason);
    return file && WriteAll(*file, bytes, reason);
  };
  // As the file that is not there yet: nobody else's.
  const status_t status = ReplaceFile(door, path, write, mode == NewFile::Private ? path : "");
  return reason != StatusOk ? reason : status;
}

std::optional<std::string> ReadWholeFile(FileDoor& door, const std::string& path, status_t& status,
                                         int64 limit) {
  const std::unique_ptr<OpenFile> file = door.Open(path, OpenReadOnly, status);
  if (!file) return std::nullopt;
  const int64 size = file->Size();
  if (size < 0 || size > limit) {
    status = size < 0 ? static_cast<status_t>(size) : -EFBIG;
    return std::nullopt;
  }
  // One byte more than it should be, so that the end shows.
  std::string content(static_cast<size_t>(size) + 1, '\0');
  size_t filled = 0;
  for (;;) {
    const int64 got = file->Read(content.data() + filled, content.size() - filled);
    if (got < 0) {
      status = static_cast<status_t>(got);
      return std::nullopt;
    }
    filled += static_cast<size_t>(got);
    if (static_cast<int64>(filled) > limit) {
      status = -EFBIG;
      return std::nullopt;
    }
    if (got == 0) break;
    if (filled == content.size()) content.resize(2 * filled);
  }
  content.resize(filled);
  return content;
}

}  // namespace kestrin
