#include "core/DateTimeText.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

int32 MomentOf(const Zone& zone, int64 month, int64 day, int64 hour, int64 minute, int64 second) {
  return static_cast<int32>(zone.ToMoment(ToCivil({2026, month - 1, day, hour, minute, second})));
}

TEST(DateTimeText, MomentsInBothClocks) {
  const Zone zone = *Zone::Load("America/New_York");
  struct {
    int64 hour, minute, second;
    const char *twelve, *twentyFour;
  } const rows[] = {
      {20, 8, 42, "Sun, Nov 15 2026, 08:08:42 PM", "Sun, Nov 15 2026, 20:08:42"},
      {0, 0, 0, "Sun, Nov 15 2026, 12:00:00 AM", "Sun, Nov 15 2026, 00:00:00"},
      {12, 0, 0, "Sun, Nov 15 2026, 12:00:00 PM", "Sun, Nov 15 2026, 12:00:00"},
  };
  for (const auto& row : rows) {
    const int32 time = MomentOf(zone, 11, 15, row.hour, row.minute, row.second);
    EXPECT_EQ(GetDateTimeString(time, true, zone, false), row.twelve);
    EXPECT_EQ(GetDateTimeString(time, true, zone, true), row.twentyFour);
    EXPECT_EQ(GetDateTimeString(time, false, zone, false), "Sun, Nov 15 2026");
  }
  EXPECT_EQ(GetDateTimeString(MomentOf(zone, 3, 5, 0, 0, 0), false, zone, true),
            "Thu, Mar 05 2026");
  EXPECT_EQ(GetDateTimeString(0, true, zone, true), "None");
  EXPECT_EQ(GetDateTimeString(-1, false, zone, false), "None");
  EXPECT_EQ(GetDateTimeString(INT32_MIN, true, Zone(), true), "Fri, Dec 13 1901, 20:45:52");
}

TEST(DateTimeText, TimesOfDay) {
  struct {
    int32 seconds;
    const char *twelve, *twentyFour;
  } const rows[] = {
      {0, "12:00 AM", "00:00"},         {29100, "08:05 AM", "08:05"}, {43500, "12:05 PM", "12:05"},
      {86399, "11:59 PM", "23:59"},     {46800, "01:00 PM", "13:00"}, {-60, "11:59 PM", "23:59"},
      {INT32_MAX, "03:14 AM", "03:14"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetTimeOfDayText(row.seconds, false), row.twelve);
    EXPECT_EQ(GetTimeOfDayText(row.seconds, true), row.twentyFour);
  }
}

TEST(DateTimeText, TwelveHourTimesAreRewritten) {
  struct {
    const char *typed, *rewritten;
  } const rows[] = {
      {"3:30 pm", "15:30:00"},           {"Jan 5 2000, 12:15 am", "Jan 5 2000, 00:15:00"},
      {"Jan 5 3 pm", "Jan 17:00:00"},    {"at  8:08:42\tPm, Nov 15", "at  20:08:42, Nov 15"},
      {"1:2:3am4", "01:02:034"},         {"1530 pm", "27:00:00"},
      {"7pm or 8pm", "19:00:00 or 8pm"}, {"Nov 15 2026", "Nov 15 2026"},
  };
  for (const auto& row : rows) EXPECT_EQ(GetFixedTime(row.typed), row.rewritten);
}

}  // namespace
}  // namespace kestrin
