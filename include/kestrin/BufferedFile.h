// A file with a private read/write buffer.
#pragma once

#include <memory>
#include <string>

#include "kestrin/Types.h"

namespace kestrin {

class FileDoor;
class OpenFile;

/// Open modes, to be joined with |. The low two bits are the access.
inline constexpr uint32 OpenReadOnly = 0, OpenWriteOnly = 1, OpenReadWrite = 2;
inline constexpr uint32 OpenAccessMask = 3;
inline constexpr uint32 OpenCreate = 0x200, OpenErase = 0x400, OpenAtEnd = 0x800;

/// One thread at a time. Counts are in bytes. The destructor does not flush: a writer calls
/// FlushBuffer last, or loses what is pending.
class BufferedFile {
 public:
  BufferedFile(const BufferedFile&) = delete;
  BufferedFile& operator=(const BufferedFile&) = delete;
  virtual ~BufferedFile();

  /// StatusOk, or why the file could not be opened.
  virtual status_t InitCheck() const { return initStatus_; }

  /// What was transferred; less than `count` means the end of the file or a failure.
  int32 BufferedRead(void* data, size_t count);
  int32 BufferedWrite(const void* data, size_t count);
  /// Copies up to `count` bytes that lie ahead without consuming them; 0 when `count` is larger
  /// than the buffer.
  int32 BufferedPreview(void* data, size_t count);
  /// Reads a line ended by CR, CR LF, LF or NUL, of at most `max` - 1 characters, NUL-terminated.
  /// Returns the bytes consumed.
  int32 BufferedReadLine(void* line, size_t max);
  /// Passes pending bytes on, or seeks back over what was read ahead. StatusFileError on failure.
  status_t FlushBuffer();
  /// Makes what was flushed durable.
  status_t Sync();
  /// Why a write was not whole: the negative errno of the last one that failed, else StatusOk.
  status_t WriteFailure() const { return writeFailure_; }

  // The plain operations; each synchronises the buffer first and returns 0 when that fails
  // (SetSize and SetTo: StatusFileError).
  int64 Read(void* data, size_t count);
  int64 Write(const void* data, size_t count);
  virtual int64 ReadAt(int64 position, void* data, size_t count);
  virtual int64 WriteAt(int64 position, const void* data, size_t count);
  /// `whence` is SEEK_SET, SEEK_CUR or SEEK_END. Returns the new position.
  virtual int64 Seek(int64 position, int whence);
  virtual status_t SetSize(int64 size);
  status_t SetTo(const std::string& path, uint32 openMode);
  status_t SetTo(const std::string& folder, const std::string& name, uint32 openMode);

  /// Where the next byte is read or written, counted from the file's first byte (in derived
  /// classes too).
  int64 Position();

  /// The bytes between the position and the end of the file: what a reader may still get. The
  /// size is asked for once, and again after a write or a seek.
  int64 BytesLeft() {
    return bytesBehindBuffer_ >= 0 ? bytesBehindBuffer_ + (fill_ - position_) : FindBytesLeft();
  }

 protected:
  // The application opens files; an add-on is handed one.
  /// Opens `path` (in `folder`, for the second form) through `door`, which must outlive the file.
  BufferedFile(FileDoor& door, const std::string& path, uint32 openMode, int32 bufferSize);
  BufferedFile(FileDoor& door, const std::string& folder, const std::string& name, uint32 openMode,
               int32 bufferSize);
  /// Takes over a file that is open already and has no path: SetTo fails.
  BufferedFile(std::unique_ptr<OpenFile> file, uint32 openMode, int32 bufferSize);

  bool IsReadable() const;
  bool IsWritable() const;

  /// Unread bytes in the buffer; below 1 when there are none.
  int32 BytesAhead() const { return fill_ - position_; }
  const uint8* Ahead() const { return buffer_.get() + position_; }
  /// Consumes `count` bytes of the buffer and returns them, if at least one more follows them;
  /// else null, with nothing changed.
  const uint8* TakeFromBuffer(int32 count) {
    if (count >= BytesAhead()) return nullptr;
    const uint8* taken = Ahead();
    position_ += count;
    return taken;
  }

 private:
  void AllocAndInitBuffer();
  bool Synchronise();
  bool WritePending();
  bool SeekBack();
  void EmptyBuffer();
  int32 ReadFromFile(uint8* data, int32 count);
  int32 WriteToFile(const uint8* data, int32 count);
  int64 FindBytesLeft();

  FileDoor* door_ = nullptr;
  std::unique_ptr<OpenFile> file_;
  std::unique_ptr<uint8[]> buffer_;
  int32 bufferSize_ = 0;
  // Reading: the buffer holds fill_ bytes and position_ is the next unread one; both are 0 when
  // nothing is unread. Writing: fill_ is 0 and position_ bytes wait.
  int32 fill_ = 0;
  int32 position_ = 0;
  // What the file holds beyond the buffer, while reading; below 0 when that must be asked for.
  int64 bytesBehindBuffer_ = -1;
  uint32 openMode_ = 0;
  status_t initStatus_ = StatusOk;
  status_t writeFailure_ = StatusOk;
  bool dirty_ = false;
};

}  // namespace kestrin
