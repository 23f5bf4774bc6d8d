// What the help page promises is what the engine does, and what it shows is there.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "core/DateTimeText.h"
#include "core/EventTiming.h"

namespace kestrin {
namespace {

const std::string Folder = KESTRIN_SOURCE_DIR "/docs/";

std::string ReadPage() {
  std::ifstream file(Folder + "Kestrin documentation.html");
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The page from these words to the end of their table.
std::string ReadTable(const char* begin) {
  const std::string page = ReadPage();
  const size_t at = std::min(page.find(begin), page.size());
  return page.substr(at, page.find("</table>", at) - at);
}

std::vector<std::smatch> AllOf(const std::string& text, const char* pattern) {
  const std::regex expression(pattern);
  return {std::sregex_iterator(text.begin(), text.end(), expression), {}};
}

int32 At(int64 year, int64 month, int64 day, int64 hour = 0, int64 minute = 0) {
  return static_cast<int32>(ToCivil({year, month - 1, day, hour, minute}).seconds);
}

/// The page's example of a kind, as the editor would store it. `time` in minutes, -1 = none.
TimingRule Example(int32 kind, int32 timing, int32 time) {
  TimingRule rule;
  rule.PeriodType = kind;
  rule.TimingType = timing;
  rule.ApplyTime = time >= 0;
  rule.TimeToApply = rule.ApplyTime ? time * 60 : 0;
  return rule;
}

std::vector<TimingRule> Examples() {
  constexpr int32 None = -1, Hour = 60;
  std::vector<TimingRule> rules = {
      Example(Once, ByDate, 9 * Hour),           Example(Annually, ByDate, None),
      Example(Monthly, ByDayOfMonth, 8 * Hour),  Example(Weekly, ByDayOfWeek, 6 * Hour + 30),
      Example(Daily, ByDate, 21 * Hour),         Example(Weekdays, ByDate, 9 * Hour + 15),
      Example(Weekends, ByDate, 10 * Hour),      Example(MultiAnnually, ByDate, None),
      Example(MultiMonthly, ByDayOfMonth, None), Example(MultiWeekly, ByDayOfWeek, 17 * Hour),
      Example(MultiDaily, ByDate, 12 * Hour),    Example(SubDaily, ByDate, 8 * Hour)};
  rules[Once].EventTime = At(2026, 11, 20, 9);
  rules[Annually].EventTime = At(1978, 3, 14);
  rules[Monthly].DayOfMonth = 32;
  rules[Weekly].DayOfWeek = 4;
  rules[MultiAnnually].EventTime = rules[MultiAnnually].MultiStartTime = At(2025, 6, 1);
  rules[MultiMonthly].Multiple = 3;
  rules[MultiMonthly].DayOfMonth = 15;
  rules[MultiMonthly].MultiStartTime = At(2026, 1, 1);
  rules[MultiWeekly].DayOfWeek = 5;
  rules[MultiWeekly].MultiStartTime = At(2026, 11, 6);
  rules[MultiDaily].Multiple = 10;
  rules[MultiDaily].MultiStartTime = At(2026, 11, 1);
  rules[SubDaily].MultiStartTime = At(2026, 11, 1, 8);
  rules[SubDaily].ApplyStop = true;
  rules[SubDaily].StopTime = 17 * 3600;
  return rules;
}

TEST(HelpPageTest, EveryKindHasAnExampleAndComesWhenThePageSays) {
  const std::vector<std::string> kinds = {
      "Once",     "Annually",      "Monthly",      "Weekly",      "Daily",      "Weekdays",
      "Weekends", "MultiAnnually", "MultiMonthly", "MultiWeekly", "MultiDaily", "SubDaily"};
  const std::string table = ReadTable("<table id=\"examples\">");
  const auto rows = AllOf(table, "<tr><td>(\\w+)</td><td>[^]*?</td><td>([^<]*)</td></tr>");
  ASSERT_EQ(rows.size(), kinds.size());
  const std::vector<TimingRule> rules = Examples();
  for (size_t kind = 0; kind < kinds.size(); ++kind) {
    EXPECT_EQ(rows[kind][1], kinds[kind]);
    const EventTimes times = ComputeEventTimes(rules[kind], At(2026, 11, 11, 10, 30), Zone());
    EXPECT_EQ(rows[kind][2],
              GetDateTimeString(times.ActualEventTime, rules[kind].ApplyTime, Zone(), false))
        << kinds[kind];
  }
}

TEST(HelpPageTest, EveryTypedFormIsUnderstood) {
  const std::string table = ReadTable("<th>You type</th>");
  const auto forms = AllOf(table, "<code>([^<]*)</code>");
  EXPECT_GT(forms.size(), 15U);
  for (const std::smatch& form : forms) {
    const std::string typed = std::regex_replace(form[1].str(), std::regex("\\s+"), " ");
    EXPECT_NE(hastimeinfo_parsedate(typed, At(2026, 11, 11, 10, 30), Zone(), nullptr), -1) << typed;
  }
}

TEST(HelpPageTest, EveryPictureAndEveryLinkIsThereAndNoPictureIsForgotten) {
  const std::string page = ReadPage();
  std::set<std::string> used;
  for (const std::smatch& picture : AllOf(page, "<img src=\"([^\"]*)\" alt=\"[^\"]+\">")) {
    used.insert(picture[1]);
    EXPECT_TRUE(std::filesystem::is_regular_file(Folder + picture[1].str())) << picture[1];
  }
  for (const auto& file : std::filesystem::directory_iterator(Folder + "pictures"))
    EXPECT_TRUE(used.contains("pictures/" + file.path().filename().string())) << file.path();
  for (const std::smatch& link : AllOf(page, "href=\"#([^\"]*)\""))
    EXPECT_NE(page.find("id=\"" + link[1].str() + "\""), std::string::npos) << link[1];
}

}  // namespace
}  // namespace kestrin
