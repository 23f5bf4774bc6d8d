// What the setters of an event do beyond storing, and how its handler is chosen.
#include "core/events/Event.h"

#include "core/events/EventProgress.h"
#include "harness/SetTestBase.h"

namespace kestrin {
namespace {

class EventTest : public SetTestBase {
 protected:
  EventSet& Set = NewSet();
};

TEST_F(EventTest, ANewEventComesTomorrowAtMidnight) {
  World.Core.zone = Zone::Load("Pacific/Auckland").value();  // Sunday, 21:00
  const EventRecord& record = Set.AddEvent(nullptr)->Record();
  EXPECT_THAT((std::array{record.NextEventTime, record.ActualEventTime, record.EventTime,
                          record.MultiStartTime}),
              testing::Each(Sunday + 11 * Hour));
  EXPECT_THAT((std::array{record.DayOfMonth, record.DayOfWeek, record.Month, record.WeekOfMonth}),
              ElementsAre(16, 1, 10, 3));
}

TEST_F(EventTest, SettersRecomputeMarkAndTell) {
  enum Effect { Nothing, Marks, Tells, Recomputes };
  const std::pair<Effect, void (*)(Event&)> cases[] = {
      {Tells, [](Event& e) { e.SetName("x"); }},
      {Recomputes, [](Event& e) { e.SetPeriodType(Weekdays); }},
      {Recomputes, [](Event& e) { e.SetStopTime(3); }},
      {Recomputes, [](Event& e) { e.SetTimeToApply(3); }},
      {Recomputes, [](Event& e) { e.SetSubIntType(Minutes); }},
      {Marks, [](Event& e) { e.SetPrewarnMessage("x"); }},
      {Marks, [](Event& e) { e.SetDeliverIfMissed(false); }},
      {Marks, [](Event& e) { e.SetNagRepeatType(Weeks); }},
      {Marks, [](Event& e) { e.SetApplyNag(false); }},
      {Nothing, [](Event& e) { e.SetSkipPrewarn(true); }},
      {Nothing, [](Event& e) { e.SetSelectedHandler(99); }},
      {Nothing, [](Event& e) { e.SetIcon(-2, nullptr); }},
  };
  for (const auto& [effect, set] : cases) {
    SCOPED_TRACE(effect);
    EventRecord record = DailyAt(Sunday + 12 * Hour);
    record.NextEventTime = Sunday + 11 * Hour;  // no computation yields this
    Event& event = Add(Set, record);
    Settle(Set);
    set(event);
    EXPECT_EQ(event.GetNextEventTime() != Sunday + 11 * Hour, effect == Recomputes);
    EXPECT_EQ(Set.HasBeenModified(), effect != Nothing);
    World.RunMessages();
    EXPECT_EQ(World.CountMessages(EVENT_SETS_CHANGED), effect >= Tells ? 1 : 0);
    Set.RemoveEvent(&event);
  }
}

TEST_F(EventTest, SwitchingRecomputesOnlyWhatHasPassed) {
  const int32 passed = Sunday + 7 * Hour, ahead = Sunday + 9 * Hour;
  const struct {
    bool was, becomes;
    int32 next, after;
  } rows[] = {
      {false, true, passed, passed + Day},
      {false, true, Sunday + 8 * Hour, Sunday + Day + 8 * Hour},  // this very second
      {false, true, ahead, ahead},
      {true, true, passed, passed},  // due, and about to be delivered
      {true, false, passed, passed},
  };
  for (const auto& row : rows) {
    EventRecord record = DailyAt(row.next);
    record.Active = row.was;
    Event& event = Add(Set, record);
    event.SetActive(row.becomes);
    EXPECT_EQ(event.GetNextEventTime(), row.after) << row.was << row.becomes;
  }
  EventRecord record = DailyAt(passed);
  record.Status = WaitingToNag;
  record.ApplyNag = true;
  Event& nagging = Add(Set, record);
  nagging.SetApplyNag(true);
  EXPECT_EQ(nagging.GetStatus(), WaitingToNag);
  record.NagRepeatTime = 1;
  record.NagRepeatType = Hours;
  Event& putOff = Add(Set, record);
  PassRemindersOver(putOff, passed);
  EXPECT_EQ(putOff.GetNextEventTime(), passed + Hour) << "the one of that very second too";
  nagging.SetApplyNag(false);
  EXPECT_EQ(nagging.GetNextEventTime(), passed + Day);
}

TEST_F(EventTest, APeriodTypeBringsATimingTypeThatItAdmits) {
  const struct {
    PeriodicityType to;
    int32 timing, remembered, newTiming, newRemembered;
  } rows[] = {
      {Once, ByDayOfWeek, ByDate, ByDate, ByDate},
      {Monthly, ByDate, ByDate, ByDayOfWeek, ByDate},
      {Monthly, ByDate, ByDayOfMonth, ByDayOfMonth, ByDayOfMonth},
      {MultiWeekly, ByDayOfMonth, ByDate, ByDayOfWeek, ByDayOfMonth},
      {Daily, ByDayOfMonth, ByDate, ByDayOfMonth, ByDate},
      {Annually, 9, -1, ByDayOfWeek, 9},
  };
  for (const auto& row : rows) {
    EventRecord record = DailyAt(Sunday);
    record.TimingType = row.timing;
    record.RememberType = row.remembered;
    Event& event = Add(Set, record);
    event.SetPeriodType(row.to);
    EXPECT_EQ(event.Record().TimingType, row.newTiming) << "to " << row.to;
    EXPECT_EQ(event.Record().RememberType, row.newRemembered) << "to " << row.to;
  }
  Event& event = Add(Set, EventRecord());
  event.SetPeriodType(Weekdays);
  EXPECT_FALSE(event.GetApplyTime());
  event.SetPeriodType(SubDaily);
  EXPECT_TRUE(event.GetApplyTime());
}

TEST_F(EventTest, DateAndTimeOfDayMeetOnTheWallClock) {
  World.Core.zone = Zone::Load("America/New_York").value();
  const int32 eightMarch = 1772946000;  // midnight; at 2:00 the clocks go forward
  Event& event = Add(Set, OnceAt(Sunday));
  event.SetEventTime(eightMarch + 8 * Hour, true);
  EXPECT_EQ(event.Record().TimeToApply, 9 * Hour);
  event.SetEventTime(eightMarch + 20 * Hour, false);
  EXPECT_EQ(event.Record().EventTime, eightMarch + 8 * Hour) << "its day, at 9:00 of the wall";
  event.SetApplyTime(false);
  EXPECT_EQ(event.Record().EventTime, eightMarch);
  EXPECT_EQ(event.Record().TimeToApply, 9 * Hour);
  event.SetTimeToApply(10 * Hour + Day);
  event.SetStopTime(-1);
  EXPECT_EQ(event.Record().StopTime, Day - 1);
  EXPECT_EQ(event.Record().EventTime, eightMarch) << "not in use";
  event.SetApplyTime(true);
  EXPECT_EQ(event.Record().EventTime, eightMarch + 9 * Hour);
}

TEST_F(EventTest, AHandlerKeepsItsDataWhileAnotherIsSelected) {
  Event& event = *Set.AddEvent(nullptr);
  const EventAddOnData* const first = event.GetAddOnData();
  event.OpenWindow();
  auto& calls = World.Ui.EditorWindows.at(0)->Calls;
  event.SetName("Toast");
  event.SetPeriodType(Weekly);
  EXPECT_THAT(calls, testing::Contains("RedrawTimes").Times(2));
  calls.clear();
  EXPECT_TRUE(event.SetSelectedHandler(1));
  EXPECT_THAT(calls, ElementsAre("RemoveEditView", "AddEditView"));
  const EventAddOnData* const second = event.GetAddOnData();
  EXPECT_NE(second, first);
  EXPECT_EQ(event.GetAddOnData(MessageHandler), first);
  EXPECT_TRUE(event.SetSelectedHandler(MessageHandler));
  EXPECT_EQ(event.GetAddOnData(), first);
  EXPECT_EQ(event.GetAddOnData(1), second);
  calls.clear();
  for (const int32 row : {UnknownHandler, NullHandler, ThrowingHandler, -1, 5}) {
    EXPECT_FALSE(event.SetSelectedHandler(row)) << row;
    EXPECT_EQ(event.GetAddOnData(), first) << row;
    EXPECT_EQ(event.GetHandlerName(), "Message") << row;
  }
  EXPECT_THAT(calls, IsEmpty()) << "the edit view stays";
  event.AdoptAddOnData(UnknownHandler, std::make_unique<FakeUnknownData>(&event));
  event.SetSelectedHandler(1);
  EXPECT_TRUE(event.SetSelectedHandler(UnknownHandler)) << "it holds such data";
}

}  // namespace
}  // namespace kestrin
