#include "support/FileDoor.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>

#include "kestrin/BufferedFile.h"

namespace kestrin {

namespace {

constexpr int MaxLinks = 40;

template <typename Call>
auto Retried(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

status_t StatusOf(int result) { return result < 0 ? -errno : StatusOk; }

FileStamp StampOf(const struct stat& info) {
  return {info.st_dev, info.st_ino, info.st_size,
          int64{info.st_mtim.tv_sec} * 1'000'000'000 + info.st_mtim.tv_nsec};
}

class SystemFileLock final : public FileLock {
 public:
  explicit SystemFileLock(int descriptor) : descriptor_(descriptor) {}
  ~SystemFileLock() override { close(descriptor_); }
  SystemFileLock(const SystemFileLock&) = delete;
  SystemFileLock& operator=(const SystemFileLock&) = delete;

 private:
  int descriptor_;
};

class SystemOpenFile : public OpenFile {
 public:
  explicit SystemOpenFile(int descriptor) : descriptor_(descriptor) {}
  ~SystemOpenFile() override { close(descriptor_); }
  SystemOpenFile(const SystemOpenFile&) = delete;
  SystemOpenFile& operator=(const SystemOpenFile&) = delete;

  int64 Read(void* data, size_t count) override {
    return Answer(Retried([&] { return read(descriptor_, data, count); }));
  }
  int64 Write(const void* data, size_t count) override {
    return Answer(Retried([&] { return write(descriptor_, data, count); }));
  }
  int64 ReadAt(int64 position, void* data, size_t count) override {
    return Answer(Retried([&] { return pread(descriptor_, data, count, position); }));
  }
  int64 WriteAt(int64 position, const void* data, size_t count) override {
    return Answer(Retried([&] { return pwrite(descriptor_, data, count, position); }));
  }
  int64 Seek(int64 offset, int whence) override {
    return Answer(lseek(descriptor_, offset, whence));
  }
  int64 Size() override {
    struct stat info = {};
    return fstat(descriptor_, &info) < 0 ? -errno : info.st_size;
  }
  status_t SetSize(int64 size) override {
    return StatusOf(Retried([&] { return ftruncate(descriptor_, size); }));
  }
  status_t Sync() override {
    return StatusOf(Retried([&] { return fsync(descriptor_); }));
  }
  std::optional<FileStamp> Stamp() override {
    struct stat info = {};
    if (fstat(descriptor_, &info) < 0) return std::nullopt;
    return StampOf(info);
  }

 private:
  static int64 Answer(int64 result) { return result < 0 ? -errno : result; }

  int descriptor_;
};

int SystemFlags(uint32 mode) {
  // Non-blocking, so that a named pipe is found out instead of waited for.
  int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  const uint32 access = mode & OpenAccessMask;
  flags |= access == OpenReadOnly ? O_RDONLY : access == OpenWriteOnly ? O_WRONLY : O_RDWR;
  if (mode & (OpenCreate | OpenExclusive)) flags |= O_CREAT;
  if (mode & OpenExclusive) flags |= O_EXCL;
  if (mode & OpenAppend) flags |= O_APPEND;
  if ((mode & OpenErase) && access != OpenReadOnly) flags |= O_TRUNC;
  return flags;
}

std::string ParentOf(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  const size_t end = path.find_last_not_of('/', slash);
  return end == std::string::npos ? "/" : path.substr(0, end + 1);
}

std::string ReadLink(const std::string& path) {
  std::string target(PATH_MAX, '\0');
  const ssize_t length = readlink(path.c_str(), target.data(), target.size());
  target.resize(static_cast<size_t>(std::max<ssize_t>(length, 0)));
  return target;
}

std::string RealPath(const std::string& path) {
  const std::unique_ptr<char, decltype(&free)> real(realpath(path.c_str(), nullptr), &free);
  return real ? std::string(real.get()) : std::string();
}

// One step up the path: `folder` and `leaf` joined, the folder being canonical already.
std::string Step(const std::string& folder, const std::string& leaf) {
  if (leaf.empty() || leaf == ".") return folder;
  if (leaf == "..") return ParentOf(folder);
  return folder == "/" ? "/" + leaf : folder + "/" + leaf;
}

std::string CanonicalWithin(std::string path, int linksLeft) {
  if (std::string real = RealPath(path); !real.empty()) return real;
  const size_t end = path.find_last_not_of('/');
  if (end == std::string::npos || path == "." || path.size() > PATH_MAX) return path;
  path.resize(end + 1);
  // realpath failed on something missing: a link that leads nowhere, or a name not there yet.
  if (const std::string target = ReadLink(path); !target.empty() && linksLeft > 0)
    return CanonicalWithin(target.front() == '/' ? target : ParentOf(path) + "/" + target,
                           linksLeft - 1);
  const size_t slash = path.find_last_of('/');
  const std::string leaf = slash == std::string::npos ? path : path.substr(slash + 1);
  return Step(CanonicalWithin(ParentOf(path), linksLeft), leaf);
}

void CopyOneAttribute(const std::string& from, const std::string& to, const std::string& name,
                      status_t& status) {
  const ssize_t size = getxattr(from.c_str(), name.c_str(), nullptr, 0);
  std::string value(static_cast<size_t>(std::max<ssize_t>(size, 0)), '\0');
  const ssize_t got =
      size < 0 ? size : getxattr(from.c_str(), name.c_str(), value.data(), value.size());
  const int result =
      got < 0 ? -1 : setxattr(to.c_str(), name.c_str(), value.data(), static_cast<size_t>(got), 0);
  // Attributes outside "user." belong to the system, which may well keep them to itself.
  if (result < 0 && name.starts_with("user.") && errno != ENOTSUP && errno != ENODATA)
    status = -errno;
}

status_t CopyExtendedAttributes(const std::string& from, const std::string& to) {
  const ssize_t size = listxattr(from.c_str(), nullptr, 0);
  if (size < 0) return errno == ENOTSUP ? StatusOk : -errno;
  std::string names(static_cast<size_t>(size), '\0');
  const ssize_t got = listxattr(from.c_str(), names.data(), names.size());
  if (got < 0) return -errno;
  status_t status = StatusOk;
  for (size_t at = 0; at < static_cast<size_t>(got);) {
    const std::string name(names.c_str() + at);
    CopyOneAttribute(from, to, name, status);
    at += name.size() + 1;
  }
  return status;
}

// Gives owner and group as far as allowed and returns the mode that is still right then.
mode_t CopyOwner(const struct stat& info, const std::string& to) {
  mode_t mode = info.st_mode & 07777;
  if (chown(to.c_str(), info.st_uid, info.st_gid) == 0) return mode;
  struct stat now = {};
  if (stat(to.c_str(), &now) == 0 && now.st_uid != info.st_uid) mode &= ~mode_t{S_ISUID};
  const uid_t keepOwner = ~uid_t{0};
  if (chown(to.c_str(), keepOwner, info.st_gid) == 0) return mode;
  // Another group than meant: it may do no more than everybody.
  return (mode & ~mode_t{S_ISGID | 070}) | (mode & 07) << 3;
}

}  // namespace

std::unique_ptr<OpenFile> SystemFileDoor::Open(const std::string& path, uint32 mode,
                                               status_t& status, uint32 permissions) {
  const int descriptor =
      Retried([&] { return open(path.c_str(), SystemFlags(mode), permissions); });
  if (descriptor < 0) {
    status = -errno;
    return nullptr;
  }
  auto file = std::make_unique<SystemOpenFile>(descriptor);
  struct stat info = {};
  if (fstat(descriptor, &info) < 0)
    status = -errno;
  else if (S_ISREG(info.st_mode))
    status = StatusOk;
  else
    status = S_ISDIR(info.st_mode) ? -EISDIR : -EINVAL;
  if (status == StatusOk && (mode & OpenAtEnd))
    status = static_cast<status_t>(std::min<int64>(file->Seek(0, SEEK_END), 0));
  if (status != StatusOk) return nullptr;
  return file;
}

status_t SystemFileDoor::Rename(const std::string& from, const std::string& to) {
  return StatusOf(rename(from.c_str(), to.c_str()));
}

status_t SystemFileDoor::Remove(const std::string& path) { return StatusOf(remove(path.c_str())); }

status_t SystemFileDoor::SyncFolder(const std::string& folder) {
  const int descriptor =
      Retried([&] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
  // A folder that may be written but not read cannot be synchronised, and need not stop a save.
  if (descriptor < 0) return errno == EACCES ? StatusOk : -errno;
  const status_t status = StatusOf(Retried([&] { return fsync(descriptor); }));
  close(descriptor);
  // Some file systems have nothing to make durable in a folder.
  return status == -EINVAL ? StatusOk : status;
}

status_t SystemFileDoor::MakeFolders(const std::string& folder, uint32 permissions) {
  if (Kind(folder) == FileKind::Folder) return StatusOk;
  for (size_t slash = folder.find('/', 1);; slash = folder.find('/', slash + 1)) {
    const std::string part = folder.substr(0, slash);
    if (mkdir(part.c_str(), permissions) < 0) {
      const status_t status = errno == EEXIST ? -ENOTDIR : -errno;
      if (Kind(part) != FileKind::Folder) return status;
    }
    if (slash == std::string::npos) return StatusOk;
  }
}

status_t SystemFileDoor::CopyAttributes(const std::string& from, const std::string& to) {
  struct stat info = {};
  if (stat(from.c_str(), &info) < 0) return -errno;
  const mode_t mode = CopyOwner(info, to);
  const status_t status = CopyExtendedAttributes(from, to);
  if (status != StatusOk) return status;
  return StatusOf(chmod(to.c_str(), mode));
}

status_t SystemFileDoor::SetAttribute(const std::string& path, const std::string& name,
                                      std::string_view value) {
  return StatusOf(setxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0));
}

std::optional<std::string> SystemFileDoor::GetAttribute(const std::string& path,
                                                        const std::string& name) {
  for (;;) {
    const ssize_t size = getxattr(path.c_str(), name.c_str(), nullptr, 0);
    if (size < 0) return std::nullopt;
    if (size == 0) return std::string();
    std::string value(static_cast<size_t>(size), '\0');
    const ssize_t got = getxattr(path.c_str(), name.c_str(), value.data(), value.size());
    if (got < 0 && errno == ERANGE) continue;
    if (got < 0) return std::nullopt;
    value.resize(static_cast<size_t>(got));
    return value;
  }
}

status_t SystemFileDoor::RemoveAttribute(const std::string& path, const std::string& name) {
  return StatusOf(removexattr(path.c_str(), name.c_str()));
}

std::unique_ptr<FileLock> SystemFileDoor::Lock(const std::string& path, int32 milliseconds) {
  constexpr int32 Step = 5;
  const int descriptor =
      Retried([&] { return open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600); });
  if (descriptor < 0) return nullptr;
  auto lock = std::make_unique<SystemFileLock>(descriptor);
  while (flock(descriptor, LOCK_EX | LOCK_NB) < 0) {
    if ((errno != EWOULDBLOCK && errno != EINTR) || milliseconds <= 0) return nullptr;
    const timespec pause = {0, Step * 1'000'000};
    nanosleep(&pause, nullptr);
    milliseconds -= Step;
  }
  return lock;
}

FileKind SystemFileDoor::Kind(const std::string& path) {
  struct stat info = {};
  if (stat(path.c_str(), &info) < 0) return FileKind::Missing;
  if (S_ISREG(info.st_mode)) return FileKind::Regular;
  return S_ISDIR(info.st_mode) ? FileKind::Folder : FileKind::Other;
}

std::optional<FileStamp> SystemFileDoor::Stamp(const std::string& path) {
  struct stat info = {};
  if (stat(path.c_str(), &info) < 0) return std::nullopt;
  return StampOf(info);
}

std::string SystemFileDoor::Canonical(const std::string& path) {
  if (path.empty()) return path;
  return CanonicalWithin(path, MaxLinks);
}

std::optional<std::vector<std::string>> SystemFileDoor::List(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(folder.c_str()), &closedir);
  if (!stream) return std::nullopt;
  std::vector<std::string> names;
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(stream.get());
    if (!entry) break;
    std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(std::move(name));
  }
  if (errno != 0) return std::nullopt;
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace kestrin
