#include "core/timing/EventOccurrence.h"

#include <algorithm>

#include "core/timing/EventTiming.h"
#include "support/CalendarMonth.h"

namespace kestrin {

namespace {

// No zone moves its clocks by more than a day at once, so two wall-clock times further apart than
// this lie in the same order as their moments.
constexpr int64 Slack = 2 * SecondsPerDay;
constexpr int64 LastDay = (INT32_MAX + Slack) / SecondsPerDay;

struct Instant {
  int64 moment;
  Civil wall;
};

/// One search for the next occurrence. Days and months are walked on the wall clock; moments are
/// asked for only where the order of two times could hang on a change of the clocks.
class OccurrenceSearch {
 public:
  OccurrenceSearch(const TimingRule& rule, int64 now, const Zone& zone)
      : rule_(rule),
        zone_(zone),
        now_(See(now)),
        timeOfDay_(rule.ApplyTime ? FoldIntoDay(rule.TimeToApply) : 0) {}

  std::optional<int64> Weekly() const;
  std::optional<int64> Daily() const;
  std::optional<int64> Weekdays() const;
  std::optional<int64> Weekends() const;
  std::optional<int64> MultiWeekly() const;
  std::optional<int64> MultiDaily() const;
  std::optional<int64> MonthlyByRule() const;
  std::optional<int64> YearlyByRule() const;
  std::optional<int64> MultiByRule() const;

 private:
  Instant See(int64 moment) const { return {moment, zone_.AtMoment(moment)}; }
  Civil At(int64 day) const { return OnDay(day, timeOfDay_); }
  int64 Today() const { return DayOf(now_.wall); }
  int64 DayAhead() const { return At(Today()) > now_.wall ? Today() : Today() + 1; }
  int64 JumpPastNow(int64 day, int64 period) const;
  bool IsYearly() const {
    return rule_.PeriodType == Annually || rule_.PeriodType == MultiAnnually;
  }
  bool CountsFromOwnEnd() const { return !IsYearly() && rule_.Month == EachMonthsOwnEnd; }
  DayInMonth DayByRule(int64 month, int64 yearOfLength) const;
  DayInMonth Step(DayInMonth found, int64 months) const {
    const int64 month = found.month + months;
    return DayByRule(month, (IsYearly() ? month : found.month) / 12);
  }
  bool IsAtOrBefore(int64 day, const Instant& instant) const;

  bool RunsOver(int64 month, int64 yearOfLength) const;
  int64 SkipPastMonths(int64 month, int64 step) const;
  std::optional<int64> WalkMonths(DayInMonth found, int64 step) const;
  template <typename Following>
  std::optional<int64> Settle(int64 day, Following following) const;

