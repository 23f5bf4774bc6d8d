#include "programs/background/Launcher.h"

#include <errno.h>
#include <limits.h>
#include <signal.h>
#include <spawn.h>
#include <string.h>
#include <unistd.h>

#include "core/ports/BackgroundArgument.h"

namespace kestrin {

namespace {

constexpr char ProgramName[] = "kestrin";

int FindApplication(char (&path)[PATH_MAX]) {
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  if (length < 0) return -errno;
  if (length == sizeof path) return -ENAMETOOLONG;
  path[length] = '\0';
  char* name = strrchr(path, '/');
  if (!name) return -ENOENT;
  ++name;
  if (static_cast<size_t>(path + sizeof path - name) < sizeof ProgramName) return -ENAMETOOLONG;
  memcpy(name, ProgramName, sizeof ProgramName);
  return 0;
}

}  // namespace

pid_t LaunchApplication() {
  char path[PATH_MAX];
  if (const int found = FindApplication(path); found < 0) return found;

  posix_spawnattr_t attributes;
  if (const int error = posix_spawnattr_init(&attributes)) return -error;
  sigset_t none, ordinary;
  sigemptyset(&none);
  sigemptyset(&ordinary);
  sigaddset(&ordinary, SIGPIPE);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &ordinary);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

  char* arguments[] = {path, const_cast<char*>(BackgroundArgument), nullptr};
  pid_t child = 0;
  const int error = posix_spawn(&child, path, nullptr, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  return error ? -error : child;
}

}  // namespace kestrin
