#include "session/ActivationFile.h"

#include <unistd.h>

#include <algorithm>
#include <vector>

#include "session/ProcessInfo.h"
#include "support/OwnedText.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr std::string_view Group = "[D-BUS Service]";
constexpr std::string_view Ending = ".service";
constexpr char BelowDataFolder[] = "/dbus-1/services";
constexpr int64 SizeLimit = 1 << 16;

// A command line's word, in quotes where it needs them. A single quote stands in double ones, since
// backslashes mean something to the file's format too.
std::string Quoted(std::string_view word) {
  constexpr std::string_view plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+@,:=";
  if (word.find_first_not_of(plain) == std::string_view::npos) return std::string(word);
  std::string result = "'";
  for (const char character : word) {
    if (character == '\'')
      result += "'\"'\"'";
    else
      result += character;
  }
  return result + "'";
}

// The first word of a command line.
std::optional<std::string> FirstWord(std::string_view line) {
  std::string word;
  char quote = '\0';
  bool begun = false;
  for (size_t at = 0; at < line.size(); ++at) {
    const char character = line[at];
    const bool last = at + 1 == line.size();
    if (quote == '\'' && character != '\'') {
      word += character;
    } else if (character == quote) {
      quote = '\0';
    } else if (character == '\\') {
      if (last) return std::nullopt;
      const char next = line[++at];
      const bool kept =
          quote == '"' && std::string_view("\"\\$`\n").find(next) == std::string::npos;
      if (kept) word += '\\';
      word += next;
      begun = true;
    } else if (quote == '\0' && (character == '\'' || character == '"')) {
      quote = character;
      begun = true;
    } else if (quote == '\0' && (character == ' ' || character == '\t' || character == '\n')) {
      if (begun) break;
    } else {
      word += character;
      begun = true;
    }
  }
  if (!begun || quote != '\0') return std::nullopt;
  return word;
}

struct Escape {
  char letter, meaning;
};
constexpr Escape Escapes[] = {{'s', ' '}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'\\', '\\'}};

std::string Escaped(std::string_view value) {
  std::string result;
  for (const char character : value) {
    const auto escape =
        std::find_if(std::begin(Escapes), std::end(Escapes), [character](const Escape& candidate) {
          return candidate.meaning == character && character != ' ';
        });
    if (escape == std::end(Escapes))
      result += character;
    else
      result += {'\\', escape->letter};
  }
  return result;
}

std::optional<std::string> Unescaped(std::string_view value) {
  std::string result;
  for (size_t at = 0; at < value.size(); ++at) {
    if (value[at] != '\\') {
      result += value[at];
      continue;
    }
    if (++at == value.size()) return std::nullopt;
    const auto escape =
        std::find_if(std::begin(Escapes), std::end(Escapes),
                     [&](const Escape& known) { return known.letter == value[at]; });
    if (escape == std::end(Escapes)) return std::nullopt;
    result += escape->meaning;
  }
  return result;
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The value of a key of the file's one group; empty when there is none.
std::string_view ValueOf(std::string_view text, std::string_view key) {
  bool inGroup = false;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = Trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('[')) inGroup = line == Group;
    const size_t equals = line.find('=');
    if (!inGroup || equals == std::string_view::npos) continue;
    if (Trimmed(line.substr(0, equals)) == key) return Trimmed(line.substr(equals + 1));
  }
  return {};
}

std::optional<std::string> ProgramInFile(FileDoor& files, const std::string& path,
                                         const std::string& name) {
  status_t status = StatusOk;
  const std::optional<std::string> text = ReadWholeFile(files, path, status, SizeLimit);
  return text ? ActivatedProgram(*text, name) : std::nullopt;
}

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

std::optional<std::string> ActivationText(std::string_view name, std::string_view program) {
  if (!IsUtf8(program)) return std::nullopt;
  return std::string(Group) + "\nName=" + std::string(name) + "\nExec=" + Escaped(Quoted(program)) +
         "\n";
}

std::optional<std::string> ActivatedProgram(std::string_view text, std::string_view name) {
  if (ValueOf(text, "Name") != name) return std::nullopt;
  const std::optional<std::string> line = Unescaped(ValueOf(text, "Exec"));
  return line ? FirstWord(*line) : std::nullopt;
}

std::string ActivationFolder() { return DataFolder() + BelowDataFolder; }

std::optional<std::string> FindActivatedProgram(FileDoor& files, const std::string& name) {
  std::vector<std::string> folders = DataFolders();
  if (std::string runtime = RuntimeFolder(); !runtime.empty())
    folders.insert(folders.begin(), std::move(runtime));
  for (std::string& folder : folders) {
    folder.append(BelowDataFolder).append("/");
    if (auto program = ProgramInFile(files, (folder + name).append(Ending), name)) return program;
    // The session bus does not insist on the file's name.
    for (const std::string& file : files.List(folder).value_or(std::vector<std::string>())) {
      if (!file.ends_with(Ending)) continue;
      if (auto program = ProgramInFile(files, folder + file, name)) return program;
    }
  }
  return std::nullopt;
}

bool LiesInTrash(FileDoor& files, const std::string& path) {
  // A link in the trash lies there itself, wherever it leads.
  const size_t name = std::min(path.rfind('/'), path.size());
  const std::string whole = files.Canonical(path.substr(0, name)) + path.substr(name);
  if (whole.starts_with(files.Canonical(DataFolder() + "/Trash") + "/")) return true;
  // On other disks, at their top: ".Trash-1000/files/…" or ".Trash/1000/files/…".
  constexpr std::string_view mark = "/.Trash";
  for (size_t at = whole.find(mark); at != std::string::npos; at = whole.find(mark, at + 1)) {
    const size_t place = at + mark.size();
    const char separator = place < whole.size() ? whole[place] : '\0';
    const size_t end = whole.find('/', place + 1);
    if ((separator != '-' && separator != '/') || end == std::string::npos) continue;
    if (IsNumber(std::string_view(whole).substr(place + 1, end - place - 1))) return true;
  }
  return false;
}

}  // namespace kestrin
