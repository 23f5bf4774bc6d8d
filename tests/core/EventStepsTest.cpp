// Prewarnings and nags in UTC: when the next one comes, and what cannot go on.
#include <gtest/gtest.h>

#include <ostream>

#include "core/EventTiming.h"

namespace kestrin {

static bool operator==(const EventTimes& a, const EventTimes& b) {
  return a.ActualEventTime == b.ActualEventTime && a.NextEventTime == b.NextEventTime &&
         a.Status == b.Status;
}

static void PrintTo(const EventTimes& times, std::ostream* out) {
  *out << times.ActualEventTime << " / " << times.NextEventTime << " / " << times.Status;
}

namespace {

constexpr int32 Day = 86400, Hour = 3600, Week = 7 * Day;

int32 At(int64 year, int64 month, int64 day, int64 hour = 0) {
  return static_cast<int32>(ToCivil({year, month - 1, day, hour}).seconds);
}

const int32 Now = At(2026, 11, 11, 10);

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

TEST(EventSteps, FirstPrewarning) {
  const int32 event = At(2026, 12, 31, 9);
  struct {
    const char* what = nullptr;
    TimingRule rule;
    int32 now = 0, expected = 0;
  } const rows[] = {
      {"ahead", Warned(event, 3, Days), Now, event - 3 * Day},
      {"exactly now is still due", Warned(event, 3, Days), event - 3 * Day, event - 3 * Day},
      {"past, no repeat", Warned(event, 3, Days), event - 3 * Day + 1, event},
      {"repeated", Warned(event, 1, Days, 6, Hours), event - 10 * Hour, event - 6 * Hour},
      {"a repeat exactly now", Warned(event, 1, Days, 6, Hours), event - 6 * Hour,
       event - 6 * Hour},
      {"the repeat is the event", Warned(event, 1, Days, 6, Hours), event - 6 * Hour + 1, event},
      {"a repeat past the event", Warned(event, 10, Hours, 7, Hours), event - Hour, event},
      {"31 November runs over", Warned(event, 1, Months), Now, At(2026, 12, 1, 9)},
      {"over the year", Warned(event, 22, Months), At(2025, 1, 1), At(2025, 3, 3, 9)},
      {"months on months", Warned(event, 5, Months, 2, Months), Now, At(2026, 12, 1, 9)},
      {"4294967295 months", Warned(event, UINT32_MAX, Months, 1, Months), Now, At(2026, 12, 1, 9)},
      {"4294967295 weeks", Warned(event, UINT32_MAX, Weeks, 1, Weeks), Now, event - 7 * Week},
      {"ahead by no unit", Warned(event, 3, 5), Now, event},
      {"ahead by nothing", Warned(event, 0, Months), Now, event},
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

TEST(EventSteps, AfterAPrewarning) {
  const int32 event = At(2026, 12, 31, 9), shown = event - Day;
  TimingRule rule = Warned(event, 1, Days, 6, Hours);
  rule.NextEventTime = shown;
  const auto next = [&](int64 now) { return NextPrewarning(rule, now, Zone()); };
  EXPECT_EQ(next(shown - 1), (EventTimes{event, shown, WaitingForPrewarning}));
  EXPECT_EQ(next(shown), (EventTimes{event, shown + 6 * Hour, WaitingForPrewarning}));
  EXPECT_EQ(next(shown + 6 * Hour), (EventTimes{event, shown + 12 * Hour, WaitingForPrewarning}));
  EXPECT_EQ(next(event - 6 * Hour), (EventTimes{event, event, WaitingForEvent}));
  EXPECT_EQ(next(INT64_MAX), (EventTimes{event, event, WaitingForEvent}));
  rule.PrewarnRepeatTime = 0;
  EXPECT_EQ(next(shown), (EventTimes{event, event, WaitingForEvent}));
  rule.PrewarnRepeatTime = 6;
  rule.ApplyPrewarnRepeat = false;
  EXPECT_EQ(next(shown), (EventTimes{event, event, WaitingForEvent}));
}

TEST(EventSteps, Nags) {
  const int32 event = At(2026, 1, 31, 9);
  struct {
    const char* what;
    uint32 count;
    int32 unit, now, expected;
  } const rows[] = {
      {"one step", 2, Hours, event, event + 2 * Hour},
      {"long overdue", 2, Hours, event + 101 * Day, event + 101 * Day + 2 * Hour},
      {"still ahead", 2, Hours, event - 1, event},
      {"months run over once", 1, Months, At(2026, 6, 1), At(2026, 6, 3, 9)},
      {"years", 12, Months, At(2036, 6, 1), At(2037, 1, 31, 9)},
      {"nothing", 0, Days, event, 0},
      {"no months", 0, Months, event, 0},
      {"no unit", 1, -1, event, 0},
      {"past the last second", 1, Weeks, At(2038, 1, 17), 0},
      {"4294967295 weeks", UINT32_MAX, Weeks, event, 0},
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
