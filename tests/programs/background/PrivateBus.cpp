#include "PrivateBus.h"

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

constexpr char BackgroundName[] = "vnd.ZR.KestrinBackground";
constexpr char BackgroundPath[] = "/vnd/ZR/KestrinBackground";
constexpr char Messages[] = "vnd.ZR.Kestrin.Messages";
constexpr int PatienceMilliseconds = static_cast<int>(std::chrono::milliseconds(Patience).count());

void Check(bool good, const char* what) {
  if (!good) throw std::runtime_error(what);
}

std::string MakePipe(const std::string& path) {
  Check(mkfifo(path.c_str(), 0600) == 0, "mkfifo");
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
  Check(mkdtemp(name) != nullptr, "mkdtemp");
  path = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

LinePipe::LinePipe(const std::string& path)
    : pipe_(open(MakePipe(path).c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {
  Check(pipe_ >= 0, "open pipe");
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

Child::Child(std::vector<std::string> arguments, std::map<std::string, std::string> environment) {
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
  Check(pipe2(ends, O_CLOEXEC) == 0, "pipe2");
  errors_ = ends[0];
  fcntl(errors_, F_SETFL, O_NONBLOCK);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
  const int error = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  Check(error == 0, "posix_spawn");
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
  Check(!address_.empty(), "the bus did not start");
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

const sd_bus_vtable Peer::table_[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Post", "ua{sv}", "", OnPost, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

Peer::Peer(const PrivateBus& bus, const char* name) {
  Check(sd_bus_new(&bus_) >= 0 && sd_bus_set_address(bus_, bus.Address().c_str()) >= 0 &&
            sd_bus_set_bus_client(bus_, true) >= 0 && sd_bus_start(bus_) >= 0,
        "connect");
  Check(
      sd_bus_match_signal(bus_, nullptr, nullptr, BackgroundPath, "org.freedesktop.DBus.Properties",
                          "PropertiesChanged", OnChanged, this) >= 0 &&
          sd_bus_match_signal(
              bus_, nullptr, "org.freedesktop.DBus", nullptr, nullptr, "NameOwnerChanged",
              [](sd_bus_message*, void*, sd_bus_error*) { return 0; }, nullptr) >= 0,
      "match");
  if (!name) return;
  Check(sd_bus_add_object_vtable(bus_, nullptr, "/vnd/ZR/Kestrin", Messages, table_, this) >= 0 &&
            sd_bus_request_name(bus_, name, 0) >= 0,
        "take the name");
}

Peer::~Peer() { sd_bus_flush_close_unref(bus_); }

int Peer::OnPost(sd_bus_message* message, void* self, sd_bus_error*) {
  Taken taken{0, RealTime()};
  if (const int result = sd_bus_message_read(message, "u", &taken.what); result < 0) return result;
  static_cast<Peer*>(self)->taken.push_back(taken);
  return sd_bus_reply_method_return(message, "");
}

int Peer::OnChanged(sd_bus_message* signal, void* self, sd_bus_error*) {
  const char* name = nullptr;
  int32_t when = 0;
  if (sd_bus_message_skip(signal, "s") >= 0 &&
      sd_bus_message_read(signal, "a{sv}", 1, &name, "i", &when) >= 0)
    static_cast<Peer*>(self)->announced.push_back(when);
  return 0;
}

bool Peer::WaitUntil(const std::function<bool()>& until) {
  const auto end = std::chrono::steady_clock::now() + Patience;
  for (;;) {
    const int done = sd_bus_process(bus_, nullptr);
    if (done < 0) return false;
    if (done > 0) continue;
    if (until()) return true;
    const auto left = end - std::chrono::steady_clock::now();
    if (left <= left.zero()) return false;
    sd_bus_wait(bus_, static_cast<uint64_t>(
                          std::chrono::duration_cast<std::chrono::microseconds>(left).count()));
  }
}

bool Peer::HasOwner(const char* name) {
  sd_bus_message* reply = nullptr;
  int owned = 0;
  sd_bus_call_method(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                     "NameHasOwner", nullptr, &reply, "s", name);
  if (reply) sd_bus_message_read(reply, "b", &owned);
  sd_bus_message_unref(reply);
  return owned != 0;
}

pid_t Peer::ProcessOf(const char* name) {
  sd_bus_creds* owner = nullptr;
  pid_t process = 0;
  if (sd_bus_get_name_creds(bus_, name, SD_BUS_CREDS_PID, &owner) >= 0)
    sd_bus_creds_get_pid(owner, &process);
  sd_bus_creds_unref(owner);
  return process;
}

bool Peer::WaitForOwner(const char* name, bool owned) {
  return WaitUntil([&] { return HasOwner(name) == owned; });
}

std::string Peer::Post(uint32_t what, const std::vector<Field>& fields) {
  sd_bus_message* message = nullptr;
  sd_bus_message_new_method_call(bus_, &message, BackgroundName, BackgroundPath, Messages, "Post");
  sd_bus_message_append(message, "u", what);
  sd_bus_message_open_container(message, 'a', "{sv}");
  for (const auto& [name, type, value] : fields) {
    const char signature[] = {type, '\0'};
    const int32_t small = static_cast<int32_t>(value);
    const void* place = type == 'x' ? static_cast<const void*>(&value) : &small;
    sd_bus_message_open_container(message, 'e', "sv");
    sd_bus_message_append_basic(message, 's', name);
    sd_bus_message_open_container(message, 'v', signature);
    sd_bus_message_append_basic(message, type, type == 's' ? std::to_string(value).c_str() : place);
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
  }
  sd_bus_message_close_container(message);
  sd_bus_error error = SD_BUS_ERROR_NULL;
  const int result = sd_bus_call(bus_, message, 0, &error, nullptr);
  std::string name = result >= 0 ? "" : error.name ? error.name : "?";
  sd_bus_error_free(&error);
  sd_bus_message_unref(message);
  return name;
}

int32_t Peer::When() {
  int32_t when = -1;
  sd_bus_get_property_trivial(bus_, BackgroundName, BackgroundPath, Messages, "When", nullptr, 'i',
                              &when);
  return when;
}

}  // namespace kestrin
