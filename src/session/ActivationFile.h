// Files that tell the bus which program to start for a name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "support/FileDoor.h"

namespace kestrin {

/// The content that makes the bus start `program` (an absolute path) for `name`. Nothing when the
/// path is not UTF-8: such files are.
std::optional<std::string> ActivationText(std::string_view name, std::string_view program);

/// The program that this content names for `name`; nothing when it is for another name or broken.
std::optional<std::string> ActivatedProgram(std::string_view text, std::string_view name);

/// Where a person's own activation files lie.
std::string ActivationFolder();

/// The program that the session bus starts for `name`, as the files in its folders say.
std::optional<std::string> FindActivatedProgram(FileDoor& files, const std::string& name);

/// Whether the file lies in one of the desktop's trash folders.
bool LiesInTrash(FileDoor& files, const std::string& path);

}  // namespace kestrin
