// A door in front of another, at which the n-th call fails. For loops over a whole save:
//
//   for (int n = 1;; ++n) {
//     MemoryFileDoor disk; FailingFileDoor door(disk, n); Save(door);
//     if (!door.HasFailed()) break;  // n is beyond the last call
//     ...
//   }
#pragma once

#include <errno.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/FileDoor.h"

namespace kestrin {

class FailingFileDoor final : public FileDoor {
 public:
  /// Counts calls from 1; `failAt` 0 never fails.
  explicit FailingFileDoor(FileDoor& inner, int failAt = 0, status_t error = -EIO)
      : FailAt(failAt), Error(error), inner_(inner) {}

  int FailAt;
  status_t Error;
  bool ShortWrite = false;    ///< a write takes half of its bytes instead of none
  bool FailFromThen = false;  ///< every later call fails too and does nothing: nobody is there
  int Count = 0;              ///< calls so far
  std::string Failed;         ///< what was failed first: "open", "write", "rename" and so on
  /// Called when the first call has failed, a short write after its half; may be empty.
  std::function<void()> WhenFailed;

  /// Somebody else works on the files around a rename; may be empty.
  std::function<void(const std::string& when)> OnRename;
  std::function<void()> BeforeWrite;  ///< called once, before the next write; may be empty

  void FailAgain(int failAt) { FailAt = failAt, Count = 0, Failed.clear(); }
  bool HasFailed() const { return !Failed.empty(); }

  std::unique_ptr<OpenFile> Open(const std::string& path, uint32 mode, status_t& status,
                                 uint32 permissions = 0666) override {
    if (Fails("open")) return status = Error, nullptr;
    auto file = inner_.Open(path, mode, status, permissions);
    if (!file) return nullptr;
    return std::make_unique<Handle>(*this, std::move(file));
  }
  status_t Rename(const std::string& from, const std::string& to) override {
    if (OnRename) OnRename("before");
    const status_t status = Fails("rename") ? Error : inner_.Rename(from, to);
    if (OnRename) OnRename("after");
    return status;
  }
  status_t Remove(const std::string& path) override {
    return Fails("remove") ? Error : inner_.Remove(path);
  }
  status_t SyncFolder(const std::string& folder) override {
    return Fails("sync folder") ? Error : inner_.SyncFolder(folder);
  }
  status_t MakeFolders(const std::string& folder, uint32 permissions = 0700) override {
    return Fails("make folders") ? Error : inner_.MakeFolders(folder, permissions);
  }
  status_t CopyAttributes(const std::string& from, const std::string& to) override {
    return Fails("copy attributes") ? Error : inner_.CopyAttributes(from, to);
  }
  status_t SetAttribute(const std::string& path, const std::string& name,
                        std::string_view value) override {
    return Fails("set attribute") ? Error : inner_.SetAttribute(path, name, value);
  }
  std::optional<std::string> GetAttribute(const std::string& path,
                                          const std::string& name) override {
    return Fails("get attribute") ? std::nullopt : inner_.GetAttribute(path, name);
  }
  status_t RemoveAttribute(const std::string& path, const std::string& name) override {
    return Fails("remove attribute") ? Error : inner_.RemoveAttribute(path, name);
  }
  std::unique_ptr<FileLock> Lock(const std::string& path, int32 milliseconds) override {
    return Fails("lock") ? nullptr : inner_.Lock(path, milliseconds);
  }
  // Where something lies is always answered; only doing something with it fails.
  FileKind Kind(const std::string& path) override { return inner_.Kind(path); }
  std::string Canonical(const std::string& path) override { return inner_.Canonical(path); }
  std::optional<FileStamp> Stamp(const std::string& path) override {
    return Fails("stamp") ? std::nullopt : inner_.Stamp(path);
  }
  std::optional<std::vector<std::string>> List(const std::string& folder) override {
    return Fails("list") ? std::nullopt : inner_.List(folder);
  }

 private:
  class Handle final : public OpenFile {
   public:
    Handle(FailingFileDoor& door, std::unique_ptr<OpenFile> file)
        : door_(door), file_(std::move(file)) {}
    int64 Read(void* data, size_t count) override {
      return door_.Fails("read") ? door_.Error : file_->Read(data, count);
    }
    int64 Write(const void* data, size_t count) override {
      if (const auto before = std::exchange(door_.BeforeWrite, nullptr)) before();
      const bool first = !door_.HasFailed();
      if (!door_.Counts("write")) return file_->Write(data, count);
      const bool isHalf = door_.ShortWrite && (first || !door_.FailFromThen);
      const int64 written = isHalf ? file_->Write(data, count / 2) : door_.Error;
      if (first && door_.WhenFailed) door_.WhenFailed();
      return written;
    }
    int64 ReadAt(int64 position, void* data, size_t count) override {
      return door_.Fails("read") ? door_.Error : file_->ReadAt(position, data, count);
    }
    int64 WriteAt(int64 position, const void* data, size_t count) override {
      if (!door_.Fails("write")) return file_->WriteAt(position, data, count);
      return door_.ShortWrite ? file_->WriteAt(position, data, count / 2) : door_.Error;
    }
    int64 Seek(int64 offset, int whence) override {
      return door_.Fails("seek") ? door_.Error : file_->Seek(offset, whence);
    }
    int64 Size() override { return door_.Fails("size") ? door_.Error : file_->Size(); }
    status_t SetSize(int64 size) override {
      return door_.Fails("set size") ? door_.Error : file_->SetSize(size);
    }
    status_t Sync() override { return door_.Fails("sync") ? door_.Error : file_->Sync(); }
    std::optional<FileStamp> Stamp() override { return file_->Stamp(); }

   private:
    FailingFileDoor& door_;
    std::unique_ptr<OpenFile> file_;
  };

  bool Counts(const char* what) {
    ++Count;
    const bool fails = FailAt > 0 && (FailFromThen ? Count >= FailAt : Count == FailAt);
    if (fails && Failed.empty()) Failed = what;
    return fails;
  }
  bool Fails(const char* what) {
    const bool first = !HasFailed();
    const bool fails = Counts(what);
    if (fails && first && WhenFailed) WhenFailed();
    return fails;
  }

  FileDoor& inner_;
};

}  // namespace kestrin
