// The worst files there can be, within 10 seconds and 512 MB.
#include "ctl/CtlTestBase.h"

namespace kestrin {
namespace {

constexpr int32 Begin = 1794700800, Day = 86400;
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

/// The last weekday of every month since 1901, reckoned from a month that is longer than most.
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
  void Fill(const std::string& name, const EventRecord& record, size_t count) const {
    const std::string bytes = RecordBytes(record);
    PutBytes(Path(name), SetOfRecords(count, [&](std::string& all) {
               all.reserve(all.size() + count * bytes.size());
               for (size_t i = 0; i < count; ++i) all += bytes;
             }));
  }
  void ExpectDone(const std::vector<std::string>& arguments) const {
    const Ran ran = Run(arguments, false);
    EXPECT_EQ(ran.status, 0) << testing::PrintToString(arguments) << " " << ran.err;
  }
};

TEST_F(BoundsTest, TheLargestSetOfTheSmallestEventsWithTheSlowestRule) {
  ASSERT_EQ(RecordBytes(LongestWalk()).size(), 119u) << "the smallest there is";
  Fill("slow", LongestWalk(), LargestFile / 119 - 2);
  ExpectDone({"check", "slow", "./slow"});
  ExpectDone({"next", "--at", "2143000000", "slow"});
  ExpectDone({"agenda", "--startup", "--from", "2143000000", "slow"});
  ExpectDone({"dump", "slow"});
  ExpectDone({"rewrite", "slow", "again"});
  EXPECT_TRUE(BytesOf(Path("slow")) == BytesOf(Path("again")));
}

TEST_F(BoundsTest, EventsOfEveryMinute) {
  const std::vector<std::string> agenda = {"agenda", "--json", "--from", std::to_string(Begin),
                                           "set"};
  Fill("set", Minutely("tick"), IsSanitized ? 4 : 49);
  ExpectDone(agenda);
  Fill("set", Minutely(std::string(4095, 'n')), 49);
  ExpectRefused(agenda, "set", "too many deliveries");
  Fill("set", Minutely("tick"), 1000);
  ExpectRefused(agenda, "set", "too many deliveries");
}

TEST_F(BoundsTest, EventsThatDeleteThemselvesByTheHundredThousand) {
  EventRecord record;
  record.Name = "once";
  record.EventTime = Begin + Day;
  record.DeleteOnceDelivered = true;
  Fill("set", record, IsSanitized ? 20000 : 400000);
  ExpectDone({"agenda", "--from", std::to_string(Begin), "set"});
}

}  // namespace
}  // namespace kestrin
