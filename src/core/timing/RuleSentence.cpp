#include "core/timing/RuleSentence.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "core/timing/DateTimeText.h"
#include "core/timing/DateTokens.h"
#include "core/timing/EventOccurrence.h"
#include "core/timing/EventRuleCheck.h"
#include "core/timing/EventSteps.h"
#include "core/timing/EventTiming.h"
#include "support/CalendarMonth.h"

namespace kestrin {

namespace {

constexpr std::array<std::string_view, NumberOfIntervalTypes> UnitNames = {"month", "week", "day",
                                                                           "hour", "minute"};
constexpr int32 LastDayCode = 32;

std::string Ordinal(int32 number) { return std::to_string(number).append(OrdinalEnding(number)); }

/// "day", "3 days".
std::string Counted(uint32 count, std::string_view unit) {
  return (count == 1 ? std::string() : std::to_string(count) + " ")
      .append(unit)
      .append(count == 1 ? "" : "s");
}

std::string_view UnitName(int32 unit) {
  const bool isKnown = unit >= 0 && unit < NumberOfIntervalTypes;
  return isKnown ? UnitNames[static_cast<size_t>(unit)] : "unknown unit";
}

std::string Capitalised(std::string text) {
  if (text.front() >= 'a' && text.front() <= 'z') text.front() += 'A' - 'a';
  return text;
}

std::string FromTheEnd(int32 place) { return place == 1 ? "last" : Ordinal(place) + " to last"; }

/// What a rule whose values are all in their tables says.
class Sentence {
 public:
  Sentence(const TimingRule& rule, const Zone& zone, bool use24Hours)
      : rule_(rule), zone_(zone), use24Hours_(use24Hours) {}

  std::string Occurrences() const;
  std::string OnceOn(int32 moment) const;

 private:
  bool IsMulti() const { return rule_.PeriodType >= MultiAnnually; }
  uint32 Multiple() const { return IsMulti() ? rule_.Multiple : 1; }
  std::string Clock(int32 secondsIntoDay) const {
    return ClockTimeText(secondsIntoDay, use24Hours_, HourDigits::AsNeeded);
  }
  std::string At(int32 secondsIntoDay, bool isMeant) const {
    return isMeant || secondsIntoDay != 0 ? " at " + Clock(secondsIntoDay) : "";
  }
  std::string AtTimeOfDay() const {
    return rule_.ApplyTime ? At(FoldIntoDay(rule_.TimeToApply), true) : "";
  }
  std::string Date(int64 moment) const;
  std::string StartTail() const;
  std::string Yearly() const;
  std::string YearlyByDate() const;
  std::string Monthly() const;
  std::string Weekly() const;
  std::string Daily() const;
  std::string WithinTheDay() const;
  std::string DayOfFixedMonth() const;
  std::string WeekdayOfMonth() const;

