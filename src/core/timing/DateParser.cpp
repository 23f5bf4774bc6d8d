#include "core/timing/DateParser.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include "core/timing/DateTokens.h"
#include "core/timing/EventTiming.h"
#include "core/timing/EventTypes.h"
#include "support/CalendarMonth.h"

namespace kestrin {

namespace {

constexpr int64 FarthestDay = 30000;  // beyond what a stored time can hold, either way

int64 AddMonthsWithin(int64 day, int64 months) {
  const DayInMonth date = MonthOf(day);
  const int64 month = date.month + months;
  return FirstDayOf(month) + std::min(date.day, LengthOf(month)) - 1;
}

/// Reads tokens from the left, one part of the text after another. A Read… that gives false may
/// have taken tokens; `Try` puts them back.
class DateReader {
 public:
  DateReader(std::vector<DateToken> tokens, int64 now, Civil wall, DateOrder order)
      : tokens_(std::move(tokens)), order_(order), now_(now), today_(DayOf(wall)) {}

  bool ReadAll();
  bool ReadTimeAlone();

  std::optional<int64> Elapsed() const { return elapsed_; }
  std::optional<Civil> Wall() const;
  int32 TimeOfDay() const { return timeOfDay_.value_or(0); }
  bool HasTime() const { return timeOfDay_ || elapsed_; }
  bool IsTimeAlone() const { return timeOfDay_ && !day_ && !weekday_; }

 private:
  using Part = bool (DateReader::*)();
  bool Try(Part part);

  bool AtEnd() const { return at_ == tokens_.size(); }
  const DateToken* Peek(size_t ahead = 0) const {
    return at_ + ahead < tokens_.size() ? &tokens_[at_ + ahead] : nullptr;
  }
  bool Take(std::string_view text);
  bool TakeGlued(std::string_view text);
  std::optional<int32> TakeNumber(int32 leastDigits, int32 mostDigits);
  std::optional<int32> TakeName(std::span<const std::string_view> names);

  bool ReadPart();
  bool ReadBareHour();
  bool ReadTime();
  bool ReadTimeOrHour();
  bool ReadDayWord();
  bool ReadWeekday();
  bool ReadNextOrLast();
  bool ReadRelative();
  bool ReadDate();
  bool ReadYearFirst();
  bool ReadTwoNumbers();
  bool ReadDayDotMonth();
  bool ReadDayThenMonth();
  bool ReadMonthThenDay();

  /// 0..6 days from today to the next such weekday.
  int64 DaysTo(int32 weekday) const {
    const int64 ahead = weekday - WeekdayOfDay(today_);
    return ahead < 0 ? ahead + 7 : ahead;
  }
  std::optional<int32> TakeDayOfMonth();
  std::optional<int32> TakeYear();
  std::optional<int32> TakeYearAfterName();
  bool SetTime(int32 hour, int32 minute, int32 second);
  bool SetDay(int64 day);
  bool SetDate(std::optional<int32> year, int32 month, int32 day);
  bool SetAway(int64 count, const DateUnit& unit);

  const std::vector<DateToken> tokens_;
  size_t at_ = 0;
  const DateOrder order_;
  const int64 now_;
  const int64 today_;

