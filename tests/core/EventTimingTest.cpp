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

struct Case {
  const char* what = nullptr;
  TimingRule rule;
  int32 now = 0, expected = 0;
};

TimingRule Warned(int32 event, uint32 ahead, int32 unit, uint32 repeat = 0, int32 repeatUnit = -1) {
  TimingRule rule;
  rule.ActualEventTime = rule.EventTime = event;
  rule.ApplyPrewarn = true;
  rule.PrewarnTime = ahead;
  rule.PrewarnType = unit;
  rule.ApplyPrewarnRepeat = repeatUnit >= 0;
  rule.PrewarnRepeatTime = repeat;
  rule.PrewarnRepeatType = repeatUnit;
  return rule;
}

template <size_t Count>
void Check(const Case (&cases)[Count]) {
  for (const Case& row : cases) {
    const EventTimes times = ComputeEventTimes(row.rule, row.now, Zone());
    EXPECT_EQ(times, (EventTimes{row.expected, row.expected, WaitingForEvent})) << row.what;
  }
}

TEST(EventTiming, EdgesOfTheRules) {
  const int32 leapDay = At(2024, 2, 29, 7);
  Check({
      {"the 31st in a leap February", ByDay(Monthly, 31), At(2028, 2, 2), At(2028, 2, 29)},
      {"28th to last of a short month", ByDay(Monthly, 59), At(2026, 2, 1) - 1, At(2026, 2, 1)},
      {"by date counts as by week", WithoutType(ByWeek(Monthly, 1, 3)), Now, At(2026, 12, 9)},
      // 1 December 2026 is a Tuesday: searched from day 31 of November.
      {"last Tuesday runs over", ByWeek(Monthly, 4, 2), At(2026, 11, 10), At(2026, 12, 1)},
      {"and goes on from December", ByWeek(Monthly, 4, 2), At(2026, 12, 1), At(2026, 12, 29)},
      {"own month February: from day 28", ByWeek(Monthly, 4, 1, 1), Now, At(2026, 11, 23)},
      // From 31 September the last Thursday is 1 October, so October's own is left out.
      {"months are left out", Every(1, At(2026, 9, 3), ByWeek(MultiMonthly, 4, 4)), At(2026, 10, 2),
       At(2026, 11, 26)},
      {"today without a time of day", ByWeek(Weekly, 0, 3), Now, At(2026, 11, 18)},
      {"a time of day past midnight folds", Timed(RuleOf(Daily), 35), Now, At(2026, 11, 11, 11)},
      {"every 4294967295 months", Every(UINT32_MAX, Now, ByDay(MultiMonthly, 12)), Now,
       At(2026, 11, 12)},
      {"years: by a rule the start is past", Every(4, At(2022, 3, 5), ByDay(MultiAnnually, 5, 2)),
       Now, At(2027, 3, 5)},
      {"years: by date up to the start first",
       On(At(1980, 3, 5), Every(10, At(2001, 3, 6), RuleOf(MultiAnnually))), Now, At(2032, 3, 5)},
      {"29 February", On(leapDay, RuleOf(Annually)), At(2027, 12, 1), At(2028, 3, 1, 7)},
      {"29 February every 4 years", On(leapDay, Every(4, 0, RuleOf(MultiAnnually))), Now,
       At(2028, 2, 29, 7)},
      {"the next midnight is not past the stop", Window(16, Hours, At(2026, 11, 1, 8), 17 * Hour),
       At(2026, 11, 11, 8), At(2026, 11, 12)},
      {"on the stop it is yesterday's night", Window(26, Hours, At(2026, 11, 1, 22), 2 * Hour),
       At(2026, 11, 11, 2), At(2026, 11, 12)},
  });
}

TEST(EventTiming, Finished) {
  TimingRule unknownTiming = RuleOf(Annually, 3);
  unknownTiming.EventTime = At(2030, 1, 1);
  const TimingRule rules[] = {RuleOf(12),
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
                              Window(1, -1, 0, 100)};
  for (const TimingRule& rule : rules) {
    EXPECT_EQ(ComputeEventTimes(rule, Now, Zone()), (EventTimes{4711, 0, DoneWithEvent}))
        << rule.PeriodType << " " << WhyRuleNeverYields(rule);
    EXPECT_STRNE(WhyRuleNeverYields(rule), "") << rule.PeriodType;
  }
}

