// Shell commands.
#pragma once

#include <sys/types.h>

#include <string>

namespace kestrin {

/// Starts /bin/sh with the command, apart from the application: Spawn.h. Its process id, or -errno.
pid_t StartShell(const std::string& command);

}  // namespace kestrin
