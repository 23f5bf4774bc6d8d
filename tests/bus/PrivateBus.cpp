#include "bus/PrivateBus.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
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

constexpr int PatienceMilliseconds = static_cast<int>(std::chrono::milliseconds(Patience).count());

std::string MakePipe(const std::string& path) {
  Require(mkfifo(path.c_str(), 0600) == 0, "mkfifo");
  return path;
}

std::string WriteConfiguration(const std::string& folder) {
  std::filesystem::create_directories(folder + "/services");
  std::filesystem::create_directories(folder + "/run");
  const std::string path = folder + "/bus.conf";
  WriteFile(path, "<busconfig><type>session</type><listen>unix:path=" + folder +
                      "/bus</listen><servicedir>" + folder +
                      "/services</servicedir><policy context=\"default\">"
                      "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/><allow "
                      "own=\"*\"/></policy></busconfig>");
  return path;
}

}  // namespace

void Require(bool good, const char* what) {
  if (!good) throw std::runtime_error(what);
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

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

TemporaryFolder::TemporaryFolder() {
  char name[] = "/tmp/kestrin-bus-XXXXXX";
  Require(mkdtemp(name) != nullptr, "mkdtemp");
  path = name;
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
  for (char c = 0;;) {
    pollfd ready{pipe_, POLLIN, 0};
    if (poll(&ready, 1, PatienceMilliseconds) != 1 || read(pipe_, &c, 1) != 1 || c == '\n')
      return line;
    line += c;
  }
}

bool LinePipe::NothingWaits() const {
  pollfd ready{pipe_, POLLIN, 0};
  return poll(&ready, 1, 0) == 0;
}

Child::Child(std::vector<std::string> arguments,
             const std::map<std::string, std::string>& environment, const std::string& folder) {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable; ++variable) {
    const std::string text = *variable;
    if (!environment.contains(text.substr(0, text.find('=')))) variables.push_back(text);
  }
  for (const auto& [name, value] : environment)
    if (!value.empty()) variables.push_back(name + "=" + value);
  std::vector<char*> argv, envp;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  for (std::string& variable : variables) envp.push_back(variable.data());
  argv.push_back(nullptr);
  envp.push_back(nullptr);

  int ends[2];
  Require(pipe2(ends, O_CLOEXEC) == 0, "pipe2");
  errors_ = ends[0];
  fcntl(errors_, F_SETFL, O_NONBLOCK);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
  const int error = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  Require(error == 0, "posix_spawn");
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

int Child::Wait() {
  const int handle = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  pollfd ended{handle, POLLIN, 0};
  const bool inTime = poll(&ended, 1, PatienceMilliseconds) == 1;
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

PrivateBus::PrivateBus()
    : addressPipe_(folder_.path + "/address"),
      daemon_(
          {"/bin/sh", "-c", "exec \"$0\" --config-file=\"$1\" --nofork --print-address > \"$2\"",
           DBUS_DAEMON, WriteConfiguration(folder_.path), folder_.path + "/address"},
          Environment()) {
  address_ = addressPipe_.NextLine();
  Require(!address_.empty(), "the bus did not start");
}

std::map<std::string, std::string> PrivateBus::Environment() const {
  return {{"DBUS_SESSION_BUS_ADDRESS", address_},
          {"DBUS_STARTER_ADDRESS", ""},
          {"DBUS_STARTER_BUS_TYPE", ""},
          {"XDG_RUNTIME_DIR", RuntimeFolder()}};
}

void PrivateBus::AddService(const std::string& name, const std::string& command) const {
  WriteFile(Folder() + "/services/" + name + ".service",
            "[D-BUS Service]\nName=" + name + "\nExec=" + command + "\n");
}

}  // namespace kestrin
