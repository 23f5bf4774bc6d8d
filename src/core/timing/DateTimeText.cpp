#include "core/timing/DateTimeText.h"

#include <algorithm>
#include <array>
#include <cstdio>
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

std::string ClockText(int hour, int minute, int second) {
  std::array<char, 40> text = {};
  std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", hour, minute, second);
  return text.data();
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

bool HoldsTimeWord(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  return std::any_of(TimeWords.begin(), TimeWords.end(),
                     [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

}  // namespace

std::string GetDateTimeString(int32 time, bool withTime, const Zone& zone, bool use24Hours) {
  if (time == 0 || time == -1) return "None";
  const CivilFields fields = ToFields(zone.AtMoment(time));
  std::array<char, 40> date = {};
  std::snprintf(date.data(), date.size(), "%s, %s %02d %04d",
                DayAbbr[static_cast<size_t>(fields.weekday)].data(),
                MonthAbbr[static_cast<size_t>(fields.month)].data(), static_cast<int>(fields.day),
                static_cast<int>(fields.year));
  std::string text = date.data();
  if (!withTime) return text;
  const int hour = static_cast<int>(fields.hour);
  text.append(", ").append(ClockText(use24Hours ? hour : TwelveHour(hour),
                                     static_cast<int>(fields.minute),
                                     static_cast<int>(fields.second)));
  if (!use24Hours) text.append(HalfOfDay(hour));
  return text;
}

std::string GetTimeOfDayText(int32 secondsIntoDay, bool use24Hours) {
  const int32 seconds = FoldIntoDay(secondsIntoDay);
  const int hour = seconds / 3600;
  std::array<char, 40> text = {};
  std::snprintf(text.data(), text.size(), "%02d:%02d%s", use24Hours ? hour : TwelveHour(hour),
                seconds / 60 % 60, use24Hours ? "" : HalfOfDay(hour));
  return text.data();
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
  const std::optional<ReadMoment> read = ReadDate(GetFixedTime(text), now, zone);
  if (hasTime)
    *hasTime = read && read->moment != -1 &&
               (SecondsIntoDay(read->wall) != 0 || Trimmed(text) == "12" || HoldsTimeWord(text));
  return read ? read->moment : -1;
}

std::optional<std::string_view> WhyNoDate(std::string_view text, int64 now, const Zone& zone) {
  const std::string fixed = GetFixedTime(text);
  if (!IsDate(fixed, now, zone))
    return "This is no date. Type one like Nov 20 2026, tomorrow, or Friday, 3 pm "
           "(with a comma before the time).";
  const std::optional<ReadMoment> read = ReadDate(fixed, now, zone);
  if (!read || read->moment <= 0) return DateOutOfRange;
  return std::nullopt;
}

int32 ParseDate(std::string_view text, int64 now, const Zone& zone) {
  const std::optional<ReadMoment> read = ReadDate(text, now, zone);
  return read ? read->moment : -1;
}

int32 ParseTimeOfDay(std::string_view text) {
  const bool hasDigit = std::any_of(text.begin(), text.end(), IsDigit);
  return ReadTimeOfDay(hasDigit ? GetFixedTime(text) : std::string(text)).value_or(-1);
}

}  // namespace kestrin
