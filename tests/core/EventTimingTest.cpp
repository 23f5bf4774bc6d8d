#include "core/EventTiming.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "core/EventRuleCheck.h"

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

int32 At(int64 year, int64 month, int64 day, int64 hour = 0, int64 minute = 0) {
  return static_cast<int32>(ToCivil({year, month - 1, day, hour, minute}).seconds);
}

// Wednesday 11 November 2026, 10:30 UTC.
const int32 Now = At(2026, 11, 11, 10, 30);

TimingRule RuleOf(int32 period, int32 timing = ByDate) {
  TimingRule rule;
  rule.ActualEventTime = 4711;
  rule.PeriodType = period;
  rule.TimingType = timing;
  return rule;
}

TimingRule Timed(TimingRule rule, int32 hour, int32 minute = 0) {
  rule.ApplyTime = true;
  rule.TimeToApply = hour * Hour + minute * 60;
  return rule;
}

TimingRule ByWeek(int32 period, int8 week, int8 weekday, int8 month = 0) {
  TimingRule rule = RuleOf(period, ByDayOfWeek);
  rule.WeekOfMonth = week;
  rule.DayOfWeek = weekday;
  rule.Month = month;
  return rule;
}

TimingRule WithoutType(TimingRule rule) {
  rule.TimingType = ByDate;
  return rule;
}

TimingRule ByDay(int32 period, int8 day, int8 month = 0) {
  TimingRule rule = RuleOf(period, ByDayOfMonth);
  rule.DayOfMonth = day;
  rule.Month = month;
  return rule;
}

TimingRule Every(uint32 multiple, int32 start, TimingRule rule) {
  rule.Multiple = multiple;
  rule.MultiStartTime = start;
  return rule;
}

TimingRule On(int32 eventTime, TimingRule rule) {
  rule.EventTime = eventTime;
  return rule;
}

TimingRule Window(uint32 multiple, int32 unit, int32 start, int32 stop) {
  TimingRule rule = Every(multiple, start, RuleOf(SubDaily));
  rule.SubIntType = unit;
  rule.ApplyStop = stop >= 0;
  rule.StopTime = stop;
  return rule;
}

int32 Next(const TimingRule& rule, int32 now = Now) {
  return ComputeEventTimes(rule, now, Zone()).NextEventTime;
}

struct Case {
  const char* what = nullptr;
  TimingRule rule;
  int32 now = 0, expected = 0;
};

template <size_t Count>
void Check(const Case (&cases)[Count]) {
  for (const Case& row : cases) {
    const EventTimes times = ComputeEventTimes(row.rule, row.now, Zone());
    EXPECT_EQ(times, (EventTimes{row.expected, row.expected, WaitingForEvent})) << row.what;
  }
}

TEST(EventTiming, DaysOfTheMonth) {
  Check({
      {"the 31st in April", ByDay(Monthly, 31), At(2026, 4, 2), At(2026, 4, 30)},
      {"the 31st in a leap February", ByDay(Monthly, 31), At(2028, 2, 2), At(2028, 2, 29)},
      {"exactly now is past", ByDay(Monthly, 31), At(2026, 4, 30), At(2026, 5, 31)},
      {"last", ByDay(Monthly, 32), At(2026, 4, 2), At(2026, 4, 30)},
      {"second to last", ByDay(Monthly, 33), At(2026, 2, 2), At(2026, 2, 27)},
      {"28th to last of a short month", ByDay(Monthly, 59), At(2026, 2, 1) - 1, At(2026, 2, 1)},
      {"this year's", ByDay(Annually, 5, 11), Now, At(2026, 12, 5)},
      {"next year's", ByDay(Annually, 5, 1), Now, At(2027, 2, 5)},
      {"later today", Timed(ByDay(Monthly, 11), 10, 31), Now, At(2026, 11, 11, 10, 31)},
  });
}