  std::optional<int64> day_, elapsed_;
  std::optional<int32> weekday_, timeOfDay_;
};

bool DateReader::Try(Part part) {
  const size_t before = at_;
  if ((this->*part)()) return true;
  at_ = before;
  return false;
}

bool DateReader::Take(std::string_view text) {
  const bool found = Peek() && Peek()->Is(text);
  if (found) ++at_;
  return found;
}

bool DateReader::TakeGlued(std::string_view text) { return Peek() && Peek()->glued && Take(text); }

std::optional<int32> DateReader::TakeNumber(int32 leastDigits, int32 mostDigits) {
  if (!Peek() || !Peek()->IsNumber(leastDigits, mostDigits)) return std::nullopt;
  return tokens_[at_++].number;
}

std::optional<int32> DateReader::TakeName(std::span<const std::string_view> names) {
  if (!Peek() || Peek()->kind != DateToken::Kind::Word) return std::nullopt;
  const std::optional<int32> row = RowOf(Peek()->word, names);
  if (!row) return std::nullopt;
  ++at_;
  TakeGlued(".");
  return row;
}

bool DateReader::ReadAll() {
  if (tokens_.empty()) return false;
  if (tokens_.size() == 1 && tokens_[0].kind == DateToken::Kind::Number) return ReadBareHour();
  while (!AtEnd()) {
    if (!ReadPart()) return false;
    if (Take(",") && AtEnd()) return false;
  }
  const bool alone = !day_ && !weekday_ && !timeOfDay_;
  return elapsed_ ? alone : !(day_ && weekday_ && WeekdayOfDay(*day_) != *weekday_);
}

bool DateReader::ReadTimeAlone() {
  if (tokens_.size() == 1 && tokens_[0].IsNumber(3, 4))
    return SetTime(tokens_[0].number / 100, tokens_[0].number % 100, 0);
  if (tokens_.size() == 1 && tokens_[0].kind == DateToken::Kind::Number) return ReadBareHour();
  Take("at");
  return ReadTimeOrHour() && AtEnd();
}

std::optional<Civil> DateReader::Wall() const {
  const int64 day = day_ ? *day_ : today_ + (weekday_ ? DaysTo(*weekday_) : 0);
  if (day < -FarthestDay || day > FarthestDay) return std::nullopt;
  return OnDay(day, TimeOfDay());
}

bool DateReader::ReadPart() {
  if (Take("at")) return ReadTimeOrHour();
  if (Take("on"))
    return Try(&DateReader::ReadWeekday) || Try(&DateReader::ReadNextOrLast) || ReadDate();
  return Try(&DateReader::ReadTime) || Try(&DateReader::ReadDayWord) ||
         Try(&DateReader::ReadWeekday) || Try(&DateReader::ReadNextOrLast) ||
         Try(&DateReader::ReadRelative) || ReadDate();
}

bool DateReader::ReadBareHour() {
  const std::optional<int32> hour = TakeNumber(1, 2);
  return hour && SetTime(*hour == 12 ? 0 : *hour, 0, 0);
}

bool DateReader::ReadTime() {
  if (Take("noon")) return SetTime(12, 0, 0);
  if (Take("midnight")) return SetTime(0, 0, 0);
  const std::optional<int32> hour = TakeNumber(1, 2);
  if (!hour) return false;
  const bool dotted = TakeGlued(".");
  if ((!dotted && !TakeGlued(":")) || !Peek() || !Peek()->glued) return false;
  const std::optional<int32> minute = TakeNumber(2, 2);
  if (!minute) return false;
  if (dotted) return !TakeGlued(".") && SetTime(*hour, *minute, 0);
  if (!TakeGlued(":")) return SetTime(*hour, *minute, 0);
  const std::optional<int32> second = TakeNumber(2, 2);
  return second && SetTime(*hour, *minute, *second);
}

/// "at 9" names an hour.
bool DateReader::ReadTimeOrHour() {
  if (Try(&DateReader::ReadTime)) return true;
  const std::optional<int32> hour = TakeNumber(1, 2);
  const bool goesOn = Peek() && Peek()->glued && !Peek()->Is(",");
  return hour && !goesOn && SetTime(*hour, 0, 0);
}

bool DateReader::ReadDayWord() {
  if (Take("now")) {
    const bool first = !elapsed_;
    elapsed_ = now_;
    return first;
  }
  if (Take("today")) return SetDay(today_);
  if (Take("tomorrow")) return SetDay(today_ + 1);
  return Take("yesterday") && SetDay(today_ - 1);
}

bool DateReader::ReadWeekday() {
  Take("this");
  const std::optional<int32> row = TakeName(DayNames);
  if (!row || weekday_) return false;
  weekday_ = row;
  return true;
}

bool DateReader::ReadNextOrLast() {
  const bool next = Take("next");
  if (!next && !Take("last")) return false;
  if (const std::optional<int32> row = TakeName(DayNames)) {
    const int64 ahead = DaysTo(*row);
    return SetDay(today_ + (next && ahead == 0 ? 7 : next ? ahead : ahead - 7));
  }
  if (AtEnd()) return false;
  const std::optional<DateUnit> unit = UnitNamed(Peek()->word);
  if (!unit || unit->seconds || unit->days == 1 || Peek()->word.ends_with('s')) return false;
  ++at_;
  return SetAway(next ? 1 : -1, *unit);
}

bool DateReader::ReadRelative() {
  const bool ahead = Take("in");
  std::optional<int32> count = TakeNumber(1, 9);
  if (!count && (Take("a") || Take("an"))) count = 1;
  if (!count || AtEnd()) return false;
  const std::optional<DateUnit> unit = UnitNamed(Peek()->word);
  if (!unit) return false;
  ++at_;
  if (ahead) return SetAway(*count, *unit);
  if (Take("ago")) return SetAway(-int64{*count}, *unit);
  return Take("from") && Take("now") && SetAway(*count, *unit);
}

bool DateReader::ReadDate() {
  return Try(&DateReader::ReadYearFirst) || Try(&DateReader::ReadTwoNumbers) ||
         Try(&DateReader::ReadDayDotMonth) || Try(&DateReader::ReadDayThenMonth) ||
         Try(&DateReader::ReadMonthThenDay);
}

bool DateReader::ReadYearFirst() {
  const std::optional<int32> year = TakeNumber(4, 4);
  if (!year) return false;
  const std::string_view sign = TakeGlued("-") ? "-" : TakeGlued("/") ? "/" : "";
  if (sign.empty()) return false;
  const std::optional<int32> month = TakeNumber(1, 2);
  if (!month || !TakeGlued(sign)) return false;
  const std::optional<int32> day = TakeNumber(1, 2);
  if (!day || !SetDate(year, *month - 1, *day)) return false;
  return TakeGlued("t") ? ReadTime() : true;
}

/// "11/15", "11/15/2026", "11-15-2026", or with the day first.
bool DateReader::ReadTwoNumbers() {
  const std::optional<int32> first = TakeNumber(1, 2);
  const std::string_view sign = TakeGlued("/") ? "/" : TakeGlued("-") ? "-" : "";
  if (!first || sign.empty()) return false;
  const std::optional<int32> second = TakeNumber(1, 2);
  if (!second) return false;
  const bool yearFollows = TakeGlued(sign);
  const std::optional<int32> year = yearFollows ? TakeYear() : std::nullopt;
  if (year.has_value() != yearFollows || (sign == "-" && !yearFollows)) return false;
  return order_ == DateOrder::DayFirst ? SetDate(year, *second - 1, *first)
                                       : SetDate(year, *first - 1, *second);
}

bool DateReader::ReadDayDotMonth() {
  const std::optional<int32> day = TakeNumber(1, 2);
  if (!day || !TakeGlued(".")) return false;
  const std::optional<int32> month = TakeNumber(1, 2);
  if (!month || !TakeGlued(".")) return false;
  const bool yearFollows = Peek() && Peek()->glued;
  const std::optional<int32> year = yearFollows ? TakeYear() : std::nullopt;
  return year.has_value() == yearFollows && SetDate(year, *month - 1, *day);
}

bool DateReader::ReadDayThenMonth() {
  Take("the");
  const std::optional<int32> day = TakeDayOfMonth();
  if (!day) return false;
  const bool dashed = TakeGlued("-");
  if (!dashed) {
    TakeGlued(".");
    Take("of");
  }
  const std::optional<int32> month = TakeName(MonthNames);
  if (!month || (dashed && !TakeGlued("-"))) return false;
  const std::optional<int32> year = dashed ? TakeYear() : TakeYearAfterName();
  return (year || !dashed) && SetDate(year, *month, *day);
}

bool DateReader::ReadMonthThenDay() {
  const std::optional<int32> month = TakeName(MonthNames);
  if (!month) return false;
  Take("the");
  const std::optional<int32> day = TakeDayOfMonth();
  return day && SetDate(TakeYearAfterName(), *month, *day);
}

std::optional<int32> DateReader::TakeDayOfMonth() {
  const std::optional<int32> day = TakeNumber(1, 2);
  if (day) TakeGlued(OrdinalEnding(*day));
  return day;
}

std::optional<int32> DateReader::TakeYear() {
  if (const std::optional<int32> year = TakeNumber(4, 4)) return year;
  const std::optional<int32> year = TakeNumber(2, 2);
  return year ? std::optional(*year + (*year < 70 ? 2000 : 1900)) : std::nullopt;
}

std::optional<int32> DateReader::TakeYearAfterName() {
  if (Peek(1) && Peek(1)->IsNumber(4, 4)) Take("of");
  if (Peek(1) && Peek(1)->IsNumber(4, 4)) Take(",");
  return TakeNumber(4, 4);
}

bool DateReader::SetTime(int32 hour, int32 minute, int32 second) {
  if (timeOfDay_ || hour > 23 || minute > 59 || second > 59) return false;
  timeOfDay_ = hour * 3600 + minute * 60 + second;
  return true;
}

bool DateReader::SetDay(int64 day) {
  if (day_) return false;
  day_ = day;
  return true;
}

/// Without a year: the next such date from today on, within a leap year's reach.
bool DateReader::SetDate(std::optional<int32> year, int32 month, int32 day) {
  if (month < 0 || month > 11) return false;
  const int64 thisYear = MonthOf(today_).month / 12;
  const int64 first = year.value_or(thisYear), last = year.value_or(thisYear + 8);
  for (int64 candidate = first; candidate <= last; ++candidate) {
    const int64 inYear = candidate * 12 + month;
    const int64 found = FirstDayOf(inYear) + day - 1;
    if (day < 1 || day > LengthOf(inYear) || (!year && found < today_)) continue;
    return SetDay(found);
  }
  return false;
}

bool DateReader::SetAway(int64 count, const DateUnit& unit) {
  if (unit.months) return SetDay(AddMonthsWithin(today_, count * unit.months));
  if (unit.days) return SetDay(today_ + count * unit.days);
  if (elapsed_) return false;
  elapsed_ = now_ + count * unit.seconds;
  return true;
}

std::optional<DateReader> ReaderFor(std::string_view text, int64 now, Civil wall, DateOrder order) {
  std::optional<std::vector<DateToken>> tokens = CutIntoTokens(text);
  if (!tokens) return std::nullopt;
  return std::optional<DateReader>(std::in_place, std::move(*tokens), now, wall, order);
}

}  // namespace

DateAnswer ReadDate(std::string_view text, int64 now, const Zone& zone, DateOrder order) {
  now = std::clamp<int64>(now, INT32_MIN, INT32_MAX);
  std::optional<DateReader> reader = ReaderFor(text, now, zone.AtMoment(now), order);
  if (!reader || !reader->ReadAll()) return {};
  DateAnswer answer{.isDate = true, .read = {}};
  int64 moment = 0;
  std::optional<Civil> wall = reader->Wall();
  if (reader->Elapsed()) {
    moment = *reader->Elapsed();
    wall = FitsTime(moment) ? std::optional(zone.AtMoment(moment)) : std::nullopt;
  } else if (wall) {
    moment = zone.ToMoment(*wall);
  }
  if (wall && FitsTime(moment))
    answer.read = {static_cast<int32>(moment), *wall, reader->HasTime(), reader->IsTimeAlone()};
  return answer;
}

std::optional<int32> ReadTimeOfDay(std::string_view text) {
  std::optional<DateReader> reader = ReaderFor(text, 0, Civil{}, DateOrder::MonthFirst);
  if (!reader || !reader->ReadTimeAlone()) return std::nullopt;
  return reader->TimeOfDay();
}

}  // namespace kestrin
