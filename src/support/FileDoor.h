// The one door to the file system. Everything that reads or writes a person's data goes through it,
// so that tests can keep files in memory and fail at any call.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

/// What tells whether a file is still the one that was read.
struct FileStamp {
  uint64 device = 0, inode = 0;
  int64 size = 0;
  int64 modifiedNanoseconds = 0;
  bool operator==(const FileStamp&) const = default;
  /// Whether both are of one file, whatever happened to it in between.
  bool IsSameFile(const FileStamp& other) const {
    return device == other.device && inode == other.inode;
  }
};

/// An open file. Calls return bytes transferred or a new position, or -errno.
class OpenFile {
 public:
  virtual ~OpenFile() = default;
  virtual int64 Read(void* data, size_t count) = 0;
  virtual int64 Write(const void* data, size_t count) = 0;
  virtual int64 ReadAt(int64 position, void* data, size_t count) = 0;
  virtual int64 WriteAt(int64 position, const void* data, size_t count) = 0;
  virtual int64 Seek(int64 offset, int whence) = 0;
  virtual int64 Size() = 0;
  virtual status_t SetSize(int64 size) = 0;
  virtual status_t Sync() = 0;
  virtual std::optional<FileStamp> Stamp() = 0;
};

/// Held until it is destroyed.
class FileLock {
 public:
  virtual ~FileLock() = default;
};

enum class FileKind { Missing, Regular, Folder, Other };

class FileDoor {
 public:
  virtual ~FileDoor() = default;

  /// Opens with the modes of kestrin/BufferedFile.h; a created file gets `permissions` less the
  /// umask, and with OpenExclusive below must not exist. Null on failure, with -errno in `status`.
  virtual std::unique_ptr<OpenFile> Open(const std::string& path, uint32 mode, status_t& status,
                                         uint32 permissions = 0666) = 0;
  /// StatusOk or -errno, all of these.
  virtual status_t Rename(const std::string& from, const std::string& to) = 0;
  virtual status_t Remove(const std::string& path) = 0;
  virtual status_t SyncFolder(const std::string& folder) = 0;
  virtual status_t MakeFolders(const std::string& folder, uint32 permissions = 0700) = 0;
  /// Gives `to` the owner, mode and extended attributes of `from`, as far as the system allows.
  virtual status_t CopyAttributes(const std::string& from, const std::string& to) = 0;
  virtual status_t SetAttribute(const std::string& path, const std::string& name,
                                std::string_view value) = 0;
  virtual std::optional<std::string> GetAttribute(const std::string& path,
                                                  const std::string& name) = 0;
  virtual status_t RemoveAttribute(const std::string& path, const std::string& name) = 0;
  /// An advisory lock on the file, which is made when it is missing. Waits that long at most; null
  /// when somebody else keeps it.
  virtual std::unique_ptr<FileLock> Lock(const std::string& path, int32 milliseconds) = 0;

  /// Links followed.
  virtual FileKind Kind(const std::string& path) = 0;
  virtual std::optional<FileStamp> Stamp(const std::string& path) = 0;
  /// Absolute, without links, "." or ".."; a last component that does not exist is kept.
  virtual std::string Canonical(const std::string& path) = 0;
  /// Names in the folder, sorted, without "." and "..". Nothing when it cannot be read.
  virtual std::optional<std::vector<std::string>> List(const std::string& folder) = 0;
};

/// Open mode bit: fail when the file exists.
inline constexpr uint32 OpenExclusive = 0x100;
/// Open mode bit: every write goes to the end, wherever that is by then.
inline constexpr uint32 OpenAppend = 0x1000;

/// The system's own files.
class SystemFileDoor : public FileDoor {
 public:
  std::unique_ptr<OpenFile> Open(const std::string& path, uint32 mode, status_t& status,
                                 uint32 permissions) override;
  status_t Rename(const std::string& from, const std::string& to) override;
  status_t Remove(const std::string& path) override;
  status_t SyncFolder(const std::string& folder) override;
  status_t MakeFolders(const std::string& folder, uint32 permissions) override;
  status_t CopyAttributes(const std::string& from, const std::string& to) override;
  status_t SetAttribute(const std::string& path, const std::string& name,
                        std::string_view value) override;
  std::optional<std::string> GetAttribute(const std::string& path,
                                          const std::string& name) override;
  status_t RemoveAttribute(const std::string& path, const std::string& name) override;
  std::unique_ptr<FileLock> Lock(const std::string& path, int32 milliseconds) override;
  FileKind Kind(const std::string& path) override;
  std::optional<FileStamp> Stamp(const std::string& path) override;
  std::string Canonical(const std::string& path) override;
  std::optional<std::vector<std::string>> List(const std::string& folder) override;
};

}  // namespace kestrin
