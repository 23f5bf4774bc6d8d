#include "programs/probe/Displays.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "session/ProcessInfo.h"
#include "session/ToldDisplay.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr char XSockets[] = "/tmp/.X11-unix/X";
constexpr int64 MaxFileSize = 1 << 20;

/// `name` may begin with a NUL: a name that no file has.
bool Listens(const std::string& name) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (name.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, name.data(), name.size());
  const bool isFile = !name.starts_with('\0');
  const auto length =
      static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + (isFile ? 1 : 0));
  const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (client < 0) return false;
  const void* untyped = &address;
  const bool connected = connect(client, static_cast<const sockaddr*>(untyped), length) == 0;
  close(client);
  return connected;
}

bool IsXReachable(std::string_view display) {
  constexpr std::string_view local = "unix";
  if (display.starts_with(local)) display.remove_prefix(local.size());
  if (!display.starts_with(':')) return true;
  const std::string_view number = display.substr(1, display.find('.') - 1);
  const std::string file = std::string(XSockets).append(number);
  return Listens(file) || Listens(std::string(1, '\0') + file);
}

}  // namespace

std::vector<Assignment> DisplaysAmong(const std::vector<std::string>& lines) {
  std::vector<Assignment> found;
  for (const std::string& line : lines)
    for (const char* name : DisplayVariables) {
      const std::string start = std::string(name) + "=";
      if (line.starts_with(start) && line.size() > start.size()) found.push_back(line);
    }
  return found;
}

std::vector<std::string> PartsOfFile(const std::string& path, char separator) {
  SystemFileDoor files;
  status_t status = StatusOk;
  const std::string text = ReadWholeFile(files, path, status, MaxFileSize).value_or("");
  std::vector<std::string> parts;
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find(separator, start), text.size());
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

bool IsReachable(const Assignment& display) {
  const size_t equals = display.find('=');
  const std::string value = display.substr(equals + 1);
  if (display.substr(0, equals) == "DISPLAY") return IsXReachable(value);
  return Listens(value.starts_with('/') ? value : RuntimeFolder() + "/" + value);
}

}  // namespace kestrin
