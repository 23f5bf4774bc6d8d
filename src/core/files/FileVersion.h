// Which bytes a file holds.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "support/FileDoor.h"

namespace kestrin {

/// The stamp is a hint to look, the bytes decide.
struct FileVersion {
  FileStamp Stamp;
  std::optional<uint64> Digest;  ///< of the bytes; nothing when they could not be read
};

/// Fast, and for accidents only: nobody is kept from making two files of one digest.
uint64 DigestOf(std::string_view bytes);
/// Nothing when there is no such file. Reads all of it if `withDigest`.
std::optional<FileVersion> VersionOf(FileDoor& files, const std::string& path, bool withDigest);
/// Whether the file holds other bytes than those of `known`, whose stamp is renewed if it does not.
/// A file that is missing has not changed.
bool HasChanged(FileDoor& files, const std::string& path, FileVersion& known);

}  // namespace kestrin
