#include "core/journal/RecordLine.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <utility>

namespace kestrin {

namespace {

constexpr size_t CheckDigits = 8;
constexpr size_t UsualFields = 24;  // of a line that begins a record
constexpr size_t AtOnce = 4;
constexpr std::string_view CutShort = "~";

constexpr std::string_view Special("\t\n\0\\", 4);
constexpr std::string_view Written = "tn0\\";  // what stands for them behind a backslash

void AppendEscaped(std::string& line, std::string_view value) {
  const auto isSpecial = [](char c) { return c == '\t' || c == '\n' || c == '\0' || c == '\\'; };
  for (auto at = value.begin(); at != value.end();) {
    const auto special = std::find_if(at, value.end(), isSpecial);
    line.append(at, special);
    at = special;
    if (at != value.end()) (line += '\\') += Written[Special.find(*at++)];
  }
}

bool IsEscaped(std::string_view text) {
  for (size_t at = text.find('\\'); at != std::string_view::npos; at = text.find('\\', at + 2))
    if (at + 1 == text.size() || Written.find(text[at + 1]) == std::string_view::npos) return false;
  return true;
}

std::string Unescaped(std::string_view escaped) {
  std::string value;
  for (size_t at = 0; at < escaped.size();) {
    const size_t special = std::min(escaped.find('\\', at), escaped.size());
    value += escaped.substr(at, special - at);
    at = special + 2;
    if (special < escaped.size()) value += Special[Written.find(escaped[special + 1])];
  }
  return value;
}

constexpr uint32 FirstHash = 2166136261u;
uint32 NextHash(uint32 hash, char c) { return (hash ^ static_cast<unsigned char>(c)) * 16777619u; }

std::string Digits(uint32 check) {
  constexpr char hexadecimal[] = "0123456789abcdef";
  std::string digits(CheckDigits, '0');
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

/// One of 64 bits for a key. The factor gives each key that is in use one of its own.
uint64 BitOf(std::string_view key) {
  constexpr uint64 Factor = 0x0FC5D19FBBA47F2B;
  uint64 word = 0;
  for (size_t i = std::min(key.size(), sizeof word); i-- > 0;)
    word = word << 8 | static_cast<unsigned char>(key[i]);
  return uint64{1} << (word * Factor >> 58);
}

/// What the check of a line is about.
std::string_view ContentOf(std::string_view line) {
  return line.size() > CheckDigits && line[CheckDigits] == '\t' ? line.substr(CheckDigits + 1) : "";
}

/// Fnv32 of the contents of several lines. Each step of one waits for the last; those of several
/// do not wait for each other.
std::array<uint32, AtOnce> Checks(std::span<const std::string_view> lines, size_t first) {
  std::array<std::string_view, AtOnce> contents;
  for (size_t i = 0; i < AtOnce && first + i < lines.size(); ++i)
    contents[i] = ContentOf(lines[first + i]);
  std::array<uint32, AtOnce> checks{};
  checks.fill(FirstHash);
  const size_t common = std::ranges::min(contents, {}, &std::string_view::size).size();
  for (size_t at = 0; at < common; ++at)
    for (size_t i = 0; i < AtOnce; ++i) checks[i] = NextHash(checks[i], contents[i][at]);
  for (size_t i = 0; i < AtOnce; ++i)
    for (const char c : contents[i].substr(common)) checks[i] = NextHash(checks[i], c);
  return checks;
}

/// `check`: that of its content.
std::optional<RecordLine> DecodeChecked(std::string_view line, uint32 check) {
  std::string_view rest = ContentOf(line);
  const std::string_view id = NextPart(rest);
  if (id.empty() || Digits(check) != line.substr(0, CheckDigits)) return std::nullopt;
  std::optional<RecordFields> fields = RecordFields::Of(rest);
  if (!fields) return std::nullopt;
  return RecordLine{std::string(id), std::move(*fields)};
}

}  // namespace

RecordFields::RecordFields(
    std::initializer_list<std::pair<std::string_view, std::string_view>> fields) {
  for (const auto& [key, value] : fields) Set(key, value);
}

std::optional<RecordFields> RecordFields::Of(std::string_view text) {
  if (text.ends_with('\t') || !IsEscaped(text)) return std::nullopt;
  RecordFields fields;
  bool mayRepeat = false;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view part = NextPart(rest);
    const size_t equals = part.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    const uint64 bit = BitOf(part.substr(0, equals));
    mayRepeat = mayRepeat || (fields.keys_ & bit) != 0;
    fields.keys_ |= bit;
  }
  if (mayRepeat)
    fields.MergeText(text);
  else
    fields.text_ = text;
  return fields;
}

std::optional<std::string_view> RecordFields::Find(std::string_view key) const {
  if ((keys_ & BitOf(key)) == 0) return std::nullopt;
  for (std::string_view rest = text_; rest.size() > key.size();) {
    if (rest[key.size()] == '=' && rest.starts_with(key)) {
      rest.remove_prefix(key.size() + 1);
      return NextPart(rest);
    }
    NextPart(rest);
  }
  return std::nullopt;
}

void RecordFields::AddEscaped(std::string_view key, std::string_view escaped) {
  if (!text_.empty()) text_ += '\t';
  ((text_ += key) += '=') += escaped;
  keys_ |= BitOf(key);
}

void RecordFields::SetEscaped(std::string_view key, std::string_view escaped) {
  if (const std::optional<std::string_view> held = Find(key))
    text_.replace(static_cast<size_t>(held->data() - text_.data()), held->size(), escaped);
  else
    AddEscaped(key, escaped);
}

void RecordFields::Set(std::string_view key, std::string_view value) {
  std::string escaped;
  AppendEscaped(escaped, value);
  SetEscaped(key, escaped);
}

void RecordFields::Add(std::string_view key, std::string_view value) {
  AddEscaped(key, "");
  AppendEscaped(text_, value);
}

void RecordFields::Set(std::string_view key, int64 value) { Set(key, std::to_string(value)); }
void RecordFields::Add(std::string_view key, int64 value) {
  AddEscaped(key, std::to_string(value));
}

bool RecordFields::Is(std::string_view key, std::string_view value) const {
  const std::optional<std::string_view> held = Find(key);
  if (!held) return value.empty();
  return held->find('\\') == std::string_view::npos ? *held == value : Unescaped(*held) == value;
}

std::string RecordFields::Text(std::string_view key) const {
  return Unescaped(Find(key).value_or(""));
}

std::optional<int64> RecordFields::Number(std::string_view key) const {
  return NumberOf(Find(key).value_or(""));
}

void RecordFields::MergeText(std::string_view text) {
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view part = NextPart(rest);
    const size_t equals = part.find('=');
    SetEscaped(part.substr(0, equals), part.substr(equals + 1));
  }
}

