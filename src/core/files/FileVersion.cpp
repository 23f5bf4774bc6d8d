#include "core/files/FileVersion.h"

#include <cstring>

#include "support/WholeFile.h"

namespace kestrin {

uint64 DigestOf(std::string_view bytes) {
  constexpr uint64 Factor = 0x9E3779B97F4A7C15u;
  uint64 digest = bytes.size() * Factor;
  const auto take = [&digest](uint64 word) {
    digest = (digest ^ word) * Factor;
    digest ^= digest >> 29;
  };
  uint64 word = 0;
  while (bytes.size() >= sizeof word) {
    std::memcpy(&word, bytes.data(), sizeof word);
    take(word);
    bytes.remove_prefix(sizeof word);
  }
  word = 0;
  std::memcpy(&word, bytes.data(), bytes.size());
  take(word);
  return digest;
}

std::optional<FileVersion> VersionOf(FileDoor& files, const std::string& path, bool withDigest) {
  const std::optional<FileStamp> stamp = files.Stamp(path);
  if (!stamp) return std::nullopt;
  FileVersion version{*stamp, std::nullopt};
  if (!withDigest) return version;
  status_t status = StatusOk;
  if (const std::optional<std::string> bytes = ReadWholeFile(files, path, status))
    version.Digest = DigestOf(*bytes);
  return version;
}

bool HasChanged(FileDoor& files, const std::string& path, FileVersion& known) {
  const std::optional<FileStamp> stamp = files.Stamp(path);
  if (!stamp || *stamp == known.Stamp) return false;
  const std::optional<FileVersion> now = VersionOf(files, path, known.Digest.has_value());
  if (!now || !now->Digest || now->Digest != known.Digest) return now.has_value();
  known.Stamp = now->Stamp;
  return false;
}

}  // namespace kestrin
