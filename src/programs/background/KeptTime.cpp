#include "programs/background/KeptTime.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>

namespace kestrin {

namespace {

constexpr char FileName[] = "next-event";
constexpr char NewFileName[] = "next-event.new";

status_t RemoveIfThere(int folder, const char* name) {
  return unlinkat(folder, name, 0) == 0 || errno == ENOENT ? StatusOk : -errno;
}

status_t WriteWhole(int folder, const char* name, const KeptTimeText& text) {
  const int file = openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file < 0) return -errno;
  status_t status = StatusOk;
  const ssize_t written = write(file, text.bytes, text.length);
  if (written < 0)
    status = -errno;
  else if (static_cast<size_t>(written) != text.length)
    status = -ENOSPC;
  else if (fsync(file) != 0)
    status = -errno;
  if (close(file) != 0 && status == StatusOk) status = -errno;
  return status;
}

}  // namespace

KeptTimeText FormatKeptTime(int32 when) {
  KeptTimeText text;
  const std::to_chars_result end = std::to_chars(text.bytes, text.bytes + sizeof text.bytes, when);
  *end.ptr = '\n';
  text.length = static_cast<size_t>(end.ptr - text.bytes) + 1;
  return text;
}

std::optional<int32> ParseKeptTime(std::string_view text) {
  int32 when = 0;
  std::from_chars(text.data(), text.data() + text.size(), when);
  const KeptTimeText expected = FormatKeptTime(when);
  if (text != std::string_view(expected.bytes, expected.length)) return std::nullopt;
  return when;
}

KeptTimeFile::~KeptTimeFile() {
  if (folder_ >= 0) close(folder_);
}

status_t KeptTimeFile::Open(const char* runtimeFolder) {
  if (!runtimeFolder || runtimeFolder[0] != '/') return -ENOENT;
  const int parent = open(runtimeFolder, O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (parent < 0) return -errno;
  status_t status = StatusOk;
  if (mkdirat(parent, "kestrin", 0700) != 0 && errno != EEXIST) status = -errno;
  if (status == StatusOk) {
    folder_ = openat(parent, "kestrin", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder_ < 0) status = -errno;
  }
  close(parent);
  return status;
}

status_t KeptTimeFile::Read(int32& when) {
  if (folder_ < 0) return -ENOENT;
  const int file = openat(folder_, FileName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return -errno;
  char bytes[32];
  const ssize_t count = read(file, bytes, sizeof bytes);
  const status_t status = count < 0 ? -errno : StatusOk;
  close(file);
  if (status != StatusOk) return status;
  held_ = ParseKeptTime({bytes, static_cast<size_t>(count)});
  if (!held_) return -EBADMSG;
  when = *held_;
  return StatusOk;
}

status_t KeptTimeFile::Write(int32 when) {
  if (folder_ < 0 || held_ == when) return StatusOk;
  const status_t status = Replace(when);
  if (status == StatusOk) {
    held_ = when;
  } else {
    // An old moment would be worse than none.
    held_.reset();
    RemoveIfThere(folder_, FileName);
  }
  return status;
}

status_t KeptTimeFile::Replace(int32 when) const {
  status_t status = RemoveIfThere(folder_, NewFileName);
  if (status == StatusOk) status = WriteWhole(folder_, NewFileName, FormatKeptTime(when));
  if (status == StatusOk && renameat(folder_, NewFileName, folder_, FileName) != 0) status = -errno;
  if (status == StatusOk && fsync(folder_) != 0) status = -errno;
  return status;
}

}  // namespace kestrin
