// The settings library's operations, served by the application itself where no library is
// installed.
#pragma once

#include <string>

#include "core/settings/PrefsLibrary.h"
#include "support/FileDoor.h"

namespace kestrin {

/// Keeps each set as "Kestrin/SET.json" in `configFolder`, replaced as a whole by PREFSaveSet. What
/// the program does not use (listing, removing, transactions, listening, reloading) answers
/// -ENOSYS. Errors are negative errno values.
///
/// A save writes what this process has changed into what the file holds by then; what others have
/// changed does not come back to it before the next load.
///
/// A file that cannot be read is never written over: Complaint says what is wrong, what could be
/// read counts, and the first save renames the file to "SET.json.damaged" (with a number when that
/// is taken). When that fails nothing is saved. `door` must outlive the table and its copies.
PrefsLibrary MakeBuiltInPrefs(FileDoor& door, const std::string& configFolder);

/// The library that is installed, else the built-in table.
PrefsLibrary OpenPrefs(FileDoor& door, const std::string& configFolder,
                       const std::string& applicationFolder, const std::string& libraryPath);

/// A value has at most this many bytes, the text of a set four times as many.
inline constexpr int32 PrefsValueLimit = int32{4} << 20;

}  // namespace kestrin