TEST(EventTiming, WeeksOfTheMonth) {
  Check({
      {"first Sunday on the 1st", ByWeek(Monthly, 0, 0), At(2026, 10, 31), At(2026, 11, 1)},
      {"fourth Tuesday", ByWeek(Monthly, 3, 2), Now, At(2026, 11, 24)},
      {"last Monday", ByWeek(Monthly, 4, 1), Now, At(2026, 11, 30)},
      {"fourth to last Friday", ByWeek(Monthly, 7, 5), At(2026, 11, 1), At(2026, 11, 6)},
      {"fourth Thursday in November", ByWeek(Annually, 3, 4, 10), Now, At(2026, 11, 26)},
      {"last Monday in May", ByWeek(Annually, 4, 1, 4), Now, At(2027, 5, 31)},
      {"by date counts as this", WithoutType(ByWeek(Monthly, 1, 3)), Now, At(2026, 12, 9)},
      // 1 December 2026 is a Tuesday: searched from day 31 of November.
      {"last Tuesday runs over", ByWeek(Monthly, 4, 2), At(2026, 11, 10), At(2026, 12, 1)},
      {"and goes on from December", ByWeek(Monthly, 4, 2), At(2026, 12, 1), At(2026, 12, 29)},
      {"own month February: from day 28", ByWeek(Monthly, 4, 1, 1), Now, At(2026, 11, 23)},
      {"a walk in which months are left out", Every(1, At(2026, 9, 3), ByWeek(MultiMonthly, 4, 4)),
       At(2026, 10, 2), At(2026, 11, 26)},
  });
  // From 31 September the last Thursday is 1 October, so October's own is left out.
  EXPECT_EQ(Next(Every(1, At(2026, 9, 3), ByWeek(MultiMonthly, 4, 4)), At(2026, 9, 4)),
            At(2026, 10, 1));
}

TEST(EventTiming, DaysAndWeeks) {
  const int32 friday = At(2026, 11, 13, 18);
  Check({
      {"today without a time of day", ByWeek(Weekly, 0, 3), Now, At(2026, 11, 18)},
      {"today, later", Timed(ByWeek(Weekly, 0, 3), 10, 31), Now, At(2026, 11, 11, 10, 31)},
      {"today, now", Timed(ByWeek(Weekly, 0, 3), 10, 30), Now, At(2026, 11, 18, 10, 30)},
      {"Tuesday", Timed(ByWeek(Weekly, 0, 2), 23), Now, At(2026, 11, 17, 23)},
      {"daily at now", Timed(RuleOf(Daily), 10, 30), Now, At(2026, 11, 12, 10, 30)},
      {"daily later", Timed(RuleOf(Daily), 10, 31), Now, At(2026, 11, 11, 10, 31)},
      {"a time of day past midnight folds", Timed(RuleOf(Daily), 35), Now, At(2026, 11, 11, 11)},
      {"Friday evening", Timed(RuleOf(Weekdays), 9), friday, At(2026, 11, 16, 9)},
      {"Friday, still ahead", Timed(RuleOf(Weekdays), 19), friday, At(2026, 11, 13, 19)},
      {"Saturday", Timed(RuleOf(Weekdays), 9), friday + Day, At(2026, 11, 16, 9)},
      {"to the weekend", Timed(RuleOf(Weekends), 9), Now, At(2026, 11, 14, 9)},
      {"Saturday evening", Timed(RuleOf(Weekends), 9), friday + Day, At(2026, 11, 15, 9)},
      {"Sunday evening", Timed(RuleOf(Weekends), 9), friday + 2 * Day, At(2026, 11, 21, 9)},
  });
}

