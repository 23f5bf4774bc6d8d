// Edges that the computation of any rule, in EventTimingPropertyTest, seldom or never meets, and
// rules around real changes of the clocks.
#include "core/timing/EventTiming.h"

#include <gtest/gtest.h>

#include <ostream>

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

struct Row {
  const char* what;
  TimingRule rule;
  int32 now, expected;
};

TEST(EventTiming, EdgesOfTheRules) {
  const int32 leapDay = Utc(2024, 2, 29, 7);
  const Row rows[] = {
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
  rule.TimingType = ByDayOfWeek;
  EXPECT_TRUE(WhyRuleNeverYields(rule));
  rule.TimingType = ByDayOfMonth;
  rule.ApplyNag = true;
  EXPECT_TRUE(WhyRuleNeverYields(rule));
  rule.NagRepeatTime = 1;
  rule.ApplyPrewarn = rule.ApplyPrewarnRepeat = true;
  EXPECT_TRUE(WhyRuleNeverYields(rule));
  rule.ApplyPrewarn = false;
  EXPECT_EQ(WhyRuleNeverYields(rule), std::nullopt) << "what is repeated never comes";
  rule.ApplyPrewarn = true;
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
  const Row rows[] = {
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

TEST(EventTiming, NagsOfMonthsAreOnTheWallClockAndOthersElapse) {
  const Zone berlin = *Zone::Load("Europe/Berlin");
  Rule rule(Once);
  rule.NextEventTime = MomentOf("2026-09-25 02:30 +0200");
  rule.NagRepeatTime = 1;
  const std::tuple<TimeIntervalType, const char*, const char*> rows[] = {
      {Months, "2026-10-01 00:00 +0200", "2026-10-25 02:30 +0200"},
      {Months, "2026-10-25 02:10 +0100", "2026-11-25 02:30 +0100"},
      {Days, "2026-10-25 12:00 +0100", "2026-10-26 01:30 +0100"}};
  for (const auto& [unit, now, next] : rows) {
    rule.NagRepeatType = unit;
    EXPECT_EQ(NextNag(rule, MomentOf(now), berlin).NextEventTime, MomentOf(next)) << now;
  }
  const int32 again = MomentOf("2026-10-25 02:30 +0100");
  EXPECT_EQ(ComputeEventTimes(Warned(again, 0, Months), again - Day, berlin).NextEventTime, again)
      << "no month ahead is not an hour ahead";
}

TEST(EventTiming, MidnightAndTimeOfDay) {
  const Zone saoPaulo = *Zone::Load("America/Sao_Paulo"), berlin = *Zone::Load("Europe/Berlin");
  const int32 skipped = MomentOf("2018-11-04 05:00 -0200");
  EXPECT_EQ(OnDayOf(skipped, 0, saoPaulo), skipped - 4 * Hour) << "the day begins at 1:00";
  EXPECT_EQ(GetSecondsIntoDay(skipped, saoPaulo), 5 * Hour);
  const int32 long25 = MomentOf("2026-10-25 12:00 +0100");
  EXPECT_EQ(OnDayOf(long25, 0, berlin), long25 - 13 * Hour);
  EXPECT_EQ(GetSecondsIntoDay(long25, berlin), 12 * Hour);
  EXPECT_EQ(OnDayOf(INT32_MIN, 0, berlin), std::nullopt);
}

}  // namespace
}  // namespace kestrin
