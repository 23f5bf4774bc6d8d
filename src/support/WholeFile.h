// Replacing a file as a whole: written beside it, flushed, made durable, renamed over it, the
// folder made durable. Whatever fails, the earlier file stays whole.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "support/FileDoor.h"

namespace kestrin {

/// `write` gets the path of an empty file, created exclusively beside the target (with mode 0600
/// where there is a target); it writes, flushes and syncs it, and returns whether all of that held.
/// Links to the target are followed; owner, mode and extended attributes are kept from an existing
/// target; a new one gets those of `like` as far as they can be had (else mode 0600), or without it
/// 0666 less the umask. A target that this user may not write, or that is not a regular file, is
/// refused. Returns StatusOk, the door's -errno, or StatusFileError when `write` fails; a failed
/// replacement leaves no file behind beside the target. What programs that were killed within such
/// a replacement have left in the folder goes once it is a day old.
status_t ReplaceFile(FileDoor& door, const std::string& path,
                     const std::function<bool(const std::string& temporaryPath)>& write,
                     const std::string& like = {});

enum class NewFile { ByUmask, Private };

/// ReplaceFile with these bytes; a new file gets 0666 less the umask, or 0600.
status_t WriteWholeFile(FileDoor& door, const std::string& path, std::string_view bytes,
                        NewFile mode = NewFile::ByUmask);

/// The whole content, or nothing with the reason in `status` (a file above `limit` bytes: -EFBIG).
std::optional<std::string> ReadWholeFile(FileDoor& door, const std::string& path, status_t& status,
                                         int64 limit = int64{64} << 20);

}  // namespace kestrin
