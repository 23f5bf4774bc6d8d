// The worst files there can be, within 10 seconds and 512 MB.
#include <cstring>

#include "ctl/CtlTestBase.h"

namespace kestrin {
namespace {

constexpr int32 Begin = 1794700800, Day = 86400;
constexpr size_t HeadBytes = 9, LayoutBytes = 118;
constexpr size_t LargestFile = size_t{IsSanitized ? 4 : 64} << 20;

EventRecord Minutely(const std::string& name) {
  EventRecord record;
  record.Name = name;
  record.PeriodType = SubDaily;
  record.SubIntType = Minutes;
  record.Multiple = 1;
  record.MultiStartTime = Begin;
  return record;
}

/// The last weekday of every month since 1901, counted from a month that is longer than most.
EventRecord LongestWalk() {
  EventRecord record;
  record.Name.clear();
  record.PeriodType = MultiMonthly;
  record.TimingType = ByDayOfWeek;
  record.WeekOfMonth = 4;
  record.DayOfWeek = 3;
  record.MultiStartTime = INT32_MIN;
  record.Multiple = 1;
  return record;
}

class BoundsTest : public CtlTest {
 protected:
  /// The event as bytes, with an empty block of a handler without a name: the least there is.
  std::string Smallest(const EventRecord& record) const {
    const std::string handler("Message\0\0\0\0\0", 12), none(5, '\0');
    MakeSet("one", {record});
    std::string set = ReadFile(Path("one"));
    set.resize(set.size() - LayoutBytes);
    EXPECT_TRUE(set.ends_with(handler));
    return set.substr(HeadBytes, set.size() - HeadBytes - handler.size()) + none;
  }
  void Fill(const std::string& name, const std::string& event, size_t count) const {
    std::string set = ReadFile(DataFolder + "golden/no-events.kestrin");
    const std::string layout = set.substr(HeadBytes);
    set.resize(HeadBytes);
    const auto number = static_cast<int32>(count);
    std::memcpy(set.data() + HeadBytes - sizeof number, &number, sizeof number);
    set.reserve(HeadBytes + count * event.size() + LayoutBytes);
    for (size_t i = 0; i < count; ++i) set += event;
    WriteFile(Path(name), set + layout);
  }
  void ExpectDone(const std::vector<std::string>& arguments) const {
    const Ran ran = Run(arguments, false);
    EXPECT_EQ(ran.status, 0) << testing::PrintToString(arguments) << " " << ran.err;
  }
};

TEST_F(BoundsTest, TheLargestSetOfTheSmallestEventsWithTheSlowestRule) {
  const std::string event = Smallest(LongestWalk());
  ASSERT_EQ(event.size(), 119u) << "the smallest there is";
  Fill("slow", event, LargestFile / event.size() - 2);
  ExpectDone({"check", "slow", "./slow"});
  ExpectDone({"next", "--at", "2143000000", "slow"});
  ExpectDone({"agenda", "--startup", "--from", "2143000000", "slow"});
  ExpectDone({"dump", "slow"});
  ExpectDone({"rewrite", "slow", "again"});
  EXPECT_TRUE(ReadFile(Path("slow")) == ReadFile(Path("again")));
}

TEST_F(BoundsTest, EventsOfEveryMinute) {
  const std::vector<std::string> agenda = {"agenda", "--json", "--from", std::to_string(Begin),
                                           "set"};
  Fill("set", Smallest(Minutely("tick")), IsSanitized ? 4 : 49);
  ExpectDone(agenda);
  Fill("set", Smallest(Minutely(std::string(4095, 'n'))), 49);
  ExpectRefused(agenda, "set", "too many deliveries");
  Fill("set", Smallest(Minutely("tick")), 1000);
  ExpectRefused(agenda, "set", "too many deliveries");
}

TEST_F(BoundsTest, EventsThatDeleteThemselvesByTheHundredThousand) {
  EventRecord record;
  record.Name = "once";
  record.EventTime = Begin + Day;
  record.DeleteOnceDelivered = true;
  Fill("set", Smallest(record), IsSanitized ? 20000 : 400000);
  ExpectDone({"agenda", "--from", std::to_string(Begin), "set"});
}

}  // namespace
}  // namespace kestrin
