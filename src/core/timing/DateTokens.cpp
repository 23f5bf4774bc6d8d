#include "core/timing/DateTokens.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestrin {

namespace {

constexpr size_t MostCharacters = 128;
constexpr size_t MostDigits = 9;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

size_t LengthOfRun(std::string_view text, bool (*belongs)(char)) {
  return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), belongs) - text.begin());
}

/// The token that `text`, which begins with no blank, begins with; `taken` becomes its length.
std::optional<DateToken> FirstToken(std::string_view text, size_t& taken) {
  DateToken token;
  if (IsDigit(text.front())) {
    taken = LengthOfRun(text, IsDigit);
    if (taken > MostDigits) return std::nullopt;
    token.kind = DateToken::Kind::Number;
    token.digits = static_cast<int32>(taken);
    for (const char digit : text.substr(0, taken)) token.number = token.number * 10 + digit - '0';
  } else if (IsLetter(text.front())) {
    taken = LengthOfRun(text, IsLetter);
    token.kind = DateToken::Kind::Word;
    for (const char letter : text.substr(0, taken)) token.word += Lower(letter);
  } else {
    if (std::string_view(":/-.,").find(text.front()) == std::string_view::npos) return std::nullopt;
    taken = 1;
    token.word.push_back(text.front());
  }
  return token;
}

}  // namespace

std::optional<std::vector<DateToken>> CutIntoTokens(std::string_view text) {
  if (text.size() > MostCharacters) return std::nullopt;
  std::vector<DateToken> tokens;
  for (bool glued = false; !text.empty(); glued = true) {
    const size_t blanks = LengthOfRun(text, IsBlank);
    text.remove_prefix(blanks);
    if (text.empty()) break;
    size_t taken = 0;
    std::optional<DateToken> token = FirstToken(text, taken);
    if (!token) return std::nullopt;
    token->glued = glued && blanks == 0;
    tokens.push_back(std::move(*token));
    text.remove_prefix(taken);
  }
  return tokens;
}

std::optional<int32> RowOf(std::string_view word, std::span<const std::string_view> names) {
  if (word.size() < 3) return std::nullopt;
  const auto begins = [word](std::string_view name) {
    return name.size() >= word.size() &&
           std::equal(word.begin(), word.end(), name.begin(),
                      [](char typed, char letter) { return typed == Lower(letter); });
  };
  const auto found = std::find_if(names.begin(), names.end(), begins);
  if (found == names.end()) return std::nullopt;
  return static_cast<int32>(found - names.begin());
}

std::optional<DateUnit> UnitNamed(std::string_view word) {
  static constexpr std::array<std::pair<std::string_view, DateUnit>, 10> units = {{
      {"second", {.seconds = 1}},
      {"sec", {.seconds = 1}},
      {"minute", {.seconds = 60}},
      {"min", {.seconds = 60}},
      {"hour", {.seconds = 3600}},
      {"hr", {.seconds = 3600}},
      {"day", {.days = 1}},
      {"week", {.days = 7}},
      {"month", {.months = 1}},
      {"year", {.months = 12}},
  }};
  if (word.ends_with('s')) word.remove_suffix(1);
  for (const auto& [name, unit] : units)
    if (name == word) return unit;
  return std::nullopt;
}

std::string_view OrdinalEnding(int32 number) {
  constexpr std::array<std::string_view, 4> endings = {"th", "st", "nd", "rd"};
  const bool teen = number / 10 == 1;
  return teen || number % 10 > 3 ? endings[0] : endings[static_cast<size_t>(number % 10)];
}

}  // namespace kestrin