  const TimingRule& rule_;
  const Zone& zone_;
  const Instant now_;
  const int64 timeOfDay_;
};

/// The first moment after now, from `day` on; `following` gives the occurrence after a day. Only
/// the second showing of a repeated hour makes it go on.
template <typename Following>
std::optional<int64> OccurrenceSearch::Settle(int64 day, Following following) const {
  while (day <= LastDay) {
    const int64 moment = zone_.ToMoment(At(day));
    if (moment > now_.moment) return moment;
    day = following(day);
  }
  return std::nullopt;
}

bool OccurrenceSearch::IsAtOrBefore(int64 day, const Instant& instant) const {
  const Civil time = At(day);
  if (time <= instant.wall) return true;
  if (time.seconds > instant.wall.seconds + Slack) return false;
  return zone_.ToMoment(time) <= instant.moment;
}

int64 OccurrenceSearch::JumpPastNow(int64 day, int64 period) const {
  const int64 behind = now_.wall.seconds - At(day).seconds;
  return behind < 0 ? day : day + (behind / (period * SecondsPerDay) + 1) * period;
}

std::optional<int64> OccurrenceSearch::Weekly() const {
  int64 ahead = rule_.DayOfWeek - WeekdayOfDay(Today());
  if (ahead < 0) ahead += 7;
  if (ahead == 0 && At(Today()) <= now_.wall) ahead = 7;
  return Settle(Today() + ahead, [](int64 day) { return day + 7; });
}

std::optional<int64> OccurrenceSearch::Daily() const {
  return Settle(DayAhead(), [](int64 day) { return day + 1; });
}

std::optional<int64> OccurrenceSearch::Weekdays() const {
  const auto toWeekday = [](int64 day) {
    const int64 weekday = WeekdayOfDay(day);
    return weekday == 0 ? day + 1 : weekday == 6 ? day + 2 : day;
  };
  return Settle(toWeekday(DayAhead()), [&](int64 day) { return toWeekday(day + 1); });
}

std::optional<int64> OccurrenceSearch::Weekends() const {
  const auto toWeekend = [](int64 day) {
    const int64 weekday = WeekdayOfDay(day);
    return weekday == 0 ? day : day + 6 - weekday;
  };
  return Settle(toWeekend(DayAhead()), [&](int64 day) { return toWeekend(day + 1); });
}

std::optional<int64> OccurrenceSearch::MultiWeekly() const {
  const Civil start = zone_.AtMoment(rule_.MultiStartTime);
  const int64 startDay = DayOf(start), period = int64{7} * rule_.Multiple;
  int64 ahead = rule_.DayOfWeek - WeekdayOfDay(startDay);
  if (ahead < 0) ahead += 7;
  if (ahead == 0 && rule_.ApplyTime && At(startDay) <= start) ahead = 7;
  return Settle(JumpPastNow(startDay + ahead, period), [=](int64 day) { return day + period; });
}

std::optional<int64> OccurrenceSearch::MultiDaily() const {
  const Instant start = See(rule_.MultiStartTime);
  const int64 period = rule_.Multiple;
  int64 day = DayOf(start.wall);
  while (IsAtOrBefore(day, start)) ++day;
  return Settle(JumpPastNow(day, period), [=](int64 d) { return d + period; });
}

/// The rule's day in `month`. The search backwards starts from the end of `month` itself, or from
/// the length of the rule's own month, as long as that is in `yearOfLength`; then it can end in the
/// month after `month`.
DayInMonth OccurrenceSearch::DayByRule(int64 month, int64 yearOfLength) const {
  const int64 first = FirstDayOf(month);
  if (rule_.TimingType == ByDayOfMonth) {
    const int64 length = FirstDayOf(month + 1) - first;
    const auto day = static_cast<int64>(rule_.DayOfMonth);
    return {month, first - 1 + (day >= 32 ? length + 32 - day : std::min(day, length))};
  }
  if (rule_.WeekOfMonth <= 3) {
    const int64 ahead = rule_.DayOfWeek - WeekdayOfDay(first);
    return {month, first + (ahead < 0 ? ahead + 7 : ahead) + 7 * rule_.WeekOfMonth};
  }
  const int64 longAs = CountsFromOwnEnd() ? month : yearOfLength * 12 + rule_.Month;
  const int64 from = first + LengthOf(longAs) - 1;
  const int64 back = WeekdayOfDay(from) - rule_.DayOfWeek;
  const int64 day = from - (back < 0 ? back + 7 : back) - 7 * (rule_.WeekOfMonth - 4);
  return {rule_.WeekOfMonth == 4 && day >= FirstDayOf(month + 1) ? month + 1 : month, day};
}

bool OccurrenceSearch::RunsOver(int64 month, int64 yearOfLength) const {
  // Only a February needs its year.
  const int64 length = LengthOf(rule_.Month == 1 ? yearOfLength * 12 + 1 : rule_.Month);
  const int64 beyond = length - LengthOf(month);
  if (beyond <= 0) return false;
  const int64 back = WeekdayOfDay(FirstDayOf(month) + length - 1) - rule_.DayOfWeek;
  return (back < 0 ? back + 7 : back) < beyond;
}

/// From the month of an occurrence to that of a later one which is past for certain. A step of a
/// rule that can run over depends on where the one before ended.
int64 OccurrenceSearch::SkipPastMonths(int64 month, int64 step) const {
  const bool canRunOver = !IsYearly() && rule_.TimingType != ByDayOfMonth &&
                          rule_.WeekOfMonth == 4 && !CountsFromOwnEnd();
  const int64 last = MonthOf(Today()).month - (canRunOver ? 2 : 1);
  if (!canRunOver) return month + std::max<int64>(0, last - month) / step * step;
  while (month + step <= last) {
    const int64 next = month + step;
    month = RunsOver(next, month / 12) ? next + 1 : next;
  }
  return month;
}

/// From an occurrence, by steps of `step` months, to the first one after now.
std::optional<int64> OccurrenceSearch::WalkMonths(DayInMonth found, int64 step) const {
  const int64 past = SkipPastMonths(found.month, step);
  if (past != found.month) found = Step({past, 0}, step);
  while (found.day <= LastDay && At(found.day) <= now_.wall) found = Step(found, step);
  return Settle(found.day, [&](int64) {
    found = Step(found, step);
    return found.day;
  });
}

std::optional<int64> OccurrenceSearch::MonthlyByRule() const {
  const int64 month = MonthOf(Today()).month;
  return WalkMonths(DayByRule(month, month / 12), 1);
}

std::optional<int64> OccurrenceSearch::YearlyByRule() const {
  const int64 year = MonthOf(Today()).month / 12;
  return WalkMonths(DayByRule(year * 12 + rule_.Month, year), 12);
}

std::optional<int64> OccurrenceSearch::MultiByRule() const {
  const Instant start = See(rule_.MultiStartTime);
  const int64 startMonth = MonthOf(DayOf(start.wall)).month, year = startMonth / 12;
  const int64 unit = IsYearly() ? 12 : 1;
  DayInMonth found = DayByRule(IsYearly() ? year * 12 + rule_.Month : startMonth, year);
  while (IsAtOrBefore(found.day, start)) found = Step(found, unit);
  return WalkMonths(found, unit * rule_.Multiple);
}

/// The years of a date: 29 February becomes 1 March in the first year without it and stays there.
class YearlyDate {
 public:
  explicit YearlyDate(Civil time)
      : date_(MonthOf(DayOf(time))), timeOfDay_(time.seconds - DayOf(time) * SecondsPerDay) {}

