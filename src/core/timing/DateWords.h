// The words for dates of the languages that are known by heart. docs/time-rules.md has examples.
#pragma once

#include <array>
#include <span>
#include <string_view>

namespace kestrin {

struct LanguageWords {
  std::string_view code;
  std::array<std::string_view, 7> weekdays;  ///< from Sunday; all folded
  std::array<std::string_view, 12> months;
  struct Phrase {
    std::string_view local, english;
  };
  std::span<const Phrase> phrases;
};

std::span<const LanguageWords> KnownLanguages();

}  // namespace kestrin
