// The table of states in docs/delivery.md, carried out row by row through a pass, and the texts of
// prewarnings and nags.
#include "core/DeliveryPass.h"
#include "fakes/PageTable.h"
#include "fakes/SetTestBase.h"

namespace kestrin {
namespace {

using Row =
    std::vector<std::string>;  ///< before, the event, due, found, pass, delivered, after, next

/// "12:30", "+1 9:00" or "none", which is 0.
int32 TimeOf(const std::string& text) {
  int day = 0, hour = 0, minute = 0;
  if (std::sscanf(text.c_str(), "+%d %d:%d", &day, &hour, &minute) != 3) {
    day = 0;
    if (std::sscanf(text.c_str(), "%d:%d", &hour, &minute) != 2) return 0;
  }
  return Sunday + day * Day + hour * Hour + minute * Minute;
}

std::string NameOf(int32 status) {
  return status >= 0 && status <= DoneWithEvent
             ? std::string(StatusMessages[static_cast<size_t>(status)])
             : "number " + std::to_string(status);
}

EventRecord RecordOf(const Row& row) {
  const auto has = [&row](const char* word) { return row[1].find(word) != std::string::npos; };
  EventRecord record;
  record.Name = "Tea";
  record.PeriodType = has("once") ? Once : Daily;
  record.ApplyTime = !has("all day");
  record.TimeToApply = record.ApplyTime ? 12 * Hour : 0;
  record.ActualEventTime = record.EventTime = Sunday + record.TimeToApply;
  record.NextEventTime = TimeOf(row[2]);
  for (record.Status = 0; NameOf(record.Status) != row[0] && record.Status < 10;) ++record.Status;
  record.ApplyPrewarn = has("prewarn");
  record.PrewarnTime = 3;
  record.PrewarnType = Hours;
  record.ApplyPrewarnRepeat = has("repeat");
  record.PrewarnRepeatTime = 1;
  record.PrewarnRepeatType = Hours;
  record.ApplyNag = has("nag");
  record.NagRepeatTime = 30;
  record.NagRepeatType = Minutes;
  record.DeliverIfMissed = !has("drop");
  record.DeleteOnceDelivered = has("delete");
  return record;
}

class EventDeliveryTest : public SetTestBase {
 protected:
  DeliveryPass Pass{World.Core, [](const Message&, bool) {}, [] {}};
};

TEST_F(EventDeliveryTest, TheTableOfStatesHolds) {
  const std::vector<Row> rows = TableOfPage("delivery.md", "| before |");
  ASSERT_GT(rows.size(), 30u);
  for (const Row& row : rows) {
    ASSERT_EQ(row.size(), 8u);
    SCOPED_TRACE(testing::PrintToString(row));
    EventSet& set = NewSet();
    Event* const event = &Add(set, RecordOf(row));
    Settle(set);
    World.Actions.Deliveries.clear();
    bool locked = false;
    World.Actions.WhenEvent = [&](Event&) { locked = set.IsLocked(); };
    World.Time.JumpTo(TimeOf(row[3]));

    Pass.SetCounterForNextEvent(row[4] == "start");

    std::string delivered = "nothing";
    for (const auto& delivery : World.Actions.Deliveries)
      delivered = delivery.Kind + (delivery.Missed ? " missed" : "");
    EXPECT_LE(World.Actions.Deliveries.size(), 1u);
    EXPECT_EQ(delivered, row[5]);
    EXPECT_FALSE(locked) << "the set stays locked while the handler acts";
    EXPECT_FALSE(set.IsLocked());
    EXPECT_TRUE(set.OnlyDeliveriesChanged());
    const bool there = set.HasEvent(event);
    EXPECT_EQ(there ? NameOf(event->GetStatus()) : "deleted", row[6]);
    EXPECT_EQ(there ? event->GetNextEventTime() : 0, TimeOf(row[7]));
    Event* next = nullptr;
    EXPECT_EQ(set.GetNextEventTime(&next), TimeOf(row[7])) << "the set knows it too";
    World.RunMessages();
    EXPECT_EQ(World.CountMessages(EVENT_DEALT_WITH), 1);
    OpenSets::Sets.clear();
  }
}

TEST(NagOrPrewarnMessageTest, SaysWhatAndWhen) {
  const struct {
    char kind;
    int32 when;
    bool timed;
    const char* text;
    const char* message;
  } rows[] = {
      {0, Sunday + 12 * Hour, false, "Hot.", "The event \"Tea\" will occur today.\n\nHot."},
      {1, Sunday - 6 * Day + 9 * Hour + 5 * Minute, true, "Late.",
       "The event \"Tea\" occurred at 9:05 AM on Monday, November 9,  2026.\n\nLate."},
      {0, Sunday + 13 * Hour, true, "%s", "The event \"Tea\" will occur at 1:00 PM today.\n\n%s"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(GetNagOrPrewarnMessage(row.kind, "Tea", row.when, row.timed, row.text,
                                     Sunday + 8 * Hour, Zone()),
              row.message);
}

}  // namespace
}  // namespace kestrin
