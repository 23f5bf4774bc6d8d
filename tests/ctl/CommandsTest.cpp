// What next and agenda compute, and how kestrinctl is called.
#include <filesystem>
#include <sstream>

#include "ctl/CtlTestBase.h"

namespace kestrin {
namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr int32 Saturday = 1792836000;  ///< 24 October 2026, 10:00 UTC; Berlin's clocks go back
constexpr int32 Hour = 3600, Day = 86400;

EventRecord DailyAt(int32 timeOfDay, const std::string& name) {
  EventRecord record;
  record.Name = name;
  record.PeriodType = Daily;
  record.ApplyTime = true;
  record.TimeToApply = timeOfDay;
  return record;
}

EventRecord OnceAt(int32 time, const std::string& name) {
  EventRecord record;
  record.Name = name;
  record.EventTime = record.ActualEventTime = record.NextEventTime = time;
  record.ApplyTime = true;
  return record;
}

std::string Text(int64 number) { return std::to_string(number); }

class CommandsTest : public CtlTest {
 protected:
  /// The agenda as "+seconds kind event[ in set][ missed]", the seconds from Saturday.
  std::vector<std::string> Agenda(const std::vector<std::string>& arguments, bool withSet = false) {
    std::vector<std::string> all = {"agenda", "--json"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<std::string> lines;
    for (const json& entry : RunJson(all)) {
      EXPECT_EQ(entry.size(), 5u);
      lines.push_back("+" + Text(int64{entry["time"]} - Saturday) + " " +
                      std::string(entry["kind"]) + " " + std::string(entry["event"]) +
                      (withSet ? " in " + std::string(entry["set"]) : "") +
                      (entry["missed"] ? " missed" : ""));
    }
    return lines;
  }
};

using Lines = std::vector<std::string>;

TEST_F(CommandsTest, ShowSaysEachRuleInWordsAndWhenItComes) {
  EventRecord asleep = DailyAt(9 * Hour, "asleep\n");
  asleep.Active = false;
  MakeSet("set", {OnceAt(Saturday, "gone"), asleep});
  MakeSet("none", {});
  Zone = "Europe/Berlin";
  EXPECT_EQ(Run({"show", "--at", Text(Saturday), "set"}).out,
            "gone\n  Once, on Saturday, 24 Oct 2026 at 12:00 PM.\n"
            "asleep?\n  Inactive: it is not delivered.\n  Every day at 9:00 AM.\n"
            "    Sun, Oct 25 2026, 09:00 AM\n    Mon, Oct 26 2026, 09:00 AM\n"
            "    Tue, Oct 27 2026, 09:00 AM\n    Wed, Oct 28 2026, 09:00 AM\n"
            "    Thu, Oct 29 2026, 09:00 AM\n");
  EXPECT_EQ(Run({"show", "none"}).out, "No events.\n");
}

TEST_F(CommandsTest, NextComputesInTheZoneOfTheProcess) {
  EventRecord asleep = DailyAt(9 * Hour, "asleep");
  asleep.Active = false;
  MakeSet("set", {OnceAt(Saturday, "gone"), DailyAt(9 * Hour, "breakfast"), asleep});
  const std::pair<const char*, int32> rows[] = {
      {"Europe/Berlin", Saturday + 22 * Hour},  // an hour more than summer time's
      {"UTC", Saturday + 23 * Hour},
      {"America/New_York", Saturday + 3 * Hour}};
  const auto told = [](const char* name, int32 actual, int32 next, int32 status) {
    return json{
        {"Name", name}, {"ActualEventTime", actual}, {"NextEventTime", next}, {"Status", status}};
  };
  for (const auto& [zone, breakfast] : rows) {
    Zone = zone;
    EXPECT_EQ(RunJson({"next", "--json", "--at", Text(Saturday), "set"}),
              json({told("gone", Saturday, 0, DoneWithEvent),
                    told("breakfast", breakfast, breakfast, WaitingForEvent),
                    told("asleep", breakfast, breakfast, WaitingForEvent)}))
        << zone;
  }
  Zone = "Europe/Berlin";
  const std::string table = Run({"next", "--at", "Oct 24 2026 12:00", "set"}).out;
  EXPECT_EQ(table, Run({"next", "--at", Text(Saturday), "set"}).out) << "typed, and in seconds";
  EXPECT_THAT(table, HasSubstr("gone       Sat, Oct 24 2026, 12:00:00 PM  None"));
  EXPECT_THAT(table, HasSubstr("asleep     Sun, Oct 25 2026, 09:00:00 AM"));
  EXPECT_THAT(table, HasSubstr("  Inactive\n"));
}

TEST_F(CommandsTest, AgendaShowsEveryKindOfDelivery) {
  EventRecord reminding = OnceAt(Saturday + 2 * Hour, "call");
  reminding.ApplyPrewarn = reminding.ApplyPrewarnRepeat = reminding.ApplyNag = true;
  reminding.PrewarnTime = 90;
  reminding.PrewarnType = Minutes;
  reminding.PrewarnRepeatTime = 1;
  reminding.PrewarnRepeatType = Hours;
  reminding.NagRepeatTime = 2;
  MakeSet("set", {reminding, DailyAt(11 * Hour, "lunch"), OnceAt(Saturday, "gone")});
  const std::string before = ReadFile(Path("set"));
  Zone = "UTC";
  EXPECT_EQ(
      Agenda({"--from", Text(Saturday), "--to", Text(Saturday + 2 * Day + 2 * Hour + 1), "set"}),
      (Lines{"+1800 prewarning call", "+3600 event lunch", "+5400 prewarning call",
             "+7200 event call", "+90000 event lunch", "+176400 event lunch", "+180000 nag call"}));
  const std::string at = Text(Saturday + 1800), after = Text(Saturday + 1801);
  EXPECT_EQ(Agenda({"--from", Text(Saturday), "--to", at, "set"}), Lines{});
  EXPECT_EQ(Agenda({"--from", Text(Saturday), "--to", after, "set"}),
            Lines{"+1800 prewarning call"});
  EXPECT_EQ(Agenda({"--from", after, "--to", at, "set"}), Lines{});
  EXPECT_EQ(Run({"agenda", "--from", Text(Saturday - 7 * Day), "set"}).out.find("call"),
            std::string::npos)
      << "a week does not reach its own weekday";
  EXPECT_EQ(ReadFile(Path("set")), before) << "nothing is saved";
}

TEST_F(CommandsTest, AgendaOfAStartIsOneForAllFilesInTheOrderOfTheDeliveries) {
  MakeSet("a", {OnceAt(Saturday - 30, "A late"), OnceAt(Saturday + Hour, "A eleven"),
                OnceAt(Saturday - 10, "A later"), OnceAt(Saturday - Day, "A lost")});
  MakeSet("b", {OnceAt(Saturday - 20, "B late"), OnceAt(Saturday + Hour, "B eleven"),
                OnceAt(Saturday + 1, "B ten")});
  std::filesystem::create_symlink("a", Path("link"));
  Zone = "UTC";
  const std::vector<std::string> span = {"--startup", "--from", Text(Saturday), "--to",
                                         Text(Saturday + 2 * Hour)};
  const auto of = [&](std::vector<std::string> files) {
    files.insert(files.begin(), span.begin(), span.end());
    return Agenda(files, true);
  };
  EXPECT_EQ(of({"./b", "a", "link", Path("b")}),
            (Lines{"+0 event A lost in a missed", "+0 event A late in a", "+0 event B late in ./b",
                   "+0 event A later in a", "+1 event B ten in ./b", "+3600 event B eleven in ./b",
                   "+3600 event A eleven in a"}));
  EXPECT_THAT(of({"link", "b"}), testing::Contains("+3600 event A eleven in link"));
  const std::string table = Run({"agenda", "--startup", "--from", Text(Saturday), "a", "b"}).out;
  EXPECT_THAT(table, HasSubstr("Set\n"));
  EXPECT_THAT(table, HasSubstr("event (missed)  A lost "));
  EXPECT_EQ(Agenda({"--from", Text(Saturday + 2 * Hour), "a", "b"}), Lines{})
      << "recomputed, all are over";
}

TEST_F(CommandsTest, TablesHoldTheirColumnsWhateverTheNames) {
  const std::string accents(4 * 45, 'e');
  MakeSet("set", {DailyAt(0, "漢字"), DailyAt(0, "e\u0301"), DailyAt(0, "\x1b[31m\nred\u009b"),
                  DailyAt(0, "caf\xe9"), DailyAt(0, accents), DailyAt(0, std::string(30, 'x'))});
  const std::string table = Run({"next", "--at", Text(Saturday), "set"}).out;
  const std::string time = "  Sun, Oct 25 2026, ";
  const auto padded = [&](const std::string& name, size_t columns) {
    return "\n" + name + std::string(48 - columns, ' ') + time;
  };
  for (const std::string& row :
       {padded("漢字", 4), padded("e\u0301", 1), padded("?[31m?red?", 10), padded("caf?", 4),
        padded(accents.substr(0, 47) + "…", 48), padded(std::string(30, 'x'), 30)})
    EXPECT_THAT(table, HasSubstr(row));
}

TEST_F(CommandsTest, CheckSaysWhatNeverComesAndHowManyEventsThereAre) {
  EventRecord never;
  never.Name = "never";
  never.PeriodType = SubDaily;
  never.SubIntType = Months;
  MakeSet("good", {OnceAt(Saturday, "x")});
  MakeSet("odd", {never, OnceAt(Saturday, "x")});
  const Ran ran = Run({"check", "good", "odd"});
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(
      ran.out,
      "good: 1 events, version 1.2, little-endian\nodd: 2 events, version 1.2, little-endian\n"
      "  \"never\": A day cannot be divided by months; choose hours or minutes.\n");
}

TEST_F(CommandsTest, WrongUsageIsToldWithTheRightOne) {
  for (const char* row :
       {"", "view F", "dump", "dump F F", "dump --json F", "next F F", "next F --at",
        "next --at never F", "next --at 2147483648 F", "next --from 1 F", "agenda",
        "agenda --at 1 F", "check", "check -x F", "rewrite F", "rewrite F out more"}) {
    std::vector<std::string> words;
    std::istringstream cutter(row);
    for (std::string word; cutter >> word;) words.push_back(word == "F" ? TeaFile : word);
    const Ran ran = Run(words);
    EXPECT_EQ(ran.status, 1) << row;
    EXPECT_EQ(ran.out, "");
    EXPECT_THAT(ran.err, HasSubstr("usage: kestrinctl dump FILE"));
  }
  WriteFile(Path("--json"), ReadFile(TeaFile));
  EXPECT_EQ(Run({"dump", "--", "--json"}).status, 0) << "a file called like an option";
}

}  // namespace
}  // namespace kestrin
