#include "session/ProcessInfo.h"

#include <fcntl.h>
#include <limits.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace kestrin {

namespace {

constexpr const char* StarterMarks[] = {"DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE"};
// Each with the identity or file that follows it.
constexpr std::string_view SessionOptions[] = {"-session",
                                               "--session",
                                               "-smid",
                                               "-xtsessionID",
                                               "-clientId",
                                               "--sm-client-id",
                                               "--sm-client-state-file",
                                               "--sm-config-prefix"};
constexpr std::string_view SessionSwitch = "--sm-client-disable";
constexpr const char* TokenNames[] = {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"};

std::string Variable(const char* name) {
  const char* value = getenv(name);
  return value ? value : "";
}

std::string AbsoluteVariable(const char* name) {
  std::string value = Variable(name);
  return value.starts_with('/') ? value : std::string();
}

std::string HomeFolder() {
  std::string home = AbsoluteVariable("HOME");
  if (!home.empty()) return home;
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> texts(16384);
  if (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) == 0 && found &&
      entry.pw_dir)
    return entry.pw_dir;
  return "/";
}

std::string PersonalFolder(const char* variable, const char* belowHome) {
  std::string named = AbsoluteVariable(variable);
  return named.empty() ? HomeFolder() + belowHome : named;
}

bool BelongsToUserAlone(const std::string& folder) {
  struct stat info {};
  return stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == getuid() &&
         (info.st_mode & 077) == 0;
}

bool HasTerminal() {
  const int terminal = open("/dev/tty", O_RDONLY | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0) return false;
  close(terminal);
  return true;
}

}  // namespace

std::string ExecutableFolder() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  if (length <= 0) return {};
  const std::string_view whole(path, static_cast<size_t>(length));
  return std::string(whole.substr(0, whole.rfind('/')));
}

std::string ConfigFolder() { return PersonalFolder("XDG_CONFIG_HOME", "/.config"); }
std::string DataFolder() { return PersonalFolder("XDG_DATA_HOME", "/.local/share"); }
std::string StateFolder() { return PersonalFolder("XDG_STATE_HOME", "/.local/state"); }

std::string RuntimeFolder() {
  std::string named = AbsoluteVariable("XDG_RUNTIME_DIR");
  if (!named.empty()) return named;
  const std::string usual = "/run/user/" + std::to_string(getuid());
  return BelongsToUserAlone(usual) ? usual : std::string();
}

std::vector<std::string> DataFolders() {
  std::vector<std::string> folders = {DataFolder()};
  std::string listed = Variable("XDG_DATA_DIRS");
  if (listed.empty()) listed = "/usr/local/share:/usr/share";
  for (size_t start = 0; start < listed.size();) {
    const size_t end = std::min(listed.find(':', start), listed.size());
    std::string folder = listed.substr(start, end - start);
    if (folder.starts_with('/')) folders.push_back(std::move(folder));
    start = end + 1;
  }
  return folders;
}

std::vector<std::string> ArgumentsOf(int argc, char** argv) {
  std::vector<std::string> arguments;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    const std::string_view name = argument.substr(0, argument.find('='));
    const bool known = std::find(std::begin(SessionOptions), std::end(SessionOptions), name) !=
                       std::end(SessionOptions);
    if (known && name == argument)
      ++i;
    else if (!(known && name.starts_with("--")) && argument != SessionSwitch)
      arguments.emplace_back(argument);
  }
  return arguments;
}

bool StartedByBus() {
  const bool marked = std::any_of(std::begin(StarterMarks), std::end(StarterMarks),
                                  [](const char* name) { return getenv(name) != nullptr; });
  return marked && !HasTerminal();
}

std::string ActivationToken() {
  for (const char* name : TokenNames)
    if (std::string token = Variable(name); !token.empty()) return token;
  return {};
}

void ForgetHowStarted() {
  for (const char* name : StarterMarks) unsetenv(name);
}

}  // namespace kestrin
