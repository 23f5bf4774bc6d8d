// A file without a name that is gone when it is closed.
#pragma once

#include <string>

#include "support/FileDoor.h"

namespace kestrin {

/// Behaves like a file on disk that may grow to LargestSize; what goes beyond fails with -EFBIG.
class MemoryFile final : public OpenFile {
 public:
  static constexpr int64 LargestSize = int64{64} << 20;

  int64 Read(void* data, size_t count) override;
  int64 Write(const void* data, size_t count) override;
  int64 ReadAt(int64 position, void* data, size_t count) override;
  int64 WriteAt(int64 position, const void* data, size_t count) override;
  int64 Seek(int64 offset, int whence) override;
  int64 Size() override { return static_cast<int64>(bytes_.size()); }
  status_t SetSize(int64 size) override;
  status_t Sync() override { return StatusOk; }
  std::optional<FileStamp> Stamp() override { return std::nullopt; }

 private:
  std::string bytes_;
  int64 position_ = 0;
};

}  // namespace kestrin
