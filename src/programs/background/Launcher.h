// Starting the application without the bus.
#pragma once

#include <sys/types.h>

namespace kestrin {

/// Starts `kestrin -background` from the folder of the running executable, in a session of its own
/// and with the ordinary signal state. The process's id, for the caller to reap; or -errno.
pid_t LaunchApplication();

}  // namespace kestrin