TEST(EventTiming, EveryFew) {
  const int32 start = At(2026, 11, 4, 8);  // a Wednesday
  Check({
      {"weeks: the start's own day", Every(2, start, ByWeek(MultiWeekly, 0, 3)), At(2026, 11, 3),
       At(2026, 11, 4)},
      {"weeks: at the start's own time", Timed(Every(2, start, ByWeek(MultiWeekly, 0, 3)), 8),
       At(2026, 11, 3), At(2026, 11, 11, 8)},
      {"weeks: jumped", Every(3, At(1999, 1, 6), ByWeek(MultiWeekly, 0, 3)), Now, At(2026, 11, 25)},
      {"days: at the start's own time", Timed(Every(5, start, RuleOf(MultiDaily)), 8), start - 1,
       At(2026, 11, 5, 8)},
      {"days: exactly now is past", Every(7, At(2026, 11, 3, 1), RuleOf(MultiDaily)),
       At(2026, 11, 4), At(2026, 11, 11)},
      {"months: the start itself is past", Every(3, At(2026, 2, 5), ByDay(MultiMonthly, 5)), Now,
       At(2026, 12, 5)},
      {"months: every 4294967295", Every(UINT32_MAX, Now, ByDay(MultiMonthly, 12)), Now,
       At(2026, 11, 12)},
      {"years: by a rule the start is past", Every(4, At(2022, 3, 5), ByDay(MultiAnnually, 5, 2)),
       Now, At(2027, 3, 5)},
      {"years: by date the start counts",
       On(At(2022, 3, 5), Every(4, At(2022, 3, 5), RuleOf(MultiAnnually))), At(2022, 3, 6),
       At(2026, 3, 5)},
      {"years: by date up to the start first",
       On(At(1980, 3, 5), Every(10, At(2001, 3, 6), RuleOf(MultiAnnually))), Now, At(2032, 3, 5)},
  });
}

TEST(EventTiming, TwentyNinthOfFebruary) {
  const int32 leapDay = At(2024, 2, 29, 7);
  Check({
      {"first", On(leapDay, RuleOf(Annually)), leapDay - 1, leapDay},
      {"from then on", On(leapDay, RuleOf(Annually)), At(2027, 12, 1), At(2028, 3, 1, 7)},
      {"every 4 years", On(leapDay, Every(4, 0, RuleOf(MultiAnnually))), Now, At(2028, 2, 29, 7)},
      {"every 2 years", On(leapDay, Every(2, 0, RuleOf(MultiAnnually))), Now, At(2028, 3, 1, 7)},
      {"a start in between", On(leapDay, Every(4, At(2025, 1, 1), RuleOf(MultiAnnually))), Now,
       At(2029, 3, 1, 7)},
  });
}

TEST(EventTiming, SeveralTimesADay) {
  const TimingRule office = Window(2, Hours, At(2026, 11, 1, 8), 17 * Hour);
  const TimingRule night = Window(2, Hours, At(2026, 11, 1, 22), 2 * Hour);
  const TimingRule roundTheClock = Window(5, Hours, At(2026, 11, 1, 22), 22 * Hour);
  const TimingRule toMidnight = Window(16, Hours, At(2026, 11, 1, 8), 17 * Hour);
  Check({
      {"start ahead", Window(2, Hours, Now + 1, 0), Now, Now + 1},
      {"no stop", Window(50, Minutes, At(2026, 11, 10, 23), -1), Now, At(2026, 11, 11, 10, 40)},
      {"before the first", office, At(2026, 11, 11, 3), At(2026, 11, 11, 8)},
      {"in the window", office, At(2026, 11, 11, 14), At(2026, 11, 11, 16)},
      {"past the stop", office, At(2026, 11, 11, 16, 30), At(2026, 11, 12, 8)},
      {"the next midnight is not past the stop", toMidnight, At(2026, 11, 11, 8), At(2026, 11, 12)},
      {"night: on the stop", night, At(2026, 11, 11, 1), At(2026, 11, 11, 2)},
      {"night: past the stop", night, At(2026, 11, 11, 2), At(2026, 11, 11, 22)},
      {"night: by day", night, Now, At(2026, 11, 11, 22)},
      {"night: on the stop it is yesterday's", Window(26, Hours, At(2026, 11, 1, 22), 2 * Hour),
       At(2026, 11, 11, 2), At(2026, 11, 12)},
      {"night: over midnight", night, At(2026, 11, 11, 22), At(2026, 11, 12)},
      {"stop at the first point, now too", roundTheClock, At(2026, 11, 11, 22),
       At(2026, 11, 12, 3)},
  });
}

