#include "harness/bus/Processes.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kestrin {

namespace {

/// Whether something can be read from it in time.
bool IsReady(int file, std::chrono::milliseconds patience) {
  pollfd ready{file, POLLIN, 0};
  return poll(&ready, 1, static_cast<int>(patience.count())) == 1;
}

std::string MakePipe(const std::string& path) {
  Require(mkfifo(path.c_str(), 0600) == 0, "mkfifo");
  return path;
}

}  // namespace

void Require(bool good, const char* what) {
  if (!good) throw std::runtime_error(what);
}

bool Until(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + Patience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    poll(nullptr, 0, 10);  // files, windows and processes have no one sign to wait for
  }
  return true;
}

int64_t RealTime() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

std::string ReadFile(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

void WriteFile(const std::string& path, const std::string& text, mode_t mode) {
  std::ofstream(path, std::ios::binary) << text;
  if (mode != 0) chmod(path.c_str(), mode);
}

TemporaryFolder::TemporaryFolder() {
  path = std::filesystem::temp_directory_path() / "kestrin-test-XXXXXX";
  Require(mkdtemp(path.data()) != nullptr, "mkdtemp");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

LinePipe::LinePipe(const std::string& path)
    : pipe_(open(MakePipe(path).c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {
  Require(pipe_ >= 0, "open pipe");
}

LinePipe::~LinePipe() { close(pipe_); }

std::string LinePipe::NextLine() {
  std::string line;
  for (char c = 0; IsReady(pipe_, Patience) && read(pipe_, &c, 1) == 1 && c != '\n';) line += c;
  return line;
}

bool LinePipe::NothingWaits() const { return !IsReady(pipe_, {}); }

Child::Child(std::vector<std::string> arguments,
             const std::map<std::string, std::string>& environment, const std::string& folder) {
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  int ends[2];
  Require(pipe2(ends, O_CLOEXEC) == 0, "pipe2");
  errors_ = ends[0];
  fcntl(errors_, F_SETFL, O_NONBLOCK);
  pid_ = fork();
  if (pid_ == 0) {
    for (const auto& [name, value] : environment)
      value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    dup2(ends[1], STDERR_FILENO);
    if (chdir(folder.c_str()) == 0) execv(argv[0], argv.data());
    _exit(127);
  }
  close(ends[1]);
  Require(pid_ > 0, "fork");
}

Child::~Child() {
  if (pid_ > 0) {
    Signal(SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  close(errors_);
}

void Child::Signal(int number) const {
  if (pid_ > 0) kill(pid_, number);
}

int Child::Wait(std::chrono::milliseconds patience) {
  const int handle = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  const bool inTime = IsReady(handle, patience);
  close(handle);
  if (!inTime) return -1000;
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

const std::string& Child::Errors() {
  char bytes[4096];
  for (ssize_t count; (count = read(errors_, bytes, sizeof bytes)) > 0;)
    text_.append(bytes, static_cast<size_t>(count));
  return text_;
}

}  // namespace kestrin
