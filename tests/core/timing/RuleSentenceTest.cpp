#include "core/timing/RuleSentence.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <sstream>

#include "core/timing/DateTimeText.h"
#include "core/timing/EventRuleCheck.h"
#include "core/timing/EventTiming.h"
#include "harness/PageTable.h"
#include "harness/Rule.h"

namespace kestrin {
namespace {

const Zone Berlin = *Zone::Load("Europe/Berlin");
const int64 Now = Berlin.ToMoment(ToCivil({2026, 10, 11, 10, 30, 15}));

const std::vector<std::string> Kinds = {
    "Once",     "Annually",      "Monthly",      "Weekly",      "Daily",      "Weekdays",
    "Weekends", "MultiAnnually", "MultiMonthly", "MultiWeekly", "MultiDaily", "SubDaily"};

#define FIELD(name)                                                                 \
  {                                                                                 \
#name, [](TimingRule & rule,                                                    \
              int64 value) { rule.name = static_cast<decltype(rule.name)>(value); } \
  }
const std::map<std::string, std::function<void(TimingRule&, int64)>> Fields = {
    FIELD(Multiple),           FIELD(EventTime),         FIELD(DayOfMonth),
    FIELD(WeekOfMonth),        FIELD(DayOfWeek),         FIELD(Month),
    FIELD(MultiStartTime),     FIELD(ApplyTime),         FIELD(TimeToApply),
    FIELD(SubIntType),         FIELD(ApplyStop),         FIELD(StopTime),
    FIELD(ApplyPrewarn),       FIELD(PrewarnTime),       FIELD(PrewarnType),
    FIELD(ApplyPrewarnRepeat), FIELD(PrewarnRepeatTime), FIELD(PrewarnRepeatType),
    FIELD(ApplyNag),           FIELD(NagRepeatTime),     FIELD(NagRepeatType)};

/// A rule as the page writes it: its kind, then its values.
TimingRule RuleOf(const std::string& text) {
  TimingRule rule;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts >> std::ws, part, ',');) {
    const size_t blank = std::min(part.find(' '), part.size());
    const std::string name = part.substr(0, blank), value = part.substr(blank);
    const auto kind = std::find(Kinds.begin(), Kinds.end(), name);
    if (kind != Kinds.end())
      rule.PeriodType = static_cast<int32>(kind - Kinds.begin());
    else if (name.starts_with("ByDay"))
      rule.TimingType = name == "ByDayOfMonth" ? 1 : 2;
    else if (value.empty())
      Fields.at(name)(rule, 1);
    else if (value.find('+') != value.npos)
      Fields.at(name)(rule, MomentOf(value));
    else if (value.find('-') != value.npos)
      Fields.at(name)(rule, hastimeinfo_parsedate(value, Now, Berlin, nullptr));
    else
      Fields.at(name)(rule, std::stoi(value));
  }
  return rule;
}

TEST(RuleSentence, EveryRuleOfThePageIsSaidAndComesAsThePageSays) {
  std::set<int32> kinds;
  for (const auto& row : TableOfPage("time-rules.md", "| rule | sentence | next dates |")) {
    ASSERT_EQ(row.size(), 3U);
    const TimingRule rule = RuleOf(row[0]);
    kinds.insert(rule.PeriodType);
    EXPECT_EQ(RuleSentence(rule, Berlin, true), row[1]) << row[0];
    std::string dates;
    for (const std::string& date : NextDateTexts(rule, Now, Berlin, 3, true))
      dates += (dates.empty() ? "" : "; ") + date;
    EXPECT_EQ(dates.empty() ? "none" : dates, row[2]) << row[0];
  }
  EXPECT_EQ(kinds.size(), Kinds.size());
}

TEST(EventTimingZones, TheTableOfThePageHolds) {
  const auto rows = TableOfPage("time-rules.md", "| zone | rule | now |");
  EXPECT_GT(rows.size(), 30U);
  for (const auto& row : rows) {
    const EventTimes times =
        ComputeEventTimes(RuleOf(row.at(1)), MomentOf(row.at(2)), *Zone::Load(row.at(0)));
    EXPECT_EQ(times.NextEventTime, MomentOf(row.at(3))) << testing::PrintToString(row);
  }
}

}  // namespace
}  // namespace kestrin
