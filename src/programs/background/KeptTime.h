// The file that carries the pending moment over the deliverer's own death.
#pragma once

#include <string_view>

#include "kestrin/Types.h"

namespace kestrin {

/// The file's whole content for a moment: decimal digits and a newline.
struct KeptTimeText {
  char bytes[16] = {};
  size_t length = 0;
};
KeptTimeText FormatKeptTime(int32 when);

/// The moment that `text` holds; 0 when it is not exactly what FormatKeptTime writes.
int32 ParseKeptTime(std::string_view text);

class KeptTimeFile {
 public:
  KeptTimeFile() = default;
  ~KeptTimeFile();
  KeptTimeFile(const KeptTimeFile&) = delete;
  KeptTimeFile& operator=(const KeptTimeFile&) = delete;

  /// Uses `kestrin/next-event` in that folder, making `kestrin` if need be. StatusOk, or -errno;
  /// -ENOENT too for a null, empty or relative folder. After a failure nothing is read or written.
  status_t Open(const char* runtimeFolder);

  /// The kept moment, 0 for none. `status`: StatusOk (also when there is no file), -EBADMSG for a
  /// damaged file, else -errno.
  int32 Read(status_t& status) const;

  /// Replaces the file as a whole, or removes it for 0. StatusOk or -errno.
  status_t Write(int32 when) const;

 private:
  int folder_ = -1;
};

}  // namespace kestrin