TEST(EventTiming, Finished) {
  TimingRule unknownTiming = RuleOf(Annually, 3);
  unknownTiming.EventTime = At(2030, 1, 1);
  const TimingRule rules[] = {
      RuleOf(12),
      RuleOf(-1),
      unknownTiming,
      ByDay(Monthly, 0),
      ByDay(Monthly, 60),
      ByDay(Annually, 1, 12),
      ByWeek(Monthly, -1, 0),
      ByWeek(Monthly, 8, 0),
      ByWeek(Weekly, 0, 7),
      ByWeek(MultiWeekly, 0, -1),
      ByWeek(Monthly, 4, 0, 12),
      ByWeek(Annually, 0, 0, -1),
      Every(0, 0, ByDay(MultiAnnually, 1)),
      Every(0, 0, ByDay(MultiMonthly, 1)),
      Every(0, 0, ByWeek(MultiWeekly, 0, 0)),
      Every(0, 0, RuleOf(MultiDaily)),
      Window(0, Hours, 0, -1),
      Window(1, Months, 0, -1),
      Window(1, 5, INT32_MAX, -1),
      Window(1, -1, 0, 100),
  };
  for (const TimingRule& rule : rules) {
    EXPECT_EQ(ComputeEventTimes(rule, Now, Zone()), (EventTimes{4711, 0, DoneWithEvent}))
        << rule.PeriodType << " " << WhyRuleNeverYields(rule);
    EXPECT_STRNE(WhyRuleNeverYields(rule), "") << rule.PeriodType;
  }
}

TEST(EventTiming, OnceAndKindsWithoutAName) {
  TimingRule rule = On(Now, RuleOf(Once));
  EXPECT_EQ(ComputeEventTimes(rule, Now, Zone()), (EventTimes{Now, 0, DoneWithEvent}));
  EXPECT_EQ(ComputeEventTimes(rule, Now - 1, Zone()), (EventTimes{Now, Now, WaitingForEvent}));
  rule = On(1, RuleOf(99));
  rule.ActualEventTime = Now;
  EXPECT_EQ(ComputeEventTimes(rule, Now, Zone()), (EventTimes{Now, 0, DoneWithEvent}));
  EXPECT_EQ(ComputeEventTimes(rule, Now - 1, Zone()), (EventTimes{Now, Now, WaitingForEvent}));
}

TEST(EventTiming, NothingComesAfterTheLastSecond) {
  const TimingRule rule = Timed(RuleOf(Daily), 3);
  EXPECT_EQ(Next(rule, At(2038, 1, 18, 3)), At(2038, 1, 19, 3));
  const EventTimes finished{4711, 0, DoneWithEvent};
  for (const int64 now : {int64{At(2038, 1, 19, 3)}, int64{INT32_MAX}, INT64_MAX})
    EXPECT_EQ(ComputeEventTimes(rule, now, Zone()), finished);
  EXPECT_EQ(ComputeEventTimes(rule, INT64_MIN, Zone()).NextEventTime, INT32_MIN + 6 * Hour + 848);
  EXPECT_EQ(ComputeEventTimes(Every(UINT32_MAX, 0, ByWeek(MultiWeekly, 0, 0)), Now, Zone()),
            finished);
  EXPECT_EQ(ComputeEventTimes(Window(UINT32_MAX, Weeks, 0, -1), Now, Zone()), finished);
  EXPECT_EQ(ComputeEventTimes(On(At(1970, 1, 20), RuleOf(Annually)), At(2037, 2, 1), Zone()),
            finished);
}

