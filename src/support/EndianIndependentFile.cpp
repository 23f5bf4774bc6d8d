#include "kestrin/EndianIndependentFile.h"

#include <stdio.h>

#include <algorithm>
#include <utility>

#include "support/FileDoor.h"

namespace kestrin {

namespace {

constexpr int32 SwapBytes = 512;

int64 BehindMarker(int64 position) { return position == INT64_MAX ? position : position + 1; }

}  // namespace

EndianIndependentFile::EndianIndependentFile(FileDoor& door, const std::string& path,
                                             uint32 openMode, int32 bufferSize)
    : BufferedFile(door, path, openMode, bufferSize) {
  InitEndianness(openMode);
}

EndianIndependentFile::EndianIndependentFile(FileDoor& door, const std::string& folder,
                                             const std::string& name, uint32 openMode,
                                             int32 bufferSize)
    : BufferedFile(door, folder, name, openMode, bufferSize) {
  InitEndianness(openMode);
}

EndianIndependentFile::EndianIndependentFile(std::unique_ptr<OpenFile> file, uint32 openMode,
                                             int32 bufferSize)
    : BufferedFile(std::move(file), openMode, bufferSize) {
  InitEndianness(openMode);
}

status_t EndianIndependentFile::InitCheck() const {
  const status_t opened = BufferedFile::InitCheck();
  return opened != StatusOk ? opened : markerStatus_;
}

void EndianIndependentFile::InitEndianness(uint32 openMode) {
  if (BufferedFile::InitCheck() != StatusOk) return;
  if (openMode & OpenAtEnd) {
    const int64 start = BufferedFile::Seek(0, SEEK_SET);
    if (start < 0) {
      markerStatus_ = static_cast<status_t>(start);
      return;
    }
  }
  const uint32 access = openMode & OpenAccessMask;
  const bool erased = openMode & OpenErase;
  const bool mayHaveMarker = access == OpenReadOnly || (access == OpenReadWrite && !erased) ||
                             (access == OpenWriteOnly && (openMode & OpenAtEnd) && !erased);
  bool known = mayHaveMarker && BufferedRead(&fileByteOrder_, 1) == 1;
  if (!known && (access == OpenWriteOnly || access == OpenReadWrite)) {
    fileByteOrder_ = hostByteOrder_;
    known = BufferedWrite(&fileByteOrder_, 1) == 1;
  }
  if (!known) {
    markerStatus_ = StatusFileError;
    return;
  }
  // A size that is not 0 is reported as a failure; callers that append must know that.
  if (openMode & OpenAtEnd) markerStatus_ = static_cast<status_t>(BufferedFile::Seek(0, SEEK_END));
}

int32 EndianIndependentFile::WriteNumber(void* values, uint8 size, int32 count) {
  if (!IsNumberSize(size) || count < 1) return 0;
  if (size == 1 || IsNativeEndian())
    return BufferedWrite(values, size_t{size} * static_cast<size_t>(count)) / size;
  uint8 swapped[SwapBytes];
  const uint8* from = static_cast<const uint8*>(values);
  const int64 total = int64{size} * count;
  int64 done = 0;
  while (done < total) {
    const auto part = static_cast<int32>(std::min<int64>(total - done, SwapBytes));
    for (int32 at = 0; at < part; at += size) CopyNumber(swapped + at, from + done + at, size);
    const int32 written = BufferedWrite(swapped, static_cast<size_t>(part));
    done += written;
    if (written < part) break;
  }
  return static_cast<int32>(done / size);
}

int32 EndianIndependentFile::ReadNumbers(void* values, uint8 size, int32 count) {
  if (!IsNumberSize(size) || count < 1) return 0;
  const int32 numbers = BufferedRead(values, size_t{size} * static_cast<size_t>(count)) / size;
  if (size == 1 || IsNativeEndian()) return numbers;
  uint8* at = static_cast<uint8*>(values);
  for (int32 i = 0; i < numbers; ++i, at += size) std::reverse(at, at + size);
  return numbers;
}

status_t EndianIndependentFile::WriteString(const char* text) {
  if (!text) text = "";
  const size_t size = std::strlen(text) + 1;
  if (size > INT32_MAX) return StatusFileError;
  return BufferedWrite(text, size) == static_cast<int32>(size) ? StatusOk : StatusFileError;
}

status_t EndianIndependentFile::ReadString(char* text, int32 max) {
  for (int32 stored = 0; stored < max;) {
    char* to = text + stored;
    // An empty buffer is filled by reading one byte; what then lies in it is taken up to the NUL.
    int32 wanted = 1;
    if (BytesAhead() > 0) {
      wanted = std::min(BytesAhead(), max - stored);
      if (const void* end = std::memchr(Ahead(), '\0', static_cast<size_t>(wanted)))
        wanted = static_cast<int32>(static_cast<const uint8*>(end) - Ahead()) + 1;
    }
    if (const uint8* bytes = TakeFromBuffer(wanted)) {
      std::memcpy(to, bytes, static_cast<size_t>(wanted));
    } else if (BufferedRead(to, static_cast<size_t>(wanted)) < wanted) {
      *to = '\0';
      return StatusFileError;
    }
    stored += wanted;
    if (text[stored - 1] == '\0') return StatusOk;
  }
  if (max > 0) text[max - 1] = '\0';
  return StatusError;
}

int32 EndianIndependentFile::WriteRaw(const void* data, size_t count) {
  return BufferedWrite(data, count);
}

int32 EndianIndependentFile::ReadRaw(void* data, size_t count) { return BufferedRead(data, count); }

int64 EndianIndependentFile::ReadAt(int64 position, void* data, size_t count) {
  return BufferedFile::ReadAt(BehindMarker(position), data, count);
}

int64 EndianIndependentFile::WriteAt(int64 position, const void* data, size_t count) {
  return BufferedFile::WriteAt(BehindMarker(position), data, count);
}

int64 EndianIndependentFile::Seek(int64 position, int whence) {
  return BufferedFile::Seek(BehindMarker(position), whence) - 1;
}

status_t EndianIndependentFile::SetSize(int64 size) {
  return BufferedFile::SetSize(BehindMarker(size));
}

}  // namespace kestrin
