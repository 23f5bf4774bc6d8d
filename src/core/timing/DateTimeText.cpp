#include "core/timing/DateTimeText.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/timing/DateParser.h"
#include "core/timing/EventTiming.h"
#include "core/timing/EventTypes.h"

namespace kestrin {

namespace {

constexpr std::array<std::string_view, 7> TimeWords = {"am", "pm", "hr", "hour", "min", "sec", ":"};

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }

int TwelveHour(int hour) { return hour % 12 == 0 ? 12 : hour % 12; }
const char* HalfOfDay(int hour) { return hour > 11 ? " PM" : " AM"; }

/// As many digits as there are places, with leading zeros.
void PutNumber(char* out, int places, int64 wide) {
  auto number = static_cast<uint32>(wide);
  for (; places > 0; number /= 10) out[--places] = static_cast<char>('0' + number % 10);
}

std::string ClockText(int hour, int minute, int second) {
  std::string text = "00:00:00";
  PutNumber(text.data(), 2, hour);
  PutNumber(text.data() + 3, 2, minute);
  PutNumber(text.data() + 6, 2, second);
  return text;
}

/// Where the "am" or "pm" begins.
size_t FindHalfOfDay(std::string_view text) {
  for (size_t at = 0; at + 1 < text.size(); ++at) {
    const char c = Lower(text[at]);
    if ((c == 'a' || c == 'p') && Lower(text[at + 1]) == 'm') return at;
  }
  return std::string_view::npos;
}

/// Hour, minute, second from the start of `text`; those that are missing are 0.
std::array<int, 3> LeadingTime(std::string_view text) {
  std::array<int, 3> parts = {};
  size_t at = 0;
  for (int& part : parts) {
    for (int digits = 0; digits < 2 && at < text.size() && IsDigit(text[at]); ++digits)
      part = part * 10 + (text[at++] - '0');
    if (at >= text.size() || text[at++] != ':') break;
  }
  return parts;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// The am/pm time with a blank and a comma before it, in 24 hours; only what stands directly before
/// the letters is its time.
std::string WithTimeApart(std::string_view text) {
  for (size_t half = 0; half + 1 < text.size(); ++half) {
    const char c = Lower(text[half]);
    if ((c != 'a' && c != 'p') || Lower(text[half + 1]) != 'm') continue;
    size_t end = half;
    while (end > 0 && IsBlank(text[end - 1])) --end;
    size_t start = end;
    while (start > 0 &&
           (IsDigit(text[start - 1]) || text[start - 1] == ':' || text[start - 1] == '.'))
      --start;
    if (start == end) continue;
    std::string digits(text.substr(start, end - start));
    std::replace(digits.begin(), digits.end(), '.', ':');
    std::string before(Trimmed(text.substr(0, start)));
    const bool follows = !before.empty() && IsDigit(before.back());
    return before + (follows ? ", " : " ") + GetFixedTime(digits + std::string(text.substr(half)));
  }
  return std::string(text);
}

bool HoldsTimeWord(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  return std::any_of(TimeWords.begin(), TimeWords.end(),
                     [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

}  // namespace

std::string GetDateTimeString(int32 time, bool withTime, const Zone& zone, bool use24Hours) {
  return std::string(GetDateTimeText(time, withTime, zone, use24Hours));
}

DateTimeText GetDateTimeText(int32 time, bool withTime, const Zone& zone, bool use24Hours) {
  if (time == 0 || time == -1) return {"None", 4};
  constexpr size_t dateAlone = 16, halfOfDay = 3;
  DateTimeText text{"Sun, Nov 00 0000, 00:00:00 AM", dateAlone};
  const CivilFields fields = ToFields(zone.AtMoment(time));
  char* const to = text.bytes;
  std::copy_n(DayAbbr[static_cast<size_t>(fields.weekday)].data(), 3, to);
  std::copy_n(MonthAbbr[static_cast<size_t>(fields.month)].data(), 3, to + 5);
  PutNumber(to + 9, 2, fields.day);
  PutNumber(to + 12, 4, fields.year);
  if (!withTime) return text;
  const int hour = static_cast<int>(fields.hour);
  PutNumber(to + 18, 2, use24Hours ? hour : TwelveHour(hour));
  PutNumber(to + 21, 2, fields.minute);
  PutNumber(to + 24, 2, fields.second);
  std::copy_n(HalfOfDay(hour), halfOfDay, to + 26);
  text.length = use24Hours ? 26 : 26 + halfOfDay;
  return text;
}

std::string GetTimeOfDayText(int32 secondsIntoDay, bool use24Hours) {
  const int32 seconds = FoldIntoDay(secondsIntoDay);
  return ClockTimeText(seconds - seconds % 60, use24Hours, HourDigits::Two);
}

std::string ClockTimeText(int32 secondsIntoDay, bool use24Hours, HourDigits hourDigits) {
  const int32 time = FoldIntoDay(secondsIntoDay);
  const int hour = time / 3600, shown = use24Hours ? hour : TwelveHour(hour);
  std::string text = ClockText(shown, time / 60 % 60, time % 60);
  if (time % 60 == 0) text.resize(5);
  if (hourDigits == HourDigits::AsNeeded && !use24Hours && shown < 10) text.erase(0, 1);
  return use24Hours ? text : text + HalfOfDay(hour);
}

std::string GetShortDateTime(int32 time, bool withTime, const Zone& zone, bool use24Hours) {
  std::string text = GetDateTimeString(time, false, zone, use24Hours);
  if (!withTime || time == 0 || time == -1) return text;
  return text + ", " +
         ClockTimeText(SecondsIntoDay(zone.AtMoment(time)), use24Hours, HourDigits::Two);
}

std::string GetFixedTime(std::string_view text) {
  const size_t half = FindHalfOfDay(text);
  if (half == std::string_view::npos) return std::string(text);
  size_t start = half;
  while (start > 0 &&
         (IsBlank(text[start - 1]) || IsDigit(text[start - 1]) || text[start - 1] == ':'))
    --start;
  while (start < half && IsBlank(text[start])) ++start;

  std::array<int, 3> time = LeadingTime(text.substr(start, half - start));
  if (time[0] == 12) time[0] = 0;
  if (Lower(text[half]) == 'p') time[0] += 12;
  return std::string(text.substr(0, start)) + ClockText(time[0], time[1], time[2]) +
         std::string(text.substr(half + 2));
}

int32 hastimeinfo_parsedate(std::string_view text, int64 now, const Zone& zone, bool* hasTime) {
  const std::optional<ReadMoment> read = ReadDate(GetFixedTime(text), now, zone).read;
  if (hasTime)
    *hasTime = read && read->moment != -1 &&
               (SecondsIntoDay(read->wall) != 0 || Trimmed(text) == "12" || HoldsTimeWord(text));
  return read ? read->moment : -1;
}

TypedDate ReadTypedDate(std::string_view text, int64 now, const Zone& zone,
                        const DateLanguage& language) {
  const auto read = [&](const std::string& rewritten) {
    return ReadDate(rewritten, now, zone, language.order);
  };
  DateAnswer answer;
  if (!HoldsOwnHalfOfDay(text, language)) answer = read(GetFixedTime(text));
  if (!answer.isDate) answer = read(WithTimeApart(text));
  if (!answer.isDate) answer = read(WithTimeApart(InEnglish(text, language)));
  if (!answer.isDate) return {};
  if (!answer.read) return {.kind = TypedDate::Kind::OutOfReach};
  return {TypedDate::Kind::Date, answer.read->moment, answer.read->hasTime, answer.read->timeAlone};
}

std::optional<std::string_view> WhyNoDate(const TypedDate& date, bool repeats) {
  if (date.kind == TypedDate::Kind::NoDate)
    return "This is no date. Type one like Nov 20 2026, tomorrow, or Friday 3 pm.";
  if (date.kind == TypedDate::Kind::OutOfReach) return repeats ? RepeatOutOfRange : DateOutOfRange;
  if (repeats && (date.moment == 0 || date.moment == -1))
    return "The very beginning of 1970 stands for no date at all; choose a moment beside it.";
  if (!repeats && date.moment <= 0) return DateOutOfRange;
  return std::nullopt;
}

int32 ParseTimeOfDay(std::string_view text, const DateLanguage& language) {
  const bool hasDigit = std::any_of(text.begin(), text.end(), IsDigit);
  std::optional<int32> time = ReadTimeOfDay(hasDigit ? GetFixedTime(text) : std::string(text));
  if (!time) time = ReadTimeOfDay(WithTimeApart(text));
  if (!time) time = ReadTimeOfDay(WithTimeApart(InEnglish(text, language)));
  return time.value_or(-1);
}

}  // namespace kestrin
