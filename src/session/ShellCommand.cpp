#include "session/ShellCommand.h"

#include "session/Spawn.h"

namespace kestrin {

bool RunShellCommand(const std::string& command) {
  const pid_t shell = SpawnApart({"/bin/sh", "-c", command});
  if (shell < 0) return false;
  WaitForEnd(shell);
  return true;
}

}  // namespace kestrin