RecordReader::RecordReader(const RecordFields& fields) {
  fields_.reserve(UsualFields);
  for (std::string_view rest = fields.Encoded(); !rest.empty();) {
    const std::string_view part = NextPart(rest);
    const size_t equals = part.find('=');
    fields_.emplace_back(part.substr(0, equals), part.substr(equals + 1));
  }
}

std::optional<std::string_view> RecordReader::Find(std::string_view key) const {
  for (const auto& [name, value] : fields_)
    if (name == key) return value;
  return std::nullopt;
}

std::string RecordReader::Text(std::string_view key) const {
  return Unescaped(Find(key).value_or(""));
}

std::optional<int64> RecordReader::Number(std::string_view key) const {
  return NumberOf(Find(key).value_or(""));
}

std::optional<int64> NumberOf(std::string_view text) {
  int64 number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

std::string EncodeLine(std::string_view id, const RecordFields& fields) {
  std::string content(id);
  if (!fields.Encoded().empty()) (content += '\t') += fields.Encoded();
  return Digits(Fnv32(content)) + "\t" + content + "\n";
}

std::optional<RecordLine> DecodeLine(std::string_view line) {
  return DecodeChecked(line, Fnv32(ContentOf(line)));
}

RecordText DecodeLines(std::string_view bytes) {
  RecordText text;
  std::vector<std::string_view> lines;
  for (size_t end = bytes.find('\n'); end != std::string_view::npos;
       end = bytes.find('\n', end + 1)) {
    lines.push_back(bytes.substr(text.Whole, end - text.Whole));
    text.Whole = end + 1;
  }
  bool lastIsBroken = false;
  std::array<uint32, AtOnce> checks{};
  for (size_t i = 0; i < lines.size(); ++i) {
    if (i % AtOnce == 0) checks = Checks(lines, i);
    if (lines[i].empty()) continue;
    const bool isMark = lines[i] == CutShort;
    if (isMark && lastIsBroken) --text.Damaged;
    std::optional<RecordLine> record;
    if (!isMark) record = DecodeChecked(lines[i], checks[i % AtOnce]);
    lastIsBroken = !isMark && !record;
    if (lastIsBroken) ++text.Damaged;
    if (record) text.Lines.push_back(std::move(*record));
  }
  return text;
}

uint32 Fnv32(std::string_view bytes) {
  uint32 hash = FirstHash;
  for (const char c : bytes) hash = NextHash(hash, c);
  return hash;
}

uint64 Fnv64(std::string_view bytes) {
  uint64 hash = 14695981039346656037u;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  return hash;
}

}  // namespace kestrin