  Civil Time() const { return OnDay(FirstDayOf(date_.month) + date_.day - 1, timeOfDay_); }
  int64 Year() const { return date_.month / 12; }

  /// `count` steps of `years`. Whether a leap day lasts is settled by the first of them.
  void Advance(int64 years, int64 count) {
    date_.month += 12 * years;
    if (date_.day > LengthOf(date_.month)) date_ = {date_.month + 1, 1};
    date_.month += 12 * years * (count - 1);
  }
  void AdvanceTowards(int64 year, int64 years) {
    Advance(years, std::max<int64>(1, (year - Year()) / years));
  }

 private:
  DayInMonth date_;
  int64 timeOfDay_;
};

std::optional<int64> YearlyByDate(const TimingRule& rule, int64 now, const Zone& zone) {
  const bool multi = rule.PeriodType == MultiAnnually;
  const bool started = !multi || rule.EventTime >= rule.MultiStartTime;
  if (started && rule.EventTime > now) return rule.EventTime;

  YearlyDate date(zone.AtMoment(rule.EventTime));
  if (!started) {
    const Civil start = zone.AtMoment(rule.MultiStartTime);
    date.AdvanceTowards(YearlyDate(start).Year() - 1, 1);
    const auto isBefore = [&](Civil time) {
      if (std::abs(time.seconds - start.seconds) > Slack) return time < start;
      return zone.ToMoment(time) < rule.MultiStartTime;
    };
    while (isBefore(date.Time())) date.Advance(1, 1);
  }

  const int64 step = multi ? int64{rule.Multiple} : 1;
  const Civil wall = zone.AtMoment(now);
  if (started || date.Time() <= wall) date.AdvanceTowards(YearlyDate(wall).Year() - 1, step);
  while (DayOf(date.Time()) <= LastDay) {
    if (date.Time() > wall) {
      const int64 moment = zone.ToMoment(date.Time());
      if (moment > now) return moment;
    }
    date.Advance(step, 1);
  }
  return std::nullopt;
}

}  // namespace

std::optional<int64> NextOccurrence(const TimingRule& rule, int64 now, const Zone& zone) {
  const bool byDate = rule.TimingType == ByDate;
  const auto search = [&] { return OccurrenceSearch(rule, now, zone); };
  switch (rule.PeriodType) {
    case Annually:
      return byDate ? YearlyByDate(rule, now, zone) : search().YearlyByRule();
    case Monthly:
      return search().MonthlyByRule();
    case Weekly:
      return search().Weekly();
    case Daily:
      return search().Daily();
    case Weekdays:
      return search().Weekdays();
    case Weekends:
      return search().Weekends();
    case MultiAnnually:
      return byDate ? YearlyByDate(rule, now, zone) : search().MultiByRule();
    case MultiMonthly:
      return search().MultiByRule();
    case MultiWeekly:
      return search().MultiWeekly();
    case MultiDaily:
      return search().MultiDaily();
    case SubDaily:
      return NextSubDaily(rule, now, zone);
    default:
      return std::nullopt;
  }
}

}  // namespace kestrin