TEST(EventTiming, TheEditorHearsWhatIsWrong) {
  TimingRule rule = RuleOf(Daily);
  rule.ApplyPrewarn = rule.ApplyPrewarnRepeat = rule.ApplyNag = true;
  rule.PrewarnRepeatTime = rule.NagRepeatTime = 0;
  EXPECT_STREQ(WhyRuleNeverYields(Every(0, 0, RuleOf(MultiDaily))),
               "Every 0 days never comes round; enter 1 or more.");
  EXPECT_STRNE(WhyRuleNeverYields(rule), "");
  rule.PrewarnRepeatTime = 1;
  EXPECT_STRNE(WhyRuleNeverYields(rule), "");
  rule.NagRepeatTime = 1;
  EXPECT_STREQ(WhyRuleNeverYields(rule), "");
  rule.PrewarnType = 5;
  EXPECT_STRNE(WhyRuleNeverYields(rule), "");
  rule.ApplyPrewarn = false;
  EXPECT_STREQ(WhyRuleNeverYields(rule), "");
  // What a rule does not use is no fault of it.
  rule = ByDay(Monthly, 31, 99);
  rule.Multiple = 0;
  rule.NagRepeatTime = 0;
  rule.DayOfWeek = 99;
  EXPECT_STREQ(WhyRuleNeverYields(rule), "");
}

TEST(EventTiming, AChangeIsRefusedForItsOwnFaultAlone) {
  const auto steps = [](uint32 count) {
    return [count](TimingRule& rule) { rule.Multiple = count; };
  };
  const auto nags = [](TimingRule& rule) { rule.NagRepeatTime = 0; };
  TimingRule rule = Every(3, 0, RuleOf(MultiWeekly));
  const std::string why = WhyChangeRefused(rule, steps(0));
  EXPECT_EQ(why, "Every 0 weeks never comes round; enter 1 or more.");
  EXPECT_STREQ(WhyChangeRefused(rule, nags), "") << "nothing nags";
  rule.DayOfWeek = 99;  // as only a file can hold it
  EXPECT_EQ(WhyChangeRefused(rule, steps(0)), why);
  EXPECT_STREQ(WhyChangeRefused(rule, steps(4)), "");
  rule.Multiple = 0;
  rule.ApplyNag = true;
  EXPECT_STREQ(WhyChangeRefused(rule, steps(4)), "");
  EXPECT_STRNE(WhyChangeRefused(rule, nags), "");
  rule.PeriodType = 77;
  EXPECT_STREQ(WhyChangeRefused(rule, steps(4)), "");
}

TEST(EventTiming, CalendarHelpers) {
  EXPECT_EQ(DaysInMonth(1, 100), 29);
  EXPECT_EQ(DaysInMonth(1, 200), 29);  // every fourth year, 2100 too
  EXPECT_EQ(DaysInMonth(13, 123), 29);
  EXPECT_EQ(DaysInMonth(13, 124), 28);
  EXPECT_EQ(DaysInMonth(-1, 124), 31);
  EXPECT_GT(DaysInMonth(INT32_MIN, INT32_MIN), 27);
  EXPECT_EQ(DetermineWeekOfMonth(1, 1), 0);  // Monday the 1st
  EXPECT_EQ(DetermineWeekOfMonth(2, 0), 0);  // Sunday the 2nd
  EXPECT_EQ(DetermineWeekOfMonth(3, 1), 1);
  EXPECT_EQ(DetermineWeekOfMonth(31, 1), 5);
  EXPECT_EQ(FoldIntoDay(-1), 86399);
  EXPECT_EQ(FoldIntoDay(86400), 0);
  EXPECT_EQ(FoldIntoDay(-86401), 86399);
  EXPECT_EQ(FoldIntoDay(INT64_MIN) - FoldIntoDay(INT64_MIN + 1), -1);
}

}  // namespace
}  // namespace kestrin
