// Edges that the computation of any rule, in EventTimingPropertyTest, seldom or never meets, and
// rules around real changes of the clocks.
#include "core/timing/EventTiming.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "core/timing/DateTimeText.h"
#include "core/timing/EventRuleCheck.h"
#include "harness/Rule.h"

namespace kestrin {

static bool operator==(const EventTimes& a, const EventTimes& b) {
  return a.ActualEventTime == b.ActualEventTime && a.NextEventTime == b.NextEventTime &&
         a.Status == b.Status;
}

static void PrintTo(const EventTimes& times, std::ostream* out) {
  *out << times.ActualEventTime << " / " << times.NextEventTime << " / " << times.Status;
}

namespace {

constexpr int32 Day = 86400, Hour = 3600;

// Wednesday 11 November 2026, 10:30 UTC.
const int32 Now = Utc(2026, 11, 11, 10, 30);
const EventTimes Finished{0, 0, DoneWithEvent};

Rule Warned(int32 event, uint32 ahead, int32 unit, uint32 repeat = 0, int32 repeatUnit = -1) {
  Rule rule(Once);
  rule.ActualEventTime = rule.EventTime = event;
  rule.ApplyPrewarn = true;
  rule.PrewarnTime = ahead;
  rule.PrewarnType = unit;
  rule.ApplyPrewarnRepeat = repeatUnit >= 0;
  rule.PrewarnRepeatTime = repeat;
  rule.PrewarnRepeatType = repeatUnit;
  return rule;
}

TEST(EventTiming, EdgesOfTheRules) {
  const int32 leapDay = Utc(2024, 2, 29, 7);
  const struct {
    const char* what;
    TimingRule rule;
    int32 now, expected;
  } rows[] = {
      {"by date counts as by week", Rule(Monthly).Week(1, 3), Now, Utc(2026, 12, 9)},
      // 1 December 2026 is a Tuesday: searched from day 31 of November.
      {"last Tuesday runs over", Rule(Monthly, ByDayOfWeek).Week(4, 2), Utc(2026, 11, 10),
       Utc(2026, 12, 1)},
      // From 31 September the last Thursday is 1 October, so October's own is left out.
      {"months are left out",
       Rule(MultiMonthly, ByDayOfWeek).Week(4, 4).Every(1).From(Utc(2026, 9, 3)), Utc(2026, 10, 2),
       Utc(2026, 11, 26)},
      {"a time of day past midnight folds", Rule(Daily).At(35), Now, Utc(2026, 11, 11, 11)},
      {"every 4294967295 months",
       Rule(MultiMonthly, ByDayOfMonth).On(12).Every(UINT32_MAX).From(Now), Now, Utc(2026, 11, 12)},
      {"29 February", Rule(Annually).Date(leapDay), Utc(2027, 12, 1), Utc(2028, 3, 1, 7)},
      {"the next midnight is not past the stop",
       Rule(SubDaily).Every(16).From(Utc(2026, 11, 1, 8)).Stop(17), Utc(2026, 11, 11, 8),
       Utc(2026, 11, 12)},
  };
  for (const auto& row : rows)
    EXPECT_EQ(ComputeEventTimes(row.rule, row.now, Zone()),
              (EventTimes{row.expected, row.expected, WaitingForEvent}))
        << row.what;
}

TEST(EventTiming, RulesThatNeverYieldAreFinishedAndSaid) {
  const TimingRule rules[] = {Rule(-1),
                              Rule(Annually, 3).Date(Utc(2030, 1, 1)),
                              Rule(Monthly, ByDayOfMonth).On(0),
                              Rule(Monthly, ByDayOfMonth).On(60),
                              Rule(Annually, ByDayOfMonth).On(1, 13),
                              Rule(Monthly, ByDayOfWeek).Week(-1, 0),
                              Rule(Monthly, ByDayOfWeek).Week(8, 0),
                              Rule(Weekly, ByDayOfWeek).Week(0, 7),
                              Rule(MultiWeekly, ByDayOfWeek).Week(0, -1),
                              Rule(Annually, ByDayOfWeek).Week(0, 0, 0),
                              Rule(MultiAnnually, ByDayOfMonth).Every(0),
                              Rule(MultiMonthly, ByDayOfMonth).Every(0),
                              Rule(MultiWeekly, ByDayOfWeek).Every(0),
                              Rule(MultiDaily).Every(0),
                              Rule(SubDaily).Every(0),
                              Rule(SubDaily).Every(1, Months),
                              Rule(SubDaily).Every(1, -1).Stop(1)};
  for (TimingRule rule : rules) {
    rule.ActualEventTime = 4711;
    EXPECT_EQ(ComputeEventTimes(rule, Now, Zone()), (EventTimes{4711, 0, DoneWithEvent}))
        << rule.PeriodType;
    EXPECT_TRUE(WhyRuleNeverYields(rule)) << rule.PeriodType;
  }
  Rule unknown(99);
  unknown.ActualEventTime = Now;
  EXPECT_EQ(ComputeEventTimes(unknown, Now, Zone()), (EventTimes{Now, 0, DoneWithEvent}));
  EXPECT_EQ(ComputeEventTimes(unknown, Now - 1, Zone()), (EventTimes{Now, Now, WaitingForEvent}));
}

TEST(EventTiming, NothingComesAfterTheLastSecond) {
  const Rule rule = Rule(Daily).At(3);
  EXPECT_EQ(ComputeEventTimes(rule, Utc(2038, 1, 18, 3), Zone()).NextEventTime,
            Utc(2038, 1, 19, 3));
  for (const int64 now : {int64{Utc(2038, 1, 19, 3)}, int64{INT32_MAX}, INT64_MAX})
    EXPECT_EQ(ComputeEventTimes(rule, now, Zone()), Finished);
  EXPECT_EQ(ComputeEventTimes(rule, INT64_MIN, Zone()).NextEventTime, INT32_MIN + 6 * Hour + 848);
  for (const TimingRule& far :
       {Rule(MultiWeekly, ByDayOfWeek).Every(UINT32_MAX), Rule(SubDaily).Every(UINT32_MAX, Weeks)})
    EXPECT_EQ(ComputeEventTimes(far, Now, Zone()), Finished);
}

TEST(EventTiming, TheEditorHearsWhatIsWrongWithWhatTheRuleUses) {
  EXPECT_EQ(WhyRuleNeverYields(Rule(MultiDaily).Every(0)),
            "Every 0 days never comes round; enter 1 or more.");
  Rule rule = Rule(Monthly, ByDayOfMonth).On(31).Every(0);
  rule.DayOfWeek = 99;
  rule.NagRepeatTime = rule.PrewarnRepeatTime = 0;
  EXPECT_EQ(WhyRuleNeverYields(rule), std::nullopt);
  rule.ApplyNag = true;
  EXPECT_TRUE(WhyRuleNeverYields(rule));
  rule.NagRepeatTime = 1;
  rule.ApplyPrewarn = rule.ApplyPrewarnRepeat = true;
  EXPECT_TRUE(WhyRuleNeverYields(rule));
  rule.PrewarnRepeatTime = 1;
  EXPECT_EQ(WhyRuleNeverYields(rule), std::nullopt);
  rule.PrewarnType = 5;
  EXPECT_TRUE(WhyRuleNeverYields(rule));
}

TEST(EventTiming, AChangeIsRefusedForItsOwnFaultAlone) {
  const auto steps = [](uint32 count) {
    return [count](TimingRule& rule) { rule.Multiple = count; };
  };
  const auto nags = [](TimingRule& rule) { rule.NagRepeatTime = 0; };
  Rule rule = Rule(MultiWeekly).Every(3);
  const WhyNot why = WhyChangeRefused(rule, steps(0));
  EXPECT_EQ(why, "Every 0 weeks never comes round; enter 1 or more.");
  EXPECT_EQ(WhyChangeRefused(rule, nags), std::nullopt) << "nothing nags";
  rule.DayOfWeek = 99;  // as only a file can hold it
  EXPECT_EQ(WhyChangeRefused(rule, steps(0)), why);
  EXPECT_EQ(WhyChangeRefused(rule, steps(4)), std::nullopt);
  rule.Multiple = 0;
  rule.ApplyNag = true;
  EXPECT_EQ(WhyChangeRefused(rule, steps(4)), std::nullopt);
  EXPECT_TRUE(WhyChangeRefused(rule, nags));
  rule.PeriodType = 77;
  EXPECT_EQ(WhyChangeRefused(rule, steps(4)), std::nullopt);
}

TEST(EventTiming, CalendarHelpers) {
  EXPECT_EQ(DetermineWeekOfMonth(2, 0), 0);  // Sunday the 2nd
  EXPECT_EQ(DetermineWeekOfMonth(31, 1), 5);
  EXPECT_EQ(FoldIntoDay(86400), 0);
  EXPECT_EQ(FoldIntoDay(-86401), 86399);
}

TEST(EventTiming, FirstPrewarning) {
  const int32 event = Utc(2026, 12, 31, 9);
  const struct {
    const char* what;
    TimingRule rule;
    int32 now, expected;
  } rows[] = {
      {"exactly now is still due", Warned(event, 3, Days), event - 3 * Day, event - 3 * Day},
      {"a repeat exactly now", Warned(event, 1, Days, 6, Hours), event - 6 * Hour,
       event - 6 * Hour},
      {"the repeat is the event", Warned(event, 1, Days, 6, Hours), event - 6 * Hour + 1, event},
      {"a repeat past the event", Warned(event, 10, Hours, 7, Hours), event - Hour, event},
      {"31 November runs over", Warned(event, 1, Months), Now, Utc(2026, 12, 1, 9)},
      {"months on months", Warned(event, 5, Months, 2, Months), Now, Utc(2026, 12, 1, 9)},
      {"4294967295 months", Warned(event, UINT32_MAX, Months, 1, Months), Now, Utc(2026, 12, 1, 9)},
      {"ahead by no unit", Warned(event, 3, 5), Now, event},
      {"repeat of nothing", Warned(event, 60, Days, 0, Hours), Now, event},
      {"repeat of no months", Warned(event, 60, Days, 0, Months), Now, event},
      {"repeat of no unit", Warned(event, 60, Days, 1, 7), Now, event},
  };
  for (const auto& row : rows) {
    const EventTimes expected{event, row.expected,
                              row.expected < event ? WaitingForPrewarning : WaitingForEvent};
    EXPECT_EQ(ComputeEventTimes(row.rule, row.now, Zone()), expected) << row.what;
    EXPECT_EQ(ComputeEventTimes(row.rule, row.now, Zone(), true).NextEventTime, event) << row.what;
  }
}

TEST(EventTiming, Nags) {
  const int32 event = Utc(2026, 1, 31, 9);
  const struct {
    const char* what;
    uint32 count;
    int32 unit, now, expected;
  } rows[] = {
      {"long overdue", 2, Hours, event + 101 * Day, event + 101 * Day + 2 * Hour},
      {"still ahead", 2, Hours, event - 1, event},
      {"months run over once", 1, Months, Utc(2026, 6, 1), Utc(2026, 6, 3, 9)},
      {"no months", 0, Months, event, 0},
      {"no unit", 1, -1, event, 0},
      {"past the last second", 1, Weeks, Utc(2038, 1, 17), 0},
      {"4294967295 months", UINT32_MAX, Months, event, 0},
  };
  for (const auto& row : rows) {
    TimingRule rule;
    rule.NextEventTime = rule.ActualEventTime = event;
    rule.NagRepeatTime = row.count;
    rule.NagRepeatType = row.unit;
    EXPECT_EQ(NextNag(rule, row.now, Zone()),
              (EventTimes{event, row.expected, row.expected ? WaitingToNag : DoneWithEvent}))
        << row.what;
  }
}

// Changes of the clocks:
//   Europe/Berlin 2026: 29 March 02:00 -> 03:00, 25 October 03:00 -> 02:00.
//   Australia/Lord_Howe: half an hour; 4 October 2026 02:00 -> 02:30, 5 April 2026 02:00 -> 01:30.
//   Pacific/Apia 2011: 30 December did not happen.
//   America/St_Johns 2010: 7 November 00:01 -> 6 November 23:01.
//   America/Sao_Paulo 2018: 4 November 00:00 -> 01:00.

/// Wall-clock texts in one zone: "2026-03-29 02:30", and moments as "wall clock +0100".
struct InZone {
  explicit InZone(const char* name) : zone(*Zone::Load(name)) {
    EXPECT_TRUE(absl::LoadTimeZone(name, &same));
  }

