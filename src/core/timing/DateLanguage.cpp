#include "core/timing/DateLanguage.h"

#include <algorithm>
#include <optional>

#include "core/timing/DateWords.h"
#include "core/timing/EventTypes.h"

namespace kestrin {

namespace {

constexpr size_t ShortestName = 3;
constexpr std::string_view HourSign = "'";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }
/// Bytes beyond ASCII belong to letters here: no sign of a date lies there.
bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

size_t LettersAt(std::string_view text) {
  return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), IsLetter) - text.begin());
}

/// The second byte of a letter from À to ÿ as a plain one; '?' where there is none.
char PlainLetter(unsigned char second) {
  constexpr std::string_view letters = "aaaaaa?ceeeeiiii?nooooo?ouuuuy??";
  return letters[(second - 0x80u) % letters.size()];
}

struct NameMatch {
  std::string_view english;
  bool isWhole = false;
};

NameMatch MatchName(std::string_view word, const std::vector<DateLanguage::Word>& names) {
  NameMatch match;
  for (const DateLanguage::Word& name : names) {
    if (name.local == word) return {name.english, true};
    if (match.english.empty() && word.size() >= ShortestName && name.local.starts_with(word))
      match.english = name.english;
  }
  return match;
}

/// Goes through a text from the left and writes it in English.
class Translation {
 public:
  explicit Translation(const DateLanguage& language) : language_(language) {}

  std::string Of(std::string_view folded) {
    while (!folded.empty()) folded.remove_prefix(TakeFrom(folded));
    return out_;
  }

 private:
  size_t TakeFrom(std::string_view text) {
    if (!IsLetter(text.front())) {
      out_ += text.front();
      return 1;
    }
    const DateLanguage::Word* const phrase = PhraseAt(text);
    if (phrase) {
      const size_t length = phrase->local.size();
      if (phrase->english == HourSign)
        PutHourSign(length < text.size() && IsDigit(text[length]));
      else
        Put(phrase->english);
      return length;
    }
    const size_t length = LettersAt(text);
    const std::string_view name = NameOf(text.substr(0, length));
    Put(name.empty() ? text.substr(0, length) : name);
    return length;
  }

  /// The longest that the text begins with, up to the end of a word.
  const DateLanguage::Word* PhraseAt(std::string_view text) const {
    const DateLanguage::Word* best = nullptr;
    for (const DateLanguage::Word& phrase : language_.phrases) {
      const size_t length = phrase.local.size();
      const bool ends =
          length >= text.size() || !IsLetter(text[length]) || !IsLetter(phrase.local.back());
      if (text.starts_with(phrase.local) && ends && (!best || length > best->local.size()))
        best = &phrase;
    }
    return best;
  }

  /// Where a short name may be a weekday's or a month's, a month stands behind a number.
  std::string_view NameOf(std::string_view word) const {
    const NameMatch weekday = MatchName(word, language_.weekdays);
    const NameMatch month = MatchName(word, language_.months);
    if (month.english.empty()) return weekday.english;
    if (weekday.english.empty()) return month.english;
    if (weekday.isWhole != month.isWhole) return weekday.isWhole ? weekday.english : month.english;
    return EndsInNumber() ? month.english : weekday.english;
  }

  bool EndsInNumber() const {
    std::string_view before = out_;
    while (!before.empty() && (IsBlank(before.back()) || before.back() == '.'))
      before.remove_suffix(1);
    if (before.ends_with(" of")) before.remove_suffix(3);
    return !before.empty() && IsDigit(before.back());
  }

  void Put(std::string_view english) {
    const bool goesBefore = english == "next" || english == "last";
    if (goesBefore && nameAt_ && !out_.empty()) {  // "lundi prochain"
      out_.insert(*nameAt_, std::string(english) + " ");
      nameAt_.reset();
      return;
    }
    const bool isName = !english.empty() && english != "on" && english != "at" && english != "in" &&
                        english != "of" && english != "this" && !goesBefore;
    nameAt_ = isName ? std::optional(out_.size()) : std::nullopt;
    out_ += english;
  }

  /// "9 Uhr", "9:30 Uhr", "9h30", "dans 2 heures".
  void PutHourSign(bool minutesFollow) {
    while (!out_.empty() && IsBlank(out_.back())) out_.pop_back();
    size_t digits = out_.size();
    while (digits > 0 && IsDigit(out_[digits - 1])) --digits;
    if (digits >= 3 && std::string_view(out_).substr(0, digits).ends_with("in "))
      out_ += " hour";
    else if (digits == 0 || (out_[digits - 1] != ':' && out_[digits - 1] != '.'))
      out_ += minutesFollow ? ":" : ":00";
  }

  const DateLanguage& language_;
  std::string out_;
  std::optional<size_t> nameAt_;  ///< where the weekday or the unit begins that was put last
};

}  // namespace

std::string FoldedLetters(std::string_view text) {
  std::string folded;
  for (size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    const auto second = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : 0);
    if (byte == 0xc3 && second == 0x9f) {
      folded += "ss";
      ++at;
    } else if (byte == 0xc3 && second >= 0x80 && second < 0xc0 && PlainLetter(second) != '?') {
      folded += PlainLetter(second);
      ++at;
    } else if (text.substr(at).starts_with("\u2019")) {
      folded += '\'';
      at += 2;
    } else {
      folded += byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : text[at];
    }
  }
  return folded;
}

void AddNames(DateLanguage& language, std::span<const std::string> names) {
  const bool areDays = names.size() == DayNames.size();
  if (!areDays && names.size() != MonthNames.size()) return;
  for (size_t row = 0; row < names.size(); ++row) {
    std::string local = FoldedLetters(names[row]);
    while (!local.empty() && local.back() == '.') local.pop_back();
    if (local.empty() || LettersAt(local) != local.size()) continue;
    const std::string_view english = areDays ? DayNames[row] : MonthNames[row];
    (areDays ? language.weekdays : language.months).push_back({local, FoldedLetters(english)});
  }
}

DateLanguage LanguageNamed(std::string_view code, DateOrder order) {
  DateLanguage language;
  language.order = order;
  for (const LanguageWords& words : KnownLanguages()) {
    if (words.code != code) continue;
    AddNames(language, std::vector<std::string>(words.weekdays.begin(), words.weekdays.end()));
    AddNames(language, std::vector<std::string>(words.months.begin(), words.months.end()));
    for (const LanguageWords::Phrase& phrase : words.phrases)
      language.phrases.push_back({std::string(phrase.local), std::string(phrase.english)});
  }
  return language;
}

std::string InEnglish(std::string_view text, const DateLanguage& language) {
  return Translation(language).Of(FoldedLetters(text));
}

bool HoldsOwnHalfOfDay(std::string_view text, const DateLanguage& language) {
  const std::string folded = FoldedLetters(text);
  for (size_t at = 0; at < folded.size(); ++at) {
    const size_t length = LettersAt(std::string_view(folded).substr(at));
    const std::string word = folded.substr(at, length);
    if (word == "am" || word == "pm") {
      const size_t before = at == 0 ? std::string::npos : folded.find_last_not_of(" \t", at - 1);
      const bool isOwn = std::any_of(language.phrases.begin(), language.phrases.end(),
                                     [&](const auto& phrase) { return phrase.local == word; });
      if (isOwn && (before == std::string::npos || !IsDigit(folded[before]))) return true;
    }
    at += length;
  }
  return false;
}

}  // namespace kestrin
