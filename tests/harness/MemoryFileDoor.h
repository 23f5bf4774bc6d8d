// Files, folders, links and attributes in memory, and what of them would outlive a power cut.
// Absolute paths only.
#pragma once

#include <errno.h>
#include <stdio.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kestrin/BufferedFile.h"
#include "support/FileDoor.h"

namespace kestrin {

class MemoryFileDoor final : public FileDoor {
 public:
  std::map<std::string, std::string> Links;  ///< path of the link, what it points to

  std::set<std::string> Locked;  ///< by somebody who holds on to it

  /// Puts a durable file there, with its folders.
  void Put(const std::string& path, std::string bytes, uint32 mode = 0644) {
    AddFolders(ParentOf(path));
    auto file =
        std::make_shared<Node>(Node{std::move(bytes), {}, mode, {}, ++lastInode_, ++ticks_});
    file->Durable = file->Bytes;
    files_[path] = durableFiles_[path] = file;
  }
  void PutFolder(const std::string& folder) { AddFolders(folder); }
  /// The content, or nothing when there is no such file.
  std::optional<std::string> Bytes(const std::string& path) const {
    const auto file = Find(path);
    return file ? std::optional(file->Bytes) : std::nullopt;
  }
  /// The power fails. Content that was not synchronised is lost; so are names whose folder was
  /// not, unless the system happened to have written them (`namesKept`).
  void CutPower(bool namesKept) {
    if (!namesKept) files_ = durableFiles_;
    for (auto& [path, file] : files_) file->Bytes = file->Durable;
  }

  std::unique_ptr<OpenFile> Open(const std::string& path, uint32 mode, status_t& status,
                                 uint32 permissions = 0666) override {
    const std::string real = Canonical(path);
    std::shared_ptr<Node> file = Find(real);
    const uint32 access = mode & OpenAccessMask;
    const uint32 needed = access == OpenReadOnly ? 0400 : access == OpenWriteOnly ? 0200 : 0600;
    status = StatusOk;
    if (folders_.contains(real))
      status = -EISDIR;
    else if (file && (mode & OpenExclusive))
      status = -EEXIST;
    else if (file && (file->Mode & needed) != needed)
      status = -EACCES;
    else if (!file && (!(mode & (OpenCreate | OpenExclusive)) || !IsFolder(ParentOf(real))))
      status = -ENOENT;
    else if (LeafOf(real).size() > 255)
      status = -ENAMETOOLONG;
    if (status != StatusOk) return nullptr;
    if (!file) {
      file = files_[real] = std::make_shared<Node>();
      *file = {{}, {}, permissions & ~0022u, {}, ++lastInode_, ++ticks_};
    }
    if ((mode & OpenErase) && access != OpenReadOnly) file->Bytes.clear(), file->Changed = ++ticks_;
    auto opened = std::make_unique<Handle>(*this, file);
    opened->Appends = (mode & OpenAppend) != 0;
    if (mode & OpenAtEnd) opened->Seek(0, SEEK_END);
    return opened;
  }

  status_t Rename(const std::string& from, const std::string& to) override {
    const auto file = files_.find(from);
    if (file == files_.end() || !IsFolder(ParentOf(to))) return -ENOENT;
    if (IsFolder(to)) return -EISDIR;
    const auto node = file->second;
    files_.erase(file);
    files_[to] = node;
    return StatusOk;
  }
  status_t Remove(const std::string& path) override {
    return files_.erase(path) || Links.erase(path) ? StatusOk : -ENOENT;
  }
  status_t SyncFolder(const std::string& folder) override {
    if (!IsFolder(folder)) return -ENOENT;
    const auto inFolder = [&](const auto& entry) { return ParentOf(entry.first) == folder; };
    std::erase_if(durableFiles_, inFolder);
    std::copy_if(files_.begin(), files_.end(), std::inserter(durableFiles_, durableFiles_.end()),
                 inFolder);
    return StatusOk;
  }
  status_t MakeFolders(const std::string& folder, uint32 = 0700) override {
    AddFolders(folder);
    return StatusOk;
  }
  status_t CopyAttributes(const std::string& from, const std::string& to) override {
    const auto source = Find(from), target = Find(to);
    if (!source || !target) return -ENOENT;
    target->Mode = source->Mode;
    target->Attributes = source->Attributes;
    return StatusOk;
  }
  status_t SetAttribute(const std::string& path, const std::string& name,
                        std::string_view value) override {
    const auto file = Find(Canonical(path));
    if (!file) return -ENOENT;
    file->Attributes[name] = value;
    return StatusOk;
  }
  std::optional<std::string> GetAttribute(const std::string& path,
                                          const std::string& name) override {
    const auto file = Find(Canonical(path));
    if (!file || !file->Attributes.contains(name)) return std::nullopt;
    return file->Attributes[name];
  }
  status_t RemoveAttribute(const std::string& path, const std::string& name) override {
    const auto file = Find(Canonical(path));
    if (!file) return -ENOENT;
    return file->Attributes.erase(name) ? StatusOk : -ENODATA;
  }
  std::unique_ptr<FileLock> Lock(const std::string& path, int32) override {
    struct Held final : FileLock {
      Held(std::set<std::string>& all, std::string which) : Locks(all), Path(std::move(which)) {}
      ~Held() override { Locks.erase(Path); }
      std::set<std::string>& Locks;
      std::string Path;
    };
    if (!Locked.insert(path).second) return nullptr;
    return std::make_unique<Held>(Locked, path);
  }
  FileKind Kind(const std::string& path) override {
    const std::string real = Canonical(path);
    if (Find(real)) return FileKind::Regular;
    return IsFolder(real) ? FileKind::Folder : FileKind::Missing;
  }
  std::optional<FileStamp> Stamp(const std::string& path) override {
    const auto file = Find(Canonical(path));
    if (!file) return std::nullopt;
    return FileStamp{1, file->Inode, static_cast<int64>(file->Bytes.size()), file->Changed};
  }
  std::string Canonical(const std::string& path) override { return Resolved(path, 40); }
  std::optional<std::vector<std::string>> List(const std::string& given) override {
    const std::string folder = Canonical(given);
    if (!IsFolder(folder)) return std::nullopt;
    std::set<std::string> names;
    for (const auto& [path, file] : files_)
      if (ParentOf(path) == folder) names.insert(LeafOf(path));
    for (const std::string& path : folders_)
      if (path != "/" && ParentOf(path) == folder) names.insert(LeafOf(path));
    for (const auto& [path, target] : Links)
      if (ParentOf(path) == folder) names.insert(LeafOf(path));
    return std::vector<std::string>(names.begin(), names.end());
  }

