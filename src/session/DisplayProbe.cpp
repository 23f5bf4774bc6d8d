#include "session/DisplayProbe.h"

#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QtCore/QDir>
#include <QtCore/QLibraryInfo>
#include <algorithm>
#include <string_view>
#include <vector>

#include "session/ProcessInfo.h"

namespace kestrin {

namespace {

using Reason = std::optional<std::string>;

// What desktops and people set to make programs of this toolkit look like the rest.
constexpr const char* Looks[] = {"XDG_CURRENT_DESKTOP",
                                 "XDG_SESSION_TYPE",
                                 "XDG_SESSION_DESKTOP",
                                 "KDE_FULL_SESSION",
                                 "KDE_SESSION_VERSION",
                                 "QT_QPA_PLATFORMTHEME",
                                 "QT_STYLE_OVERRIDE",
                                 "QT_SCALE_FACTOR",
                                 "QT_SCREEN_SCALE_FACTORS",
                                 "QT_SCALE_FACTOR_ROUNDING_POLICY",
                                 "QT_ENABLE_HIGHDPI_SCALING",
                                 "QT_FONT_DPI",
                                 "QT_WAYLAND_FORCE_DPI",
                                 "XCURSOR_THEME",
                                 "XCURSOR_SIZE"};

std::string Variable(const char* name) {
  const char* value = getenv(name);
  return value ? value : "";
}

Reason WhyNoX() {
  const std::string display = Variable("DISPLAY");
  if (display.empty()) return "DISPLAY is not set";
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const int error = xcb_connection_has_error(connection);
  xcb_disconnect(connection);
  if (error == 0) return std::nullopt;
  return "the X display \"" + display + "\" cannot be reached";
}

bool CanConnect(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  memcpy(address.sun_path, path.c_str(), path.size() + 1);
  const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (client < 0) return false;
  // The system's calls know addresses of all families by the type of their common beginning.
  const void* untyped = &address;
  const bool connected =
      connect(client, static_cast<const sockaddr*>(untyped), sizeof address) == 0;
  close(client);
  return connected;
}

// The toolkit's part for Wayland is a package of its own.
bool HasWaylandPlugin() {
  QStringList folders = qEnvironmentVariable("QT_PLUGIN_PATH").split(':', Qt::SkipEmptyParts);
  folders << QLibraryInfo::path(QLibraryInfo::PluginsPath);
  for (QString& folder : folders) folder += "/platforms";
  folders << qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH");
  return std::any_of(folders.begin(), folders.end(), [](const QString& folder) {
    return !folder.isEmpty() && !QDir(folder).entryList({"libqwayland*"}, QDir::Files).isEmpty();
  });
}

bool ReachesWayland(const std::string& name) {
  return CanConnect(name.starts_with('/') ? name : RuntimeFolder() + "/" + name);
}

Reason WhyNoWayland() {
  if (!HasWaylandPlugin()) return "Qt has no plugin for Wayland here";
  if (!Variable("WAYLAND_SOCKET").empty()) return std::nullopt;
  std::string name = Variable("WAYLAND_DISPLAY");
  if (name.empty()) name = "wayland-0";
  if (ReachesWayland(name)) return std::nullopt;
  return "the Wayland display \"" + name + "\" cannot be reached";
}

std::vector<std::string> PlatformsToTry() {
  const std::string listed = Variable("QT_QPA_PLATFORM");
  std::vector<std::string> platforms;
  for (size_t start = 0; start < listed.size();) {
    const size_t end = std::min(listed.find(';', start), listed.size());
    const std::string entry = listed.substr(start, end - start);
    platforms.push_back(entry.substr(0, entry.find(':')));
    start = end + 1;
  }
  if (!platforms.empty()) return platforms;
  if (!Variable("WAYLAND_DISPLAY").empty() || Variable("XDG_SESSION_TYPE") == "wayland")
    platforms.push_back("wayland");
  platforms.push_back("xcb");
  return platforms;
}

Reason WhyNot(const std::string& platform) {
  if (platform == "xcb") return WhyNoX();
  if (platform.starts_with("wayland")) return WhyNoWayland();
  return std::nullopt;
}

}  // namespace

std::optional<std::string> WhyNoDisplay() {
  std::string reasons;
  for (const std::string& platform : PlatformsToTry()) {
    const Reason reason = WhyNot(platform);
    if (!reason) return std::nullopt;
    reasons.append(reasons.empty() ? "" : "; ").append(*reason);
  }
  return reasons;
}

std::map<std::string, std::string> DisplayEnvironment() {
  std::map<std::string, std::string> told;
  const auto tell = [&told](const char* name) {
    if (const std::string value = Variable(name); !value.empty()) told[name] = value;
  };
  if (!WhyNoX()) {
    tell("DISPLAY");
    tell("XAUTHORITY");
  }
  const std::string wayland = Variable("WAYLAND_DISPLAY");
  if (!wayland.empty() && ReachesWayland(wayland)) tell("WAYLAND_DISPLAY");
  if (told.empty()) return told;
  for (const char* name : Looks) tell(name);
  // A platform without a screen is this process's own affair.
  const std::string platform = Variable("QT_QPA_PLATFORM");
  if (platform.starts_with("xcb") || platform.starts_with("wayland")) tell("QT_QPA_PLATFORM");
  return told;
}

}  // namespace kestrin
