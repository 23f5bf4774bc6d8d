#include "programs/ctl/Probe.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace kestrin {

namespace {

/// Standard output of a program without arguments, once it has ended with status 0.
std::optional<std::string> OutputOf(std::string program) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  char* arguments[] = {program.data(), nullptr};
  pid_t child = 0;
  const int error = posix_spawn(&child, program.c_str(), &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::string output;
  for (;;) {  // the end of it at once when there is no child
    char part[4096];
    const ssize_t count = read(ends[0], part, sizeof part);
    if (count > 0)
      output.append(part, static_cast<size_t>(count));
    else if (count == 0 || errno != EINTR)
      break;
  }
  close(ends[0]);
  int status = 1;
  if (error == 0)
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  return status == 0 ? std::optional(std::move(output)) : std::nullopt;
}

}  // namespace

std::optional<std::map<std::string, std::string>> AskProbe(const std::string& folder) {
  const std::optional<std::string> output = OutputOf(folder + "/KestrinProbe");
  if (!output) return std::nullopt;
  std::map<std::string, std::string> answers;
  for (size_t start = 0; start < output->size();) {
    const size_t end = std::min(output->find('\n', start), output->size());
    const std::string line = output->substr(start, end - start);
    const size_t equals = line.find('=');
    if (equals != std::string::npos) answers[line.substr(0, equals)] = line.substr(equals + 1);
    start = end + 1;
  }
  return answers;
}

}  // namespace kestrin
