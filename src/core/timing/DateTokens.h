// Typed text cut into numbers, words and signs, and what the words mean.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

struct DateToken {
  enum class Kind { Number, Word, Sign };
  Kind kind = Kind::Sign;
  int32 number = 0;  ///< of a number, at most nine digits
  int32 digits = 0;
  std::string word;    ///< lower case; of a sign, the one character
  bool glued = false;  ///< follows the token before it without a blank

  bool IsNumber(int32 leastDigits, int32 mostDigits) const {
    return kind == Kind::Number && digits >= leastDigits && digits <= mostDigits;
  }
  bool Is(std::string_view text) const { return kind != Kind::Number && word == text; }
};

/// Nothing for text longer than 128 characters, numbers longer than nine digits, and characters
/// that no date holds.
std::optional<std::vector<DateToken>> CutIntoTokens(std::string_view text);

/// The row of the name that `word` (lower case) is or begins, with three letters at least.
std::optional<int32> RowOf(std::string_view word, std::span<const std::string_view> names);

struct DateUnit {
  int64 seconds = 0, days = 0, months = 0;  ///< exactly one of them
};
/// "hour", "days", "mins", …
std::optional<DateUnit> UnitNamed(std::string_view word);

/// "st", "nd", "rd" or "th".
std::string_view OrdinalEnding(int32 number);

}  // namespace kestrin
