#include "session/Spawn.h"

#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace kestrin {

namespace {

bool IsFolder(const char* path) {
  struct stat status {};
  return path && stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

/// What posix_spawn is told besides the program.
class SpawnOptions {
 public:
  explicit SpawnOptions(const std::string& folder) {
    posix_spawnattr_init(&attributes_);
    posix_spawn_file_actions_init(&actions_);
    sigset_t all, none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
  }
  ~SpawnOptions() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnOptions(const SpawnOptions&) = delete;
  SpawnOptions& operator=(const SpawnOptions&) = delete;

  const posix_spawnattr_t* Attributes() const { return &attributes_; }
  const posix_spawn_file_actions_t* Actions() const { return &actions_; }

 private:
  posix_spawnattr_t attributes_{};
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

pid_t SpawnApart(const std::vector<std::string>& arguments) {
  std::vector<std::string> copies = arguments;
  std::vector<char*> words;
  words.reserve(copies.size() + 1);
  for (std::string& copy : copies) words.push_back(copy.data());
  words.push_back(nullptr);
  const SpawnOptions options(HomeFolder());
  pid_t process = 0;
  const int error = posix_spawn(&process, words[0], options.Actions(), options.Attributes(),
                                words.data(), environ);
  return error == 0 ? process : -error;
}

int WaitForEnd(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void ReapLater(pid_t process) {
  try {
    std::thread(WaitForEnd, process).detach();
  } catch (const std::system_error&) {
    // The ended process then keeps its entry until this one ends.
  }
}

std::string HomeFolder() {
  const char* home = std::getenv("HOME");
  if (IsFolder(home)) return home;
  passwd entry{}, *found = nullptr;
  char buffer[4096];
  if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found &&
      IsFolder(found->pw_dir))
    return found->pw_dir;
  return "/";
}

}  // namespace kestrin
