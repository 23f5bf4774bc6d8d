// Rules around real changes of the clocks.
//   Europe/Berlin 2026: 29 March 02:00 -> 03:00, 25 October 03:00 -> 02:00.
//   Australia/Lord_Howe: half an hour; 4 October 2026 02:00 -> 02:30, 5 April 2026 02:00 -> 01:30.
//   Pacific/Apia 2011: 30 December did not happen.
//   America/St_Johns 2010: 7 November 00:01 -> 6 November 23:01.
//   America/Sao_Paulo 2018: 4 November 00:00 -> 01:00.
#include <gtest/gtest.h>

#include <string>

#include "core/DateTimeText.h"
#include "core/EventTiming.h"
#include "fakes/Rule.h"

namespace kestrin {
namespace {

constexpr int32 Hour = 3600;

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
  EXPECT_EQ(saoPaulo.Text(GetLast12AM(skipped, saoPaulo.zone)), "2018-11-04 01:00 -0200");
  EXPECT_EQ(GetSecondsIntoDay(skipped, saoPaulo.zone), 5 * Hour);
  const int32 long25 = berlin.Moment("2026-10-25 12:00");
  EXPECT_EQ(long25 - GetLast12AM(long25, berlin.zone), 13 * Hour);
  EXPECT_EQ(GetSecondsIntoDay(long25, berlin.zone), 12 * Hour);
  EXPECT_EQ(GetLast12AM(INT32_MIN, berlin.zone), INT32_MIN);
}

}  // namespace
}  // namespace kestrin
