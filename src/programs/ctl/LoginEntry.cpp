#include "programs/ctl/LoginEntry.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "session/ProcessInfo.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr char FileName[] = "/autostart/vnd.ZR.Kestrin.Background.desktop";
constexpr int64 SizeLimit = 1 << 16;

std::vector<std::string> ConfigFolders() {
  std::vector<std::string> folders = {ConfigFolder()};
  const char* const variable = std::getenv("XDG_CONFIG_DIRS");
  std::string_view listed = variable && *variable ? variable : "/etc/xdg";
  while (!listed.empty()) {
    const size_t end = std::min(listed.find(':'), listed.size());
    if (listed.starts_with('/')) folders.emplace_back(listed.substr(0, end));
    listed.remove_prefix(std::min(end + 1, listed.size()));
  }
  return folders;
}

/// Of the file's first group; empty when it has none.
std::string_view ValueOf(std::string_view text, std::string_view key) {
  bool begun = false;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('[') && std::exchange(begun, true)) break;
    if (line.starts_with(key) && line.substr(key.size()).starts_with('='))
      return line.substr(key.size() + 1);
  }
  return {};
}

/// The command's first word, which the installation writes in double quotes or without.
std::string ProgramOf(std::string_view command) {
  const bool quoted = command.starts_with('"');
  if (quoted) command.remove_prefix(1);
  return std::string(command.substr(0, command.find(quoted ? '"' : ' ')));
}

std::string NewEntry(const std::string& kestrin) {
  const std::string path = ConfigFolder() + FileName;
  const std::string text =
      "[Desktop Entry]\nType=Application\nName=Kestrin event delivery\nExec=\"" + kestrin +
      "\" -background\n";
  return "mkdir -p " + ShellWord(path.substr(0, path.rfind('/'))) + " && printf %s " +
         ShellWord(text) + " > " + ShellWord(path);
}

}  // namespace

std::string ShellWord(const std::string& text) {
  constexpr std::string_view plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+@,:=";
  if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) return text;
  std::string word = "'";
  for (const char character : text) {
    if (character == '\'')
      word += "'\\''";
    else
      word += character;
  }
  return word + "'";
}

LoginEntry FindLoginEntry(const std::string& kestrin) {
  SystemFileDoor files;
  for (const std::string& folder : ConfigFolders()) {
    LoginEntry entry{folder + FileName, "", ""};
    if (files.Kind(entry.Path) != FileKind::Regular) continue;
    status_t status = StatusOk;
    const std::string text = ReadWholeFile(files, entry.Path, status, SizeLimit).value_or("");
    const std::string program = ProgramOf(ValueOf(text, "Exec"));
    if (ValueOf(text, "Hidden") == "true")
      entry.Fault = "is switched off";
    else if (program.empty())
      entry.Fault = "names no program";
    else if (program.starts_with('/') && access(program.c_str(), X_OK) != 0)
      entry.Fault = "starts " + program + ", which is gone";
    if (!entry.Fault.empty()) entry.Mend = NewEntry(kestrin);
    return entry;
  }
  return {"", "there is none", NewEntry(kestrin)};
}

}  // namespace kestrin
