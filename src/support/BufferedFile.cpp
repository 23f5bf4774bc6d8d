#include "kestrin/BufferedFile.h"

#include <errno.h>
#include <stdio.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "support/FileDoor.h"

namespace kestrin {

namespace {

std::string Joined(const std::string& folder, const std::string& name) {
  if (folder.empty() || name.starts_with('/')) return name;
  return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

int32 AsCount(size_t count) { return static_cast<int32>(std::min<size_t>(count, INT32_MAX)); }

}  // namespace

BufferedFile::BufferedFile(FileDoor& door, const std::string& path, uint32 openMode,
                           int32 bufferSize)
    : door_(&door), bufferSize_(std::max(bufferSize, 1)), openMode_(openMode) {
  file_ = door_->Open(path, openMode, initStatus_);
  AllocAndInitBuffer();
}

BufferedFile::BufferedFile(FileDoor& door, const std::string& folder, const std::string& name,
                           uint32 openMode, int32 bufferSize)
    : BufferedFile(door, Joined(folder, name), openMode, bufferSize) {}

BufferedFile::BufferedFile(std::unique_ptr<OpenFile> file, uint32 openMode, int32 bufferSize)
    : file_(std::move(file)), bufferSize_(std::max(bufferSize, 1)), openMode_(openMode) {
  AllocAndInitBuffer();
}

BufferedFile::~BufferedFile() = default;

void BufferedFile::AllocAndInitBuffer() {
  if (initStatus_ != StatusOk) return;
  if (!buffer_) buffer_ = std::make_unique<uint8[]>(static_cast<size_t>(bufferSize_));
  EmptyBuffer();
}

void BufferedFile::EmptyBuffer() {
  fill_ = position_ = 0;
  bytesBehindBuffer_ = -1;
  dirty_ = false;
}

bool BufferedFile::IsReadable() const {
  return file_ && (openMode_ & OpenAccessMask) != OpenWriteOnly;
}

bool BufferedFile::IsWritable() const {
  return file_ && (openMode_ & OpenAccessMask) != OpenReadOnly;
}

int32 BufferedFile::ReadFromFile(uint8* data, int32 count) {
  const int64 got = std::max<int64>(file_->Read(data, static_cast<size_t>(count)), 0);
  if (bytesBehindBuffer_ >= 0)
    bytesBehindBuffer_ = got < count ? 0 : std::max<int64>(bytesBehindBuffer_ - got, 0);
  return static_cast<int32>(got);
}

int32 BufferedFile::WriteToFile(const uint8* data, int32 count) {
  bytesBehindBuffer_ = -1;
  const int64 written = file_->Write(data, static_cast<size_t>(count));
  if (written < count)  // the disk took a part of it: it is full
    writeFailure_ = written < 0 ? static_cast<status_t>(written) : -ENOSPC;
  return static_cast<int32>(std::max<int64>(written, 0));
}

bool BufferedFile::WritePending() {
  if (WriteToFile(buffer_.get(), position_) < position_) return false;
  EmptyBuffer();
  return true;
}

bool BufferedFile::SeekBack() {
  if (file_->Seek(position_ - fill_, SEEK_CUR) < 0) return false;
  EmptyBuffer();
  return true;
}

bool BufferedFile::Synchronise() {
  bytesBehindBuffer_ = -1;
  if (dirty_) return WritePending();
  return position_ == 0 || SeekBack();
}

int32 BufferedFile::BufferedWrite(const void* data, size_t count) {
  if (!IsWritable()) return 0;
  if (!dirty_ && position_ != 0 && !SeekBack()) return 0;
  bytesBehindBuffer_ = -1;
  const uint8* from = static_cast<const uint8*>(data);
  const int32 wanted = AsCount(count);
  for (int32 done = 0; done < wanted;) {
    if (position_ == 0 && wanted - done >= bufferSize_) {
      // Whole buffers need not pass through ours.
      const int32 whole = (wanted - done) / bufferSize_ * bufferSize_;
      const int32 taken = WriteToFile(from + done, whole);
      done += taken;
      if (taken == whole) continue;
      EmptyBuffer();
      return done;
    }
    const int32 part = std::min(wanted - done, bufferSize_ - position_);
    std::memcpy(buffer_.get() + position_, from + done, static_cast<size_t>(part));
    position_ += part;
    done += part;
    if (position_ < bufferSize_) continue;
    const int32 lost = bufferSize_ - WriteToFile(buffer_.get(), bufferSize_);
    EmptyBuffer();
    // Below 0 when bytes of earlier calls are lost too.
    if (lost > 0) return done - lost;
  }
  dirty_ = position_ > 0;
  return wanted;
}

int32 BufferedFile::BufferedRead(void* data, size_t count) {
  if (!IsReadable()) return 0;
  if (dirty_ && !WritePending()) return 0;
  uint8* to = static_cast<uint8*>(data);
  const int32 wanted = AsCount(count);
  for (int32 done = 0; done < wanted;) {
    if (position_ == 0 && wanted - done >= bufferSize_) {
      const int32 whole = (wanted - done) / bufferSize_ * bufferSize_;
      const int32 got = ReadFromFile(to + done, whole);
      done += got;
      if (got < whole) return done;
      continue;
    }
    if (position_ == 0) {
      fill_ = ReadFromFile(buffer_.get(), bufferSize_);
      if (fill_ == 0) return done;
    }
    const int32 part = std::min(wanted - done, BytesAhead());
    std::memcpy(to + done, Ahead(), static_cast<size_t>(part));
    position_ += part;
    done += part;
    if (position_ < fill_) continue;
    position_ = fill_ = 0;
  }
  return wanted;
}

int32 BufferedFile::BufferedPreview(void* data, size_t count) {
  if (!IsReadable() || count > static_cast<size_t>(bufferSize_)) return 0;
  if (dirty_ && !WritePending()) return 0;
  const int32 wanted = AsCount(count);
  if (position_ == 0) {
    // The place before the position is left free: a position of 0 would mean an empty buffer.
    const int32 got = ReadFromFile(buffer_.get() + 1, bufferSize_ - 1);
    if (got == 0) return 0;
    position_ = 1;
    fill_ = got + 1;
  } else if (BytesAhead() < wanted) {
    const int32 kept = BytesAhead() + 1;
    std::memmove(buffer_.get(), Ahead() - 1, static_cast<size_t>(kept));
    position_ = 1;
    fill_ = kept + ReadFromFile(buffer_.get() + kept, bufferSize_ - kept);
  }
  const int32 shown = std::min(wanted, BytesAhead());
  std::memcpy(data, Ahead(), static_cast<size_t>(shown));
  return shown;
}

int32 BufferedFile::BufferedReadLine(void* line, size_t max) {
  if (max == 0) return 0;
  char* text = static_cast<char*>(line);
  int32 consumed = 0;
  for (size_t kept = 0; kept + 1 < max; ++kept) {
    char& byte = text[kept];
    if (BufferedRead(&byte, 1) < 1) {
      byte = '\0';
      return consumed;
    }
    ++consumed;
    if (byte == '\r') {
      char next = 0;
      if (BufferedPreview(&next, 1) == 1 && next == '\n') consumed += BufferedRead(&next, 1);
      byte = '\0';
    }
    if (byte == '\n') byte = '\0';
    if (byte == '\0') return consumed;
  }
  text[max - 1] = '\0';
  return consumed;
}

status_t BufferedFile::FlushBuffer() { return Synchronise() ? StatusOk : StatusFileError; }

status_t BufferedFile::Sync() { return file_ ? file_->Sync() : initStatus_; }

int64 BufferedFile::Read(void* data, size_t count) {
  if (!Synchronise()) return 0;
  return file_ ? file_->Read(data, count) : initStatus_;
}

int64 BufferedFile::Write(const void* data, size_t count) {
  if (!Synchronise()) return 0;
  return file_ ? file_->Write(data, count) : initStatus_;
}

int64 BufferedFile::ReadAt(int64 position, void* data, size_t count) {
  if (!Synchronise()) return 0;
  return file_ ? file_->ReadAt(position, data, count) : initStatus_;
}

int64 BufferedFile::WriteAt(int64 position, const void* data, size_t count) {
  if (!Synchronise()) return 0;
  return file_ ? file_->WriteAt(position, data, count) : initStatus_;
}

int64 BufferedFile::Seek(int64 position, int whence) {
  if (!Synchronise()) return 0;
  return file_ ? file_->Seek(position, whence) : initStatus_;
}

status_t BufferedFile::SetSize(int64 size) {
  if (!Synchronise()) return StatusFileError;
  return file_ ? file_->SetSize(size) : initStatus_;
}

status_t BufferedFile::SetTo(const std::string& path, uint32 openMode) {
  if (!door_ || !Synchronise()) return StatusFileError;
  file_.reset();
  openMode_ = openMode;
  file_ = door_->Open(path, openMode, initStatus_);
  AllocAndInitBuffer();
  return initStatus_;
}

status_t BufferedFile::SetTo(const std::string& folder, const std::string& name, uint32 openMode) {
  return SetTo(Joined(folder, name), openMode);
}

int64 BufferedFile::Position() {
  if (!file_) return 0;
  const int64 inFile = file_->Seek(0, SEEK_CUR);
  return inFile < 0 ? inFile : inFile + position_ - fill_;
}

int64 BufferedFile::FindBytesLeft() {
  if (!file_) return 0;
  const int64 size = file_->Size();
  const int64 position = Position();
  if (size < 0 || position < 0) return 0;
  const int64 left = std::max<int64>(size - position, 0);
  if (!dirty_) bytesBehindBuffer_ = std::max<int64>(left - BytesAhead(), 0);
  return left;
}

}  // namespace kestrin
