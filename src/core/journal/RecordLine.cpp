#include "core/journal/RecordLine.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace kestrin {

namespace {

constexpr size_t CheckDigits = 8;
constexpr size_t UsualFields = 24;  // of a line that begins a record
constexpr std::string_view CutShort = "~";

void AppendEscaped(std::string& line, std::string_view value) {
  for (const char c : value) switch (c) {
      case '\t':
        line += "\\t";
        break;
      case '\n':
        line += "\\n";
        break;
      case '\0':
        line += "\\0";
        break;
      case '\\':
        line += "\\\\";
        break;
      default:
        line += c;
    }
}

bool Unescape(std::string_view escaped, std::string& value) {
  if (escaped.find('\\') == std::string_view::npos) {
    value = escaped;
    return true;
  }
  value.reserve(escaped.size());
  for (size_t at = 0; at < escaped.size(); ++at) {
    if (escaped[at] != '\\') {
      value += escaped[at];
      continue;
    }
    if (++at == escaped.size()) return false;
    switch (escaped[at]) {
      case 't':
        value += '\t';
        break;
      case 'n':
        value += '\n';
        break;
      case '0':
        value += '\0';
        break;
      case '\\':
        value += '\\';
        break;
      default:
        return false;
    }
  }
  return true;
}

std::string Check(std::string_view content) {
  constexpr char hexadecimal[] = "0123456789abcdef";
  std::string digits(CheckDigits, '0');
  uint32 check = Fnv32(content);
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, check >>= 4)
    *digit = hexadecimal[check & 15];
  return digits;
}

/// Takes what stands before the next TAB off `rest`.
std::string_view NextPart(std::string_view& rest) {
  const size_t tab = rest.find('\t');
  const std::string_view part = rest.substr(0, tab);
  rest = tab == std::string_view::npos ? std::string_view() : rest.substr(tab + 1);
  return part;
}

}  // namespace

const std::string* RecordFields::Find(std::string_view key) const {
  for (const auto& [name, value] : list_)
    if (name == key) return &value;
  return nullptr;
}

void RecordFields::Set(std::string_view key, std::string value) {
  for (auto& [name, held] : list_)
    if (name == key) {
      held = std::move(value);
      return;
    }
  if (list_.empty()) list_.reserve(UsualFields);
  list_.emplace_back(key, std::move(value));
}

bool RecordFields::Is(std::string_view key, std::string_view value) const {
  const std::string* const held = Find(key);
  return held ? *held == value : value.empty();
}

void RecordFields::Set(std::string_view key, int64 value) { Set(key, std::to_string(value)); }

std::string RecordFields::Text(std::string_view key) const {
  const std::string* const value = Find(key);
  return value ? *value : std::string();
}

std::optional<int64> RecordFields::Number(std::string_view key) const {
  const std::string* const value = Find(key);
  if (!value) return std::nullopt;
  int64 number = 0;
  const char* const end = value->data() + value->size();
  const auto [stopped, error] = std::from_chars(value->data(), end, number);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

void RecordFields::Merge(const RecordFields& later) {
  for (const auto& [key, value] : later.list_) Set(key, value);
}

std::string EncodeLine(std::string_view id, const RecordFields& fields) {
  std::string content(id);
  for (const auto& [key, value] : fields.All()) {
    content += '\t';
    content += key;
    content += '=';
    AppendEscaped(content, value);
  }
  return Check(content) + "\t" + content + "\n";
}

std::optional<RecordLine> DecodeLine(std::string_view line) {
  if (line.size() <= CheckDigits || line[CheckDigits] != '\t') return std::nullopt;
  std::string_view rest = line.substr(CheckDigits + 1);
  if (Check(rest) != line.substr(0, CheckDigits)) return std::nullopt;
  RecordLine record;
  record.Id = NextPart(rest);
  if (record.Id.empty()) return std::nullopt;
  while (!rest.empty()) {
    const std::string_view part = NextPart(rest);
    const size_t equals = part.find('=');
    std::string value;
    if (equals == std::string_view::npos || !Unescape(part.substr(equals + 1), value))
      return std::nullopt;
    record.Fields.Set(part.substr(0, equals), std::move(value));
  }
  return record;
}

RecordText DecodeLines(std::string_view bytes) {
  RecordText text;
  text.Lines.reserve(static_cast<size_t>(std::count(bytes.begin(), bytes.end(), '\n')));
  bool lastIsBroken = false;
  for (size_t at = 0; at < bytes.size();) {
    const size_t end = bytes.find('\n', at);
    if (end == std::string_view::npos) break;
    const std::string_view line = bytes.substr(at, end - at);
    at = text.Whole = end + 1;
    if (line == CutShort) {
      if (lastIsBroken) --text.Damaged;
      lastIsBroken = false;
    } else if (!line.empty()) {
      std::optional<RecordLine> record = DecodeLine(line);
      lastIsBroken = !record;
      if (record)
        text.Lines.push_back(std::move(*record));
      else
        ++text.Damaged;
    }
  }
  return text;
}

uint32 Fnv32(std::string_view bytes) {
  uint32 hash = 2166136261u;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  return hash;
}

uint64 Fnv64(std::string_view bytes) {
  uint64 hash = 14695981039346656037u;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  return hash;
}

}  // namespace kestrin