 private:
  struct Node {
    std::string Bytes, Durable;
    uint32 Mode = 0644;
    std::map<std::string, std::string> Attributes;
    uint64 Inode = 0;
    int64 Changed = 0;
  };

  class Handle final : public OpenFile {
   public:
    Handle(MemoryFileDoor& door, std::shared_ptr<Node> file)
        : door_(door), file_(std::move(file)) {}

    int64 Read(void* data, size_t count) override {
      const int64 got = ReadAt(position_, data, count);
      position_ += std::max<int64>(got, 0);
      return got;
    }
    bool Appends = false;
    int64 Write(const void* data, size_t count) override {
      if (Appends) position_ = Size();
      const int64 written = WriteAt(position_, data, count);
      position_ += written;
      return written;
    }
    int64 ReadAt(int64 position, void* data, size_t count) override {
      if (position < 0) return -EINVAL;
      if (position >= Size()) return 0;
      const size_t got =
          file_->Bytes.copy(static_cast<char*>(data), count, static_cast<size_t>(position));
      return static_cast<int64>(got);
    }
    int64 WriteAt(int64 position, const void* data, size_t count) override {
      const auto at = static_cast<size_t>(position);
      file_->Bytes.resize(std::max(file_->Bytes.size(), at + count));
      if (count > 0) std::memcpy(file_->Bytes.data() + at, data, count);
      file_->Changed = ++door_.ticks_;
      return static_cast<int64>(count);
    }
    int64 Seek(int64 offset, int whence) override {
      const int64 base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? position_ : Size();
      if (base + offset < 0) return -EINVAL;
      return position_ = base + offset;
    }
    int64 Size() override { return static_cast<int64>(file_->Bytes.size()); }
    status_t SetSize(int64 size) override {
      file_->Bytes.resize(static_cast<size_t>(size));
      file_->Changed = ++door_.ticks_;
      return StatusOk;
    }
    status_t Sync() override {
      file_->Durable = file_->Bytes;
      return StatusOk;
    }
    std::optional<FileStamp> Stamp() override {
      return FileStamp{1, file_->Inode, Size(), file_->Changed};
    }

   private:
    MemoryFileDoor& door_;
    std::shared_ptr<Node> file_;
    int64 position_ = 0;
  };

  static std::string ParentOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
  }
  static std::string LeafOf(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
  }
  bool IsFolder(const std::string& path) const { return folders_.contains(path); }
  void AddFolders(const std::string& folder) {
    for (std::string each = folder; folders_.insert(each).second;) each = ParentOf(each);
  }
  std::shared_ptr<Node> Find(const std::string& path) const {
    const auto found = files_.find(path);
    return found == files_.end() ? nullptr : found->second;
  }
  std::string Resolved(const std::string& path, int linksLeft) const {
    std::string real = "/";
    for (size_t at = 0; at < path.size();) {
      const size_t end = std::min(path.find('/', at), path.size());
      const std::string part = path.substr(at, end - at);
      at = end + 1;
      if (part == "..") real = ParentOf(real);
      if (part.empty() || part == "." || part == "..") continue;
      const std::string next = real == "/" ? "/" + part : real + "/" + part;
      const auto link = Links.find(next);
      const bool follow = link != Links.end() && linksLeft > 0;
      if (!follow)
        real = next;
      else
        real = Resolved(link->second.starts_with('/') ? link->second : real + "/" + link->second,
                        linksLeft - 1);
    }
    return real;
  }

  std::map<std::string, std::shared_ptr<Node>> files_, durableFiles_;
  std::set<std::string> folders_{"/"};
  uint64 lastInode_ = 0;
  int64 ticks_ = 0;
};

}  // namespace kestrin
