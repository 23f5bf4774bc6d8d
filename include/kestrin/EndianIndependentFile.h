// A buffered file whose first byte names the byte order of its numbers.
#pragma once

#include <bit>
#include <cstring>
#include <string_view>

#include "kestrin/BufferedFile.h"

namespace kestrin {

/// A new or erased file gets this machine's order; an existing one keeps its own, and numbers are
/// swapped on the way in and out. The marker byte is hidden: positions and sizes count from the
/// byte after it, but for Position(), which counts it. SetTo neither reads nor writes a marker.
class EndianIndependentFile : public BufferedFile {
 public:
  status_t InitCheck() const override;

  /// Transfers `count` consecutive numbers of `size` bytes (1, 2, 4 or 8). Returns the whole
  /// numbers transferred. The caller's array is unchanged by a write.
  int32 WriteNumber(void* values, uint8 size, int32 count);
  int32 ReadNumber(void* values, uint8 size, int32 count) {
    if (count == 1 && IsNumberSize(size))
      if (const uint8* bytes = TakeFromBuffer(size)) {
        CopyNumber(values, bytes, size);
        return 1;
      }
    return ReadNumbers(values, size, count);
  }

  /// Writes the text and its NUL; null is written as the empty text.
  status_t WriteString(const char* text);
  /// Reads up to and including a NUL. StatusFileError at the end of the file, StatusError when
  /// `max` bytes hold no NUL (the rest stays unread); `text` is terminated in every case.
  status_t ReadString(char* text, int32 max);
  /// The next bytes as far as they lie ready, numbers in the file's order, for whoever takes many
  /// values at one go; valid until the next call. There may be none before the end of the file.
  std::string_view Ready() const {
    if (BytesAhead() < 2) return {};
    return {reinterpret_cast<const char*>(Ahead()), static_cast<size_t>(BytesAhead()) - 1};
  }
  /// Consumes the first `count` of those.
  void TakeReady(size_t count) { TakeFromBuffer(static_cast<int32>(count)); }

  int32 WriteRaw(const void* data, size_t count);
  int32 ReadRaw(void* data, size_t count);

  /// What the marker says, for add-ons. A marker that is neither 0 nor 1 is of the foreign order.
  bool IsBigEndian() const { return fileByteOrder_ == 1; }
  bool IsNativeEndian() const { return fileByteOrder_ == hostByteOrder_; }

  int64 ReadAt(int64 position, void* data, size_t count) override;
  int64 WriteAt(int64 position, const void* data, size_t count) override;
  int64 Seek(int64 position, int whence) override;
  status_t SetSize(int64 size) override;

 protected:
  EndianIndependentFile(FileDoor& door, const std::string& path, uint32 openMode, int32 bufferSize);
  EndianIndependentFile(FileDoor& door, const std::string& folder, const std::string& name,
                        uint32 openMode, int32 bufferSize);
  EndianIndependentFile(std::unique_ptr<OpenFile> file, uint32 openMode, int32 bufferSize);

 private:
  static constexpr bool IsNumberSize(uint8 size) {
    return size == 1 || size == 2 || size == 4 || size == 8;
  }
  /// Copies one number, its bytes reversed when the file is of the other order.
  void CopyNumber(void* to, const void* from, uint8 size) const {
    if (IsNativeEndian() || size == 1)
      std::memcpy(to, from, size);
    else if (size == 4)
      CopySwapped<uint32>(to, from);
    else if (size == 2)
      CopySwapped<std::uint16_t>(to, from);
    else
      CopySwapped<uint64>(to, from);
  }
  template <typename Number>
  static void CopySwapped(void* to, const void* from) {
    Number number;
    std::memcpy(&number, from, sizeof number);
    if constexpr (sizeof number == 2)
      number = __builtin_bswap16(number);
    else if constexpr (sizeof number == 4)
      number = __builtin_bswap32(number);
    else
      number = __builtin_bswap64(number);
    std::memcpy(to, &number, sizeof number);
  }
  void InitEndianness(uint32 openMode);
  int32 ReadNumbers(void* values, uint8 size, int32 count);

  static constexpr uint8 hostByteOrder_ = std::endian::native == std::endian::big ? 1 : 0;

  uint8 fileByteOrder_ = hostByteOrder_;
  status_t markerStatus_ = StatusOk;
};

}  // namespace kestrin
