// What a region says of dates beside the English words: its names, its day words, and the order of
// its numbers. A value: whoever knows the region hands it in.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// Of "3/4/2027" and "3-4-2027"; a number of four digits at the front is the year in any order.
enum class DateOrder { MonthFirst, DayFirst };

struct DateLanguage {
  struct Word {
    std::string local;    ///< folded
    std::string english;  ///< what stands for it in a date; empty: nothing
  };

  DateOrder order = DateOrder::MonthFirst;
  std::vector<Word> weekdays;  ///< from Sunday, perhaps several times over
  std::vector<Word> months;    ///< from January, likewise
  std::vector<Word> phrases;   ///< of one word or several
};

/// Latin letters in lower case and without their accents; other characters stay.
std::string FoldedLetters(std::string_view text);

/// The words of a language by its two-letter code: "de", "es", "fr", "it", any country of them.
/// Without words for one that is not known here.
DateLanguage LanguageNamed(std::string_view code, DateOrder order);

/// Adds seven names from Sunday, or twelve from January, as a locale has them in UTF-8 and lower
/// case.
void AddNames(DateLanguage& language, std::span<const std::string> names);

/// The text with the language's words as English ones.
std::string InEnglish(std::string_view text, const DateLanguage& language);

/// Whether the text holds "am" or "pm" as a word of its own where no time stands before it, and the
/// language has such a word ("am Montag").
bool HoldsOwnHalfOfDay(std::string_view text, const DateLanguage& language);

}  // namespace kestrin
