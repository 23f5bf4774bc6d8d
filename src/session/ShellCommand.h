// Shell commands.
#pragma once

#include <string>

namespace kestrin {

/// Runs the command with /bin/sh, apart from the application, and returns when the shell has ended.
/// How it ended is nobody's concern; false when it could not be started.
bool RunShellCommand(const std::string& command);

}  // namespace kestrin