  int32 Moment(const std::string& text) const { return ParseDate(text, 0, zone); }
  std::string Text(int32 moment) const {
    return absl::FormatTime("%Y-%m-%d %H:%M %z", absl::FromUnixSeconds(moment), same);
  }
  /// `later` seconds after the first showing of `now`.
  std::string Next(const TimingRule& rule, const std::string& now, int32 later = 0) const {
    return Text(ComputeEventTimes(rule, Moment(now) + later, zone).NextEventTime);
  }

  Zone zone;
  absl::TimeZone same;
};

TEST(EventTimingZones, SkippedBecomesTheFirstMomentAfterTheGap) {
  const InZone berlin("Europe/Berlin"), lordHowe("Australia/Lord_Howe"), apia("Pacific/Apia");
  const Rule date = Rule(Annually).Date(berlin.Moment("2025-03-29 02:30"));
  EXPECT_EQ(berlin.Next(Rule(Daily).At(2, 30), "2026-03-28 12:00"), "2026-03-29 03:00 +0200");
  EXPECT_EQ(berlin.Next(Rule(Daily).At(2, 30), "2026-03-29 03:00"), "2026-03-30 02:30 +0200");
  EXPECT_EQ(berlin.Next(date, "2026-03-28 12:00"), "2026-03-29 03:00 +0200");
  EXPECT_EQ(berlin.Next(date, "2026-03-29 03:00"), "2027-03-29 02:30 +0200");
  EXPECT_EQ(lordHowe.Next(Rule(Daily).At(2, 15), "2026-10-03 12:00"), "2026-10-04 02:30 +1100");
  // A day that never was: its times and the next midnight are one moment, and ring once.
  EXPECT_EQ(apia.Next(Rule(Daily).At(9), "2011-12-29 12:00"), "2011-12-31 00:00 +1400");
  EXPECT_EQ(apia.Next(Rule(Daily).At(9), "2011-12-31 00:00"), "2011-12-31 09:00 +1400");
  EXPECT_EQ(apia.Next(Rule(Monthly, ByDayOfMonth).On(30).At(9), "2011-12-02 00:00"),
            "2011-12-31 00:00 +1400");
}

TEST(EventTimingZones, RepeatedRingsAtItsFirstShowing) {
  const InZone berlin("Europe/Berlin"), lordHowe("Australia/Lord_Howe"),
      stJohns("America/St_Johns");
  EXPECT_EQ(berlin.Next(Rule(Daily).At(2, 30), "2026-10-24 12:00"), "2026-10-25 02:30 +0200");
  EXPECT_EQ(berlin.Next(Rule(Daily).At(2, 30), "2026-10-25 02:30"), "2026-10-26 02:30 +0100");
  // In the second showing of 02:10 the wall clock has yet to show 02:30 again: it has rung.
  const char* again = "2026-10-25 02:10";
  Rule weeks(MultiWeekly, ByDayOfWeek), months(MultiMonthly, ByDayOfMonth), date(Annually);
  weeks.MultiStartTime = months.MultiStartTime = berlin.Moment("2026-10-01");
  date.EventTime = berlin.Moment("2020-10-25 02:30");
  EXPECT_EQ(berlin.Next(Rule(Daily).At(2, 30), again, Hour), "2026-10-26 02:30 +0100");
  EXPECT_EQ(berlin.Next(Rule(Weekends).At(2, 30), again, Hour), "2026-10-31 02:30 +0100");
  EXPECT_EQ(berlin.Next(Rule(Weekly, ByDayOfWeek).At(2, 30), again, Hour),
            "2026-11-01 02:30 +0100");
  EXPECT_EQ(berlin.Next(Rule(Monthly, ByDayOfMonth).On(25).At(2, 30), again, Hour),
            "2026-11-25 02:30 +0100");
  EXPECT_EQ(berlin.Next(weeks.Every(3).At(2, 30), again, Hour), "2026-11-15 02:30 +0100");
  EXPECT_EQ(berlin.Next(months.Every(2).On(25).At(2, 30), again, Hour), "2026-12-25 02:30 +0100");
  EXPECT_EQ(berlin.Next(date, again, Hour), "2027-10-25 02:30 +0200");
  EXPECT_EQ(lordHowe.Next(Rule(Daily).At(1, 45), "2026-04-05 01:40", Hour / 2),
            "2026-04-06 01:45 +1030");
  // The clocks go back over midnight: in the second 23:30 the next midnight is long past.
  EXPECT_EQ(stJohns.Next(Rule(Daily), "2010-11-06 23:30", Hour), "2010-11-08 00:00 -0330");
}

TEST(EventTimingZones, StartsInTheSecondShowing) {
  const InZone berlin("Europe/Berlin");
  Rule days(MultiDaily);
  days.Every(7).At(2, 30);
  days.MultiStartTime = berlin.Moment("2026-10-25 02:10") + Hour;
  EXPECT_EQ(berlin.Next(days, "2026-10-01"), "2026-10-26 02:30 +0100");
  Rule months(MultiMonthly, ByDayOfMonth);
  months.Every(2).On(25).At(2, 30);
  months.MultiStartTime = days.MultiStartTime;
  EXPECT_EQ(berlin.Next(months, "2026-10-01"), "2026-11-25 02:30 +0100");
  // By date the start's own moment counts, here as the second showing that it is.
  Rule date(MultiAnnually);
  date.Every(1).EventTime = date.MultiStartTime = days.MultiStartTime;
  EXPECT_EQ(berlin.Next(date, "2026-10-01"), "2026-10-25 02:10 +0100");
  EXPECT_EQ(berlin.Next(date, "2026-11-01"), "2027-10-25 02:10 +0200");
  date.EventTime = berlin.Moment("2025-10-25 02:30");
  EXPECT_EQ(berlin.Next(date, "2026-10-01"), "2027-10-25 02:30 +0200");
}

TEST(EventTimingZones, StepsWithinTheDayAreElapsedAndTheirWindowIsNot) {
  const InZone berlin("Europe/Berlin"), lordHowe("Australia/Lord_Howe");
  Rule open(SubDaily), night(SubDaily), morning(SubDaily);
  open.Every(2).MultiStartTime = berlin.Moment("2026-03-28 01:00");
  EXPECT_EQ(berlin.Next(open, "2026-03-29 01:00"), "2026-03-29 04:00 +0200");
  // First points on the wall clock, on both sides of the change.
  morning.Every(2).Stop(13).MultiStartTime = berlin.Moment("2026-03-28 08:00");
  EXPECT_EQ(berlin.Next(morning, "2026-03-28 12:00"), "2026-03-29 08:00 +0200");
  EXPECT_EQ(berlin.Next(morning, "2026-03-29 08:00"), "2026-03-29 10:00 +0200");
  EXPECT_EQ(berlin.Next(morning, "2026-10-24 13:00"), "2026-10-25 08:00 +0100");
  // A night of 22:00 to 04:00 has one hour more in October, and one point more.
  night.Every(1).Stop(4).MultiStartTime = berlin.Moment("2026-03-01 22:00");
  int points = 1;
  int32 now = berlin.Moment("2026-10-24 22:00");
  for (; berlin.Text(now) != "2026-10-25 04:00 +0100" && points < 20; ++points)
    now = ComputeEventTimes(night, now, berlin.zone).NextEventTime;
  EXPECT_EQ(points, 8);
  EXPECT_EQ(berlin.Next(night, "2026-10-25 04:00"), "2026-10-25 22:00 +0100");
  EXPECT_EQ(berlin.Next(night, "2026-03-29 01:00"), "2026-03-29 03:00 +0200");
  open.MultiStartTime = lordHowe.Moment("2026-10-03 01:00");
  EXPECT_EQ(lordHowe.Next(open, "2026-10-04 01:00"), "2026-10-04 03:30 +1100");
}

TEST(EventTimingZones, PrewarningsAndNags) {
  const InZone berlin("Europe/Berlin");
  Rule rule(Once);
  rule.ActualEventTime = rule.EventTime = berlin.Moment("2026-03-29 09:00");
  rule.ApplyPrewarn = rule.ApplyPrewarnRepeat = true;
  EXPECT_EQ(berlin.Next(rule, "2026-03-01"), "2026-03-28 08:00 +0100");  // a day is 86400 s
  rule.PrewarnType = Months;
  EXPECT_EQ(berlin.Next(rule, "2026-01-01"), "2026-03-01 09:00 +0100");  // 29 February runs over
  rule.NextEventTime = berlin.Moment("2026-09-25 02:30");
  rule.NagRepeatType = Months;
  rule.NagRepeatTime = 1;
  const auto nag = [&](const std::string& now, int32 later) {
    return berlin.Text(NextNag(rule, berlin.Moment(now) + later, berlin.zone).NextEventTime);
  };
  EXPECT_EQ(nag("2026-10-01", 0), "2026-10-25 02:30 +0200");
  EXPECT_EQ(nag("2026-10-25 02:10", Hour), "2026-11-25 02:30 +0100");
  rule.NagRepeatType = Days;
  EXPECT_EQ(nag("2026-10-25 12:00", 0), "2026-10-26 01:30 +0100");
}

TEST(EventTimingZones, MidnightAndTimeOfDay) {
  const InZone saoPaulo("America/Sao_Paulo"), berlin("Europe/Berlin");
  const int32 skipped = saoPaulo.Moment("2018-11-04 05:00");
  EXPECT_EQ(OnDayOf(skipped, 0, saoPaulo.zone), skipped - 4 * Hour) << "the day begins at 1:00";
  EXPECT_EQ(GetSecondsIntoDay(skipped, saoPaulo.zone), 5 * Hour);
  const int32 long25 = berlin.Moment("2026-10-25 12:00");
  EXPECT_EQ(OnDayOf(long25, 0, berlin.zone), long25 - 13 * Hour);
  EXPECT_EQ(GetSecondsIntoDay(long25, berlin.zone), 12 * Hour);
  EXPECT_EQ(OnDayOf(INT32_MIN, 0, berlin.zone), std::nullopt);
}

}  // namespace
}  // namespace kestrin
