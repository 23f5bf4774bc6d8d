// The file that carries the pending moment over the deliverer's own death.
#pragma once

#include <optional>
#include <string_view>

#include "kestrin/Types.h"

namespace kestrin {

/// The file's whole content for a moment, or for 0, nothing pending: decimal digits and a newline.
struct KeptTimeText {
  char bytes[16] = {};
  size_t length = 0;
};
KeptTimeText FormatKeptTime(int32 when);

/// The moment that `text` holds; nothing when it is not exactly what FormatKeptTime writes.
std::optional<int32> ParseKeptTime(std::string_view text);

class KeptTimeFile {
 public:
  KeptTimeFile() = default;
  ~KeptTimeFile();
  KeptTimeFile(const KeptTimeFile&) = delete;
  KeptTimeFile& operator=(const KeptTimeFile&) = delete;

  /// Uses `kestrin/next-event` in that folder, making `kestrin` if need be. StatusOk, or -errno;
  /// -ENOENT too for a null, empty or relative folder. After a failure nothing is read or written.
  status_t Open(const char* runtimeFolder);

  /// The kept moment, 0 for nothing pending. StatusOk, -EBADMSG for a damaged file, else -errno;
  /// `when` is left alone unless it is StatusOk.
  status_t Read(int32& when);

  /// Replaces the file as a whole, so that it outlives a power cut, unless it holds the moment
  /// already. StatusOk, also when Open has failed; or -errno, and then there is no file.
  status_t Write(int32 when);

 private:
  status_t Replace(int32 when) const;

  int folder_ = -1;
  std::optional<int32> held_;  // what the file is known to hold
};

}  // namespace kestrin
