#include <gtest/gtest.h>

#include <string>

#include "core/timing/DateTimeText.h"
#include "harness/PageTable.h"

namespace kestrin {
namespace {

std::string WallText(int32 moment, const Zone& zone) {
  if (moment == -1) return "no date";
  absl::TimeZone same;
  EXPECT_TRUE(absl::LoadTimeZone(zone.Name(), &same));
  return absl::FormatTime("%E4Y-%m-%d %H:%M:%S", absl::FromUnixSeconds(moment), same);
}

TEST(DateParser, ReadsWhatThePageSays) {
  const Zone zone = *Zone::Load("Europe/Berlin");
  const int64 now = zone.ToMoment(ToCivil({2026, 10, 11, 10, 30, 15}));
  const auto rows = TableOfPage("time-rules.md", "| typed | means | time of day |");
  ASSERT_GT(rows.size(), 50u);
  for (const auto& row : rows) {
    ASSERT_EQ(row.size(), 3u);
    bool hasTime = true;
    const int32 moment = hastimeinfo_parsedate(row[0], now, zone, &hasTime);
    EXPECT_EQ(WallText(moment, zone), row[1]) << row[0];
    EXPECT_EQ(hasTime ? "yes" : "no", row[2]) << row[0];
    EXPECT_EQ(hastimeinfo_parsedate("  " + row[0] + "\t", now, zone, nullptr), moment) << row[0];
  }
}

TEST(DateParser, AFieldReadsWhatThePageSays) {
  const Zone zone = *Zone::Load("Europe/Berlin");
  const int64 now = zone.ToMoment(ToCivil({2026, 10, 11, 10, 30, 15}));
  const auto rows = TableOfPage("time-rules.md", "| language | typed | means | time of day |");
  ASSERT_GT(rows.size(), 40u);
  for (const auto& row : rows) {
    ASSERT_EQ(row.size(), 4u);
    const auto order = row[0] == "en" ? DateOrder::MonthFirst : DateOrder::DayFirst;
    const TypedDate date = ReadTypedDate(row[1], now, zone, LanguageNamed(row[0], order));
    const bool isDate = date.kind == TypedDate::Kind::Date;
    EXPECT_EQ(isDate ? WallText(date.moment, zone) : "no date", row[2]) << row[1];
    EXPECT_EQ(date.hasTime ? "yes" : "no", row[3]) << row[1];
  }
}

TEST(DateParser, MonthsAwayStopAtTheMonthsEnd) {
  const int64 now = ToCivil({2027, 11, 31, 12, 0, 0}).seconds;
  for (const char* typed : {"in 2 months", "2 months from now"})
    EXPECT_EQ(WallText(hastimeinfo_parsedate(typed, now, Zone(), nullptr), Zone()),
              "2028-02-29 00:00:00");
  EXPECT_EQ(WallText(hastimeinfo_parsedate("last month", now, Zone(), nullptr), Zone()),
            "2027-11-30 00:00:00");
  EXPECT_EQ(WallText(hastimeinfo_parsedate("next year", now, Zone(), nullptr), Zone()),
            "2028-12-31 00:00:00");
}

TEST(DateParser, OutsideWhatCanBeStoredIsNoDate) {
  EXPECT_EQ(hastimeinfo_parsedate("Dec 13 1901 20:45:52", 1000, Zone(), nullptr), INT32_MIN);
  EXPECT_EQ(hastimeinfo_parsedate("Dec 13 1901 20:45:51", 1000, Zone(), nullptr), -1);
  EXPECT_EQ(hastimeinfo_parsedate("2038-01-19 03:14:08", 1000, Zone(), nullptr), -1);
  EXPECT_EQ(hastimeinfo_parsedate("in 1 second", INT64_MAX, Zone(), nullptr), -1);
  EXPECT_EQ(hastimeinfo_parsedate("Nov 15 2026" + std::string(200, ' '), 1000, Zone(), nullptr),
            -1);
  EXPECT_EQ(hastimeinfo_parsedate(std::string_view("today\0", 6), 1000, Zone(), nullptr), -1);
}

TEST(DateParser, TimesOfDayAlone) {
  const auto rows = TableOfPage("time-rules.md", "| time of day | seconds into the day |");
  ASSERT_GT(rows.size(), 20u);
  for (const auto& row : rows) EXPECT_EQ(ParseTimeOfDay(row[0]), std::stoi(row[1])) << row[0];
}

TEST(DateParser, SaysWhetherATextIsNoDateOrOutOfReach) {
  const Zone zone = *Zone::Load("Europe/Berlin");
  const int64 now = zone.ToMoment(ToCivil({2026, 10, 11, 10, 30, 15}));
  const auto rows = TableOfPage("time-rules.md", "| typed date | begins a rule | said |");
  ASSERT_GT(rows.size(), 14u);
  for (const auto& row : rows) {
    const std::string why(
        WhyNoDate(ReadTypedDate(row[0], now, zone), row[1] == "yes").value_or(""));
    EXPECT_EQ(why.empty(), row[2].empty()) << row[0] << ": " << why;
    EXPECT_NE(why.find(row[2]), std::string::npos) << row[0] << ": " << why;
  }
}

TEST(DateTimeText, TimesOfDay) {
  struct {
    int32 seconds;
    const char *twelve, *twentyFour;
  } const rows[] = {
      {29100, "08:05 AM", "08:05"}, {43500, "12:05 PM", "12:05"}, {-60, "11:59 PM", "23:59"}};
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