TEST(EventTiming, AKindWithoutANameKeepsItsTime) {
  TimingRule rule = On(1, RuleOf(99));
  rule.ActualEventTime = Now;
  EXPECT_EQ(ComputeEventTimes(rule, Now, Zone()), (EventTimes{Now, 0, DoneWithEvent}));
  EXPECT_EQ(ComputeEventTimes(rule, Now - 1, Zone()), (EventTimes{Now, Now, WaitingForEvent}));
}

TEST(EventTiming, NothingComesAfterTheLastSecond) {
  const TimingRule rule = Timed(RuleOf(Daily), 3);
  EXPECT_EQ(ComputeEventTimes(rule, At(2038, 1, 18, 3), Zone()).NextEventTime, At(2038, 1, 19, 3));
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
  EXPECT_STREQ(WhyRuleNeverYields(Every(0, 0, RuleOf(MultiDaily))),
               "Every 0 days never comes round; enter 1 or more.");
  TimingRule rule = ByDay(Monthly, 31, 99);
  rule.NagRepeatTime = 0;
  rule.Multiple = 0;
  rule.DayOfWeek = 99;
  EXPECT_STREQ(WhyRuleNeverYields(rule), "") << "what a rule does not use is no fault of it";
  rule.ApplyNag = true;
  EXPECT_STRNE(WhyRuleNeverYields(rule), "");
  rule.NagRepeatTime = 1;
  rule.ApplyPrewarn = rule.ApplyPrewarnRepeat = true;
  rule.PrewarnRepeatTime = 0;
  EXPECT_STRNE(WhyRuleNeverYields(rule), "");
  rule.PrewarnRepeatTime = 1;
  EXPECT_STREQ(WhyRuleNeverYields(rule), "");
  rule.PrewarnType = 5;
  EXPECT_STRNE(WhyRuleNeverYields(rule), "");
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
  EXPECT_EQ(DaysInMonth(13, 124), 28);
  EXPECT_EQ(DaysInMonth(-1, 124), 31);
  EXPECT_EQ(DetermineWeekOfMonth(2, 0), 0);  // Sunday the 2nd
  EXPECT_EQ(DetermineWeekOfMonth(31, 1), 5);
  EXPECT_EQ(FoldIntoDay(86400), 0);
  EXPECT_EQ(FoldIntoDay(-86401), 86399);
  EXPECT_EQ(FoldIntoDay(INT64_MIN) - FoldIntoDay(INT64_MIN + 1), -1);
}

TEST(EventTiming, FirstPrewarning) {
  const int32 event = At(2026, 12, 31, 9);
  struct {
    const char* what = nullptr;
    TimingRule rule;
    int32 now = 0, expected = 0;
  } const rows[] = {
      {"exactly now is still due", Warned(event, 3, Days), event - 3 * Day, event - 3 * Day},
      {"a repeat exactly now", Warned(event, 1, Days, 6, Hours), event - 6 * Hour,
       event - 6 * Hour},
      {"the repeat is the event", Warned(event, 1, Days, 6, Hours), event - 6 * Hour + 1, event},
      {"a repeat past the event", Warned(event, 10, Hours, 7, Hours), event - Hour, event},
      {"31 November runs over", Warned(event, 1, Months), Now, At(2026, 12, 1, 9)},
      {"months on months", Warned(event, 5, Months, 2, Months), Now, At(2026, 12, 1, 9)},
      {"4294967295 months", Warned(event, UINT32_MAX, Months, 1, Months), Now, At(2026, 12, 1, 9)},
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
  const int32 event = At(2026, 1, 31, 9);
  struct {
    const char* what;
    uint32 count;
    int32 unit, now, expected;
  } const rows[] = {
      {"long overdue", 2, Hours, event + 101 * Day, event + 101 * Day + 2 * Hour},
      {"still ahead", 2, Hours, event - 1, event},
      {"months run over once", 1, Months, At(2026, 6, 1), At(2026, 6, 3, 9)},
      {"no months", 0, Months, event, 0},
      {"no unit", 1, -1, event, 0},
      {"past the last second", 1, Weeks, At(2038, 1, 17), 0},
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

}  // namespace
}  // namespace kestrin
