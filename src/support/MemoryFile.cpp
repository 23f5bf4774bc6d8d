#include "support/MemoryFile.h"

#include <errno.h>
#include <stdio.h>

#include <algorithm>
#include <cstring>

namespace kestrin {

int64 MemoryFile::Read(void* data, size_t count) {
  const int64 got = ReadAt(position_, data, count);
  if (got > 0) position_ += got;
  return got;
}

int64 MemoryFile::Write(const void* data, size_t count) {
  const int64 put = WriteAt(position_, data, count);
  if (put > 0) position_ += put;
  return put;
}

int64 MemoryFile::ReadAt(int64 position, void* data, size_t count) {
  if (position < 0) return -EINVAL;
  if (position >= Size()) return 0;
  const auto from = static_cast<size_t>(position);
  const size_t got = std::min(count, bytes_.size() - from);
  std::memcpy(data, bytes_.data() + from, got);
  return static_cast<int64>(got);
}

int64 MemoryFile::WriteAt(int64 position, const void* data, size_t count) {
  if (position < 0) return -EINVAL;
  if (count == 0) return 0;
  if (position > LargestSize || count > static_cast<size_t>(LargestSize - position)) return -EFBIG;
  const auto to = static_cast<size_t>(position);
  if (bytes_.size() < to + count) bytes_.resize(to + count);
  std::memcpy(bytes_.data() + to, data, count);
  return static_cast<int64>(count);
}

int64 MemoryFile::Seek(int64 offset, int whence) {
  const int64 from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? position_ : Size();
  int64 to = 0;
  if (__builtin_add_overflow(from, offset, &to) || to < 0) return -EINVAL;
  return position_ = to;
}

status_t MemoryFile::SetSize(int64 size) {
  if (size < 0) return -EINVAL;
  if (size > LargestSize) return -EFBIG;
  bytes_.resize(static_cast<size_t>(size));
  return StatusOk;
}

}  // namespace kestrin
