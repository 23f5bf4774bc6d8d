// Moments as text, and typed text as moments. Texts are English and do not follow the locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/timing/DateLanguage.h"
#include "support/LocalTime.h"

namespace kestrin {

/// "Sun, Nov 15 2026, 08:08:42 PM" (12-hour), "…, 20:08:42" (24-hour), or without the time of day;
/// "None" for 0 and -1.
std::string GetDateTimeString(int32 time, bool withTime, const Zone& zone, bool use24Hours);
/// The same, without asking for memory.
struct DateTimeText {
  char bytes[32] = {};
  size_t length = 0;
  operator std::string_view() const { return {bytes, length}; }
};
DateTimeText GetDateTimeText(int32 time, bool withTime, const Zone& zone, bool use24Hours);

/// "08:05 AM" or "08:05" from seconds after midnight.
std::string GetTimeOfDayText(int32 secondsIntoDay, bool use24Hours);

enum class HourDigits { Two, AsNeeded };
/// The same with the seconds where they are not 0: "08:05:30 AM"; AsNeeded: "8:05 AM". Of a 24-hour
/// clock the hour has two digits always.
std::string ClockTimeText(int32 secondsIntoDay, bool use24Hours, HourDigits hourDigits);
/// GetDateTimeString without seconds that are 0: "Sun, Nov 15 2026, 08:08 PM".
std::string GetShortDateTime(int32 time, bool withTime, const Zone& zone, bool use24Hours);

/// The first "am"/"pm" time rewritten as 24-hour "hh:mm:ss"; without one, the text unchanged. The
/// walk back from the letters takes digits and blanks alike: "Jan 5 3 pm" reads the 5 as the hour.
std::string GetFixedTime(std::string_view text);

/// What a person typed as a moment in `zone`, relative to `now`; -1 when it is no date. A day
/// without a time is its midnight. `hasTime` (may be null) tells whether a time of day was named.
int32 hastimeinfo_parsedate(std::string_view text, int64 now, const Zone& zone, bool* hasTime);

/// What a field makes of what a person typed.
struct TypedDate {
  enum class Kind { NoDate, OutOfReach, Date };
  Kind kind = Kind::NoDate;
  int32 moment = 0;        ///< of a Date
  bool hasTime = false;    ///< a time of day was named, be it midnight
  bool timeAlone = false;  ///< and nothing else: `moment` is that time today
};

/// As hastimeinfo_parsedate reads it, with the region's order of numbers; if that is no date, with
/// a comma between a date and its "9am", then with the region's words.
TypedDate ReadTypedDate(std::string_view text, int64 now, const Zone& zone,
                        const DateLanguage& language = {});

/// The complaints about a date that cannot be stored.
inline constexpr char DateOutOfRange[] = "Only dates from 1970 to January 18, 2038 can be kept.";
inline constexpr char RepeatOutOfRange[] =
    "Only dates from December 15, 1901 to January 18, 2038 can be kept.";

/// Why an event cannot take the date: it is none, or none that can be stored; one that does not
/// repeat takes none before 1970. A sentence for the person who typed it.
std::optional<std::string_view> WhyNoDate(const TypedDate& date, bool repeats);

/// A time of day alone ("7pm", "19:30", "8.30", "noon", "12"): 0..86399, or -1.
int32 ParseTimeOfDay(std::string_view text, const DateLanguage& language = {});

}  // namespace kestrin
