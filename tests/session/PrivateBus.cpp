#include "session/PrivateBus.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <fstream>

#include "session/BusMessages.h"

namespace kestrin {

namespace fs = std::filesystem;

namespace {

constexpr int PatienceMilliseconds = 10'000;

constexpr char Configuration[] = R"(<busconfig>
  <type>session</type>
  <listen>unix:dir=/tmp</listen>
  <standard_session_servicedirs/>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

std::string ReadLine(int pipe) {
  std::string line;
  char character = '\0';
  pollfd readable{pipe, POLLIN, 0};
  while (poll(&readable, 1, PatienceMilliseconds) > 0 && read(pipe, &character, 1) == 1) {
    if (character == '\n') return line;
    line += character;
  }
  return "(nothing came after \"" + line + "\")";
}

fs::path NewFolder() {
  std::string name = fs::temp_directory_path() / "kestrin-session-XXXXXX";
  if (!mkdtemp(name.data())) abort();
  return name;
}

}  // namespace

ScopedVariable::ScopedVariable(const char* name, std::optional<std::string> value) : name_(name) {
  if (const char* before = getenv(name)) before_ = before;
  Set(name_, value);
}

ScopedVariable::~ScopedVariable() { Set(name_, before_); }

void ScopedVariable::Set(const std::string& name, const std::optional<std::string>& value) {
  if (value)
    setenv(name.c_str(), value->c_str(), 1);
  else
    unsetenv(name.c_str());
}

bool RunUntil(const std::function<bool()>& condition) {
  QTimer patience;
  patience.setSingleShot(true);
  patience.start(PatienceMilliseconds);
  while (!condition() && patience.isActive())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return condition();
}

Process::Process(const fs::path& program, std::vector<std::string> arguments,
                 const fs::path& folder, int output) {
  arguments.insert(arguments.begin(), program);
  std::vector<char*> words;
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  posix_spawn_file_actions_adddup2(&actions, output, 1);
  // As a bus of a desktop: without the terminal that the tests may have.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
  EXPECT_EQ(posix_spawnp(&id_, program.c_str(), &actions, &attributes, words.data(), environ), 0);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
}

Process::~Process() {
  Signal(SIGKILL);
  Status();
}

void Process::Signal(int signal) const {
  if (id_ > 0) kill(id_, signal);
}

int Process::Status() {
  int status = 0;
  const bool ended = id_ > 0 && waitpid(id_, &status, 0) == id_;
  id_ = 0;
  return ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

PrivateBus::PrivateBus() : folder_(NewFolder()) {
  const std::pair<const char*, const char*> folders[] = {{"HOME", "home"},
                                                         {"XDG_DATA_HOME", "data"},
                                                         {"XDG_DATA_DIRS", "system"},
                                                         {"XDG_RUNTIME_DIR", "runtime"}};
  for (const auto& [variable, name] : folders) {
    fs::create_directory(folder_ / name);
    variables_.push_back(std::make_unique<ScopedVariable>(variable, folder_ / name));
  }
  const fs::path log = folder_ / "log", configuration = folder_ / "bus.conf";
  mkfifo(log.c_str(), 0600);
  log_ = open(log.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
  variables_.push_back(std::make_unique<ScopedVariable>("KESTRIN_PEER_LOG", log));
  variables_.push_back(std::make_unique<ScopedVariable>("DISPLAY", std::nullopt));
  variables_.push_back(std::make_unique<ScopedVariable>("XDG_ACTIVATION_TOKEN", std::nullopt));
  variables_.push_back(std::make_unique<ScopedVariable>("DESKTOP_STARTUP_ID", std::nullopt));
  std::ofstream(configuration) << Configuration;

  int address[2];
  if (pipe2(address, O_CLOEXEC) < 0) abort();
  daemon_ = std::make_unique<Process>(
      "dbus-daemon",
      std::vector<std::string>{"--config-file=" + configuration.string(), "--print-address=1"},
      folder_, address[1]);
  close(address[1]);
  variables_.push_back(
      std::make_unique<ScopedVariable>("DBUS_SESSION_BUS_ADDRESS", ReadLine(address[0])));
  close(address[0]);
  client_ =
      QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), "client");
  EXPECT_TRUE(client_.isConnected());
}

PrivateBus::~PrivateBus() {
  QDBusConnection::disconnectFromBus("client");
  daemon_.reset();
  close(log_);
  fs::remove_all(folder_);
}

QDBusMessage PrivateBus::CallBus(const char* member, const QVariantList& arguments) {
  QDBusMessage call = MakeBusCall(member);
  call.setArguments(arguments);
  return client_.call(call);
}

bool PrivateBus::HasOwner(const char* name) {
  return CallBus("NameHasOwner", {name}).arguments().value(0).toBool();
}

fs::path PrivateBus::Install(const std::string& name, const std::string& folder) {
  fs::create_directories(folder_ / folder);
  const fs::path program = folder_ / folder / name;
  fs::create_symlink(SESSION_PEER, program);
  return program;
}

fs::path PrivateBus::ActivationFile(const std::string& name) const {
  return folder_ / "data/dbus-1/services" / (name + ".service");
}

void PrivateBus::Activatable(const std::string& name, const fs::path& program) {
  fs::create_directories(ActivationFile(name).parent_path());
  std::ofstream(ActivationFile(name))
      << "[D-BUS Service]\nName=" << name << "\nExec=" << program.string() << "\n";
  CallBus("ReloadConfig");
}

std::string PrivateBus::NextLine() { return ReadLine(log_); }

bool PrivateBus::NoLine() const {
  pollfd readable{log_, POLLIN, 0};
  return poll(&readable, 1, 0) == 0;
}

}  // namespace kestrin
