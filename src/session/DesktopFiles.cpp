#include "session/DesktopFiles.h"

#include <fcntl.h>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <memory>

#include "session/Spawn.h"

namespace kestrin {

namespace {

struct Release {
  void operator()(void* object) const { g_object_unref(object); }
  void operator()(char* text) const { g_free(text); }
};
template <typename T>
using Held = std::unique_ptr<T, Release>;

bool IsExecutable(const std::string& path, const struct stat& status) {
  constexpr mode_t anyExecuteBit = 0111;
  if (!S_ISREG(status.st_mode) || (status.st_mode & anyExecuteBit) == 0) return false;
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return false;
  char head[4] = {};
  const ssize_t got = read(file, head, sizeof head);
  close(file);
  return (got == 4 && std::memcmp(head,
                                  "\x7f"
                                  "ELF",
                                  4) == 0) ||
         (got >= 2 && std::memcmp(head, "#!", 2) == 0);
}

Held<GDesktopAppInfo> ReadDesktopEntry(const std::string& path, const struct stat& status) {
  if (!S_ISREG(status.st_mode) || !path.ends_with(".desktop")) return nullptr;
  return Held<GDesktopAppInfo>(g_desktop_app_info_new_from_filename(path.c_str()));
}

Held<GDesktopAppInfo> DefaultApplication(const std::string& path) {
  const Held<GFile> file(g_file_new_for_path(path.c_str()));
  const Held<GFileInfo> info(g_file_query_info(file.get(), G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE,
                                               G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
  const char* type = info ? g_file_info_get_content_type(info.get()) : nullptr;
  if (!type) return nullptr;
  GAppInfo* application = g_app_info_get_default_for_type(type, FALSE);
  return Held<GDesktopAppInfo>(application ? G_DESKTOP_APP_INFO(application) : nullptr);
}

std::string NameOf(GDesktopAppInfo* application) {
  const char* name = g_app_info_get_name(G_APP_INFO(application));
  return name ? name : "";
}

/// Between fork and exec: only what is allowed there.
void LiveApart(void* folder) {
  setsid();
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
  if (folder && chdir(static_cast<const char*>(folder)) != 0) _exit(127);
}

bool Start(GDesktopAppInfo* application, const char* uri) {
  const Held<char> ownFolder(g_desktop_app_info_get_string(application, "Path"));
  std::string home = HomeFolder();
  const bool hasFolder = ownFolder && *ownFolder;
  GList uris{const_cast<char*>(uri), nullptr, nullptr};
  return g_desktop_app_info_launch_uris_as_manager(
      application, uri ? &uris : nullptr, nullptr, G_SPAWN_SEARCH_PATH, LiveApart,
      hasFolder ? nullptr : home.data(), nullptr, nullptr, nullptr);
}

}  // namespace

FileDescription DescribeFile(const std::string& path) {
  FileDescription description;
  struct stat status {};
  description.Exists = lstat(path.c_str(), &status) == 0;
  if (!description.Exists || stat(path.c_str(), &status) != 0) return description;
  if (IsExecutable(path, status)) {
    description.IsApplication = true;
    description.ApplicationName = path.substr(path.rfind('/') + 1);
  } else if (const auto entry = ReadDesktopEntry(path, status)) {
    description.IsApplication = true;
    description.ApplicationName = NameOf(entry.get());
  } else if (const auto application = DefaultApplication(path)) {
    description.ApplicationName = NameOf(application.get());
  }
  return description;
}

bool LaunchFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return false;
  if (IsExecutable(path, status)) {
    const pid_t process = SpawnApart({path});
    if (process > 0) ReapLater(process);
    return process > 0;
  }
  if (const auto entry = ReadDesktopEntry(path, status)) return Start(entry.get(), nullptr);
  return OpenFileAt(path, {});
}

bool OpenFileAt(const std::string& path, const std::string& anchor) {
  const auto application = DefaultApplication(path);
  const Held<char> uri(g_filename_to_uri(path.c_str(), nullptr, nullptr));
  if (!application || !uri) return false;
  const std::string place = anchor.empty() ? uri.get() : uri.get() + ("#" + anchor);
  return Start(application.get(), place.c_str());
}

}  // namespace kestrin
