// What the help page promises is what the engine does, and what it shows is there.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"
#include "harness/Rule.h"

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

/// The page's examples, as the editor would store them.
std::vector<TimingRule> Examples() {
  const int32 june = Utc(2025, 6, 1), start = Utc(2026, 11, 1);
  return {Rule(Once).Date(Utc(2026, 11, 20, 9)).At(9),
          Rule(Annually).Date(Utc(1978, 3, 14)),
          Rule(Monthly, ByDayOfMonth).On(32).At(8),
          Rule(Weekly, ByDayOfWeek).Week(0, 4).At(6, 30),
          Rule(Daily).At(21),
          Rule(Weekdays).At(9, 15),
          Rule(Weekends).At(10),
          Rule(MultiAnnually).Date(june).From(june),
          Rule(MultiMonthly, ByDayOfMonth).On(15).Every(3).From(Utc(2026, 1, 1)),
          Rule(MultiWeekly, ByDayOfWeek).Week(0, 5).From(Utc(2026, 11, 6)).At(17),
          Rule(MultiDaily).Every(10).From(start).At(12),
          Rule(SubDaily).From(start + 8 * 3600).At(8).Stop(17)};
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
    const EventTimes times = ComputeEventTimes(rules[kind], Utc(2026, 11, 11, 10, 30), Zone());
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
    EXPECT_NE(hastimeinfo_parsedate(typed, Utc(2026, 11, 11, 10, 30), Zone(), nullptr), -1)
        << typed;
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
