#include "session/ShellCommand.h"

#include "session/Spawn.h"

namespace kestrin {

pid_t StartShell(const std::string& command) { return SpawnApart({"/bin/sh", "-c", command}); }

}  // namespace kestrin
