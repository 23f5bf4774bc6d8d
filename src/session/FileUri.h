// Names of files as they travel between processes: as URIs, so that any bytes survive.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// `path` is absolute; any bytes but NUL.
std::string FileUriOf(std::string_view path);

/// The absolute path that a "file" URI of this machine names. Nothing for other schemes and hosts,
/// for a query or fragment, and for an escape that is broken or hides a NUL.
std::optional<std::string> PathOfFileUri(std::string_view uri);

/// `argument` seen from the working folder, without ".", ".." and doubled slashes; links stay as
/// they are. Nothing when it is relative and the working folder is gone.
std::optional<std::string> AbsolutePath(std::string_view argument);

}  // namespace kestrin