  const TimingRule& rule_;
  const Zone& zone_;
  const bool use24Hours_;
};

std::string Sentence::Date(int64 moment) const {
  const CivilFields fields = ToFields(zone_.AtMoment(moment));
  return std::to_string(fields.day) + " " +
         std::string(MonthAbbr[static_cast<size_t>(fields.month)]) + " " +
         std::to_string(fields.year);
}

std::string Sentence::OnceOn(int32 moment) const {
  const Civil wall = zone_.AtMoment(moment);
  return "Once, on " + std::string(DayNames[static_cast<size_t>(WeekdayOf(wall))]) + ", " +
         Date(moment) + At(SecondsIntoDay(wall), rule_.ApplyTime);
}

/// What the start of a kind with an interval means: the occurrence that the steps count from, or,
/// with steps of one, the earliest that may come.
std::string Sentence::StartTail() const {
  if (!IsMulti()) return "";
  const std::optional<int64> first = NextOccurrence(rule_, INT32_MIN, zone_);
  if (Multiple() > 1 && first && FitsTime(*first)) return ", counted from " + Date(*first);
  const int32 time = SecondsIntoDay(zone_.AtMoment(rule_.MultiStartTime));
  return "; never before " + Date(rule_.MultiStartTime) + At(time, false);
}

std::string Sentence::WeekdayOfMonth() const {
  constexpr std::array<std::string_view, 4> places = {"first", "second", "third", "fourth"};
  const int32 week = rule_.WeekOfMonth;
  return "the " +
         (week < 4 ? std::string(places[static_cast<size_t>(week)]) : FromTheEnd(week - 3)) + " " +
         std::string(DayNames[static_cast<size_t>(rule_.DayOfWeek)]);
}

std::string Sentence::DayOfFixedMonth() const {
  const std::string month(MonthNames[static_cast<size_t>(rule_.Month)]);
  const int32 day = rule_.DayOfMonth;
  if (day >= LastDayCode) return "the " + FromTheEnd(day - 31) + " day of " + month;
  if (rule_.Month == 1 && day == 29) return "29 February, or the 28th in other years";
  if (day > LengthOf(rule_.Month)) return "the last day of " + month;
  return std::to_string(day) + " " + month;
}

std::string Sentence::YearlyByDate() const {
  const std::optional<int64> first =
      IsMulti() ? NextOccurrence(rule_, INT32_MIN, zone_) : rule_.EventTime;
  const int64 from = first && FitsTime(*first) ? *first : rule_.EventTime;
  const Civil wall = zone_.AtMoment(from);
  const CivilFields fields = ToFields(wall);
  std::string text = "Every " + Counted(Multiple(), "year") + " on " + std::to_string(fields.day) +
                     " " + std::string(MonthNames[static_cast<size_t>(fields.month)]) +
                     At(SecondsIntoDay(wall), rule_.ApplyTime);
  text += Multiple() > 1 ? ", counted from " + Date(from)
                         : ", from " + std::to_string(fields.year) + " on";
  if (fields.month == 1 && fields.day == 29 && Multiple() % 4 != 0)
    text += "; once a year lacks that day, on 1 March from then on";
  return text;
}

std::string Sentence::Yearly() const {
  if (rule_.TimingType == ByDate) return YearlyByDate();
  const std::string day =
      rule_.TimingType == ByDayOfMonth
          ? DayOfFixedMonth()
          : WeekdayOfMonth() + " of " + std::string(MonthNames[static_cast<size_t>(rule_.Month)]);
  return "Every " + Counted(Multiple(), "year") + " on " + day + AtTimeOfDay() + StartTail();
}

std::string Sentence::Monthly() const {
  const bool byDay = rule_.TimingType == ByDayOfMonth;
  const int32 day = rule_.DayOfMonth;
  std::string what = !byDay               ? WeekdayOfMonth()
                     : day >= LastDayCode ? "the " + FromTheEnd(day - 31) + " day"
                                          : "the " + Ordinal(day);
  std::string text = Multiple() == 1 ? Capitalised(what) + " of every month"
                                     : "Every " + Counted(Multiple(), "month") + " on " + what;
  if (byDay && day > 28 && day < LastDayCode) text += ", or the last day of a shorter one,";
  text += AtTimeOfDay();
  if (text.back() == ',') text.pop_back();
  text += StartTail();
  if (const std::string from = CountedBackFrom(rule_); !from.empty())
    text += "; counts back from " + from;
  return text;
}

std::string Sentence::Weekly() const {
  const std::string day(DayNames[static_cast<size_t>(rule_.DayOfWeek)]);
  return (Multiple() == 1 ? day + "s" : "Every " + Counted(Multiple(), "week") + " on " + day) +
         AtTimeOfDay() + StartTail();
}

std::string Sentence::Daily() const {
  return "Every " + Counted(Multiple(), "day") + AtTimeOfDay() + StartTail();
}

std::string Sentence::WithinTheDay() const {
  const int32 first = SecondsIntoDay(zone_.AtMoment(rule_.MultiStartTime));
  const int32 stop = FoldIntoDay(rule_.StopTime);
  std::string text = "Every " + Counted(rule_.Multiple, UnitName(rule_.SubIntType));
  if (!rule_.ApplyStop)
    return text + ", counted from " + Date(rule_.MultiStartTime) + " at " + Clock(first);
  text += " from " + Clock(first);
  if (stop != first) text += " to " + Clock(stop);
  if (stop < first) text += " of the next day";
  return text + ", each day anew; never before " + Date(rule_.MultiStartTime);
}

std::string Sentence::Occurrences() const {
  switch (rule_.PeriodType) {
    case Once:
      return OnceOn(rule_.EventTime);
    case Annually:
    case MultiAnnually:
      return Yearly();
    case PeriodicityType::Monthly:
    case MultiMonthly:
      return Monthly();
    case PeriodicityType::Weekly:
    case MultiWeekly:
      return Weekly();
    case Weekdays:
      return "Monday to Friday" + AtTimeOfDay();
    case Weekends:
      return "Saturdays and Sundays" + AtTimeOfDay();
    case SubDaily:
      return WithinTheDay();
    default:
      return Daily();
  }
}

bool Advances(const StepLength& step) {
  return step.count > 0 && (step.IsMonths() || step.Seconds() > 0);
}

/// Whether a repeat can come between the first warning and the event; months have 28 to 31 days.
bool ComesBefore(const StepLength& repeat, const StepLength& ahead) {
  if (repeat.IsMonths() && ahead.IsMonths()) return repeat.count < ahead.count;
  const auto seconds = [](const StepLength& step, int64 daysOfMonth) {
    return step.IsMonths() ? step.count * daysOfMonth * SecondsPerDay : step.Seconds();
  };
  return seconds(repeat, 28) < seconds(ahead, 31);
}

std::string Warns(const TimingRule& rule) {
  if (!rule.ApplyPrewarn) return "";
  const StepLength ahead{rule.PrewarnTime, rule.PrewarnType};
  const StepLength repeat{rule.PrewarnRepeatTime, rule.PrewarnRepeatType};
  const std::string length = std::to_string(ahead.count) + " " + std::string(UnitName(ahead.unit)) +
                             (ahead.count == 1 ? "" : "s");
  if (!Advances(ahead)) return "; never warns, as " + length + " before is the event itself";
  std::string text = "; warns " + length + " before";
  if (rule.ApplyPrewarnRepeat && Advances(repeat) && ComesBefore(repeat, ahead))
    text += " and every " + Counted(repeat.count, UnitName(repeat.unit)) + " from then on";
  return text;
}

std::string Nags(const TimingRule& rule) {
  if (!rule.ApplyNag) return "";
  const StepLength step{rule.NagRepeatTime, rule.NagRepeatType};
  const std::string length = Counted(step.count, UnitName(step.unit));
  return Advances(step) ? "; nags every " + length
                        : "; never nags, as every " + length + " never comes round";
}

}  // namespace

std::string CountedBackFrom(const TimingRule& rule) {
  if (!CountsBackFromMonth(rule) || rule.Month < 0 || rule.Month > 11) return "";
  switch (LengthOf(rule.Month)) {
    case 31:
      return "the 31st, in shorter months from the first days of the next";
    case 30:
      return "the 30th, in February from the first days of March";
    default:
      return "the 28th, in leap years from the 29th";
  }
}

std::string RuleSentence(const TimingRule& rule, const Zone& zone, bool use24Hours) {
  const Sentence sentence(rule, zone, use24Hours);
  const bool isKnown = rule.PeriodType >= 0 && rule.PeriodType < NumberOfPeriodTypes;
  if (const WhyNot why = WhyNoOccurrence(rule); isKnown && why)
    return "Never rings. " + std::string(*why);
  const std::string when = isKnown ? sentence.Occurrences() : sentence.OnceOn(rule.ActualEventTime);
  return when + Warns(rule) + Nags(rule) + ".";
}

std::vector<int32> NextDates(const TimingRule& rule, int64 now, const Zone& zone, size_t count) {
  TimingRule bare = rule;
  bare.ApplyPrewarn = false;
  std::vector<int32> dates;
  while (dates.size() < count) {
    const EventTimes times = ComputeEventTimes(bare, now, zone);
    if (times.Status == DoneWithEvent) break;
    dates.push_back(times.ActualEventTime);
    now = times.ActualEventTime;
  }
  return dates;
}

std::vector<std::string> NextDateTexts(const TimingRule& rule, int64 now, const Zone& zone,
                                       size_t count, bool use24Hours) {
  std::vector<std::string> texts;
  for (const int32 date : NextDates(rule, now, zone, count)) {
    const bool withTime = HasTimeOfDay(rule) || GetSecondsIntoDay(date, zone) != 0;
    texts.push_back(GetShortDateTime(date, withTime, zone, use24Hours));
  }
  return texts;
}

}  // namespace kestrin
