// Which event is dealt with next, in which order and with which flags, what becomes of it, what the
// deliverer is told, and what replies of alerts do: on messages that go through the queue.
#include "core/delivery/DeliveryPass.h"

#include <chrono>
#include <future>

#include "core/delivery/ActionWatch.h"
#include "core/delivery/EventDelivery.h"
#include "core/events/EventIdentity.h"
#include "core/loop/Holds.h"
#include "harness/PageTable.h"
#include "harness/SetTestBase.h"

namespace kestrin {
namespace {

constexpr int32 Now = Sunday + 8 * Hour;
constexpr int32 NothingPending = 0;

class DeliveryPassTest : public SetTestBase {
 protected:
  DeliveryPassTest() {
    World.OnMessage = [this](const Message& message) { Pass.MessageReceived(message); };
  }

  /// Posts the message and runs the queue, as the application does.
  void Run(Message message) {
    World.Queue.Post(std::move(message));
    World.RunMessages();
  }
  std::vector<std::string> Delivered() { return World.Actions.TakeNames(); }

  std::vector<int64> Sent;  ///< the "When" of each SetE; 0 without one
  int32 Since = 0;          ///< of the last
  bool MayFail = false;     ///< of the last
  DeliveryPass Pass{World.Core, [this](const Message& message, bool mayFail) {
                      EXPECT_EQ(message.what, FourCharCode("SetE"));
                      Sent.push_back(message.Get<int32>("When").value_or(0));
                      Since = message.Get<int32>("Since").value_or(0);
                      MayFail = mayFail;
                    }};
};

TEST_F(DeliveryPassTest, TheSettingSaysWhichSetsDeliver) {
  const struct {
    int32 mode;
    bool expected[4];  ///< of a set that is neither shown nor remembered, shown, remembered, both
  } rows[] = {{0, {false, true, false, true}},
              {1, {false, true, true, true}},
              {2, {false, false, true, true}},
              {3, {false, false, true, false}},
              {4, {false, false, false, false}}};
  for (const auto& [mode, expected] : rows)
    for (size_t i = 0; i < 4; ++i) {
      World.Settings.WhichEventsToDeliver = mode;
      EventSet& set = NewSet("/sets/" + std::to_string(i));
      Add(set, OnceAt(Now));
      if (i % 2 == 1) set.OpenWindow();
      if (i < 2) World.Settings.ForgetSet(set.GetFileName());
      Pass.SetCounterForNextEvent(false);
      EXPECT_EQ(Delivered().size(), expected[i] ? 1u : 0u) << "mode " << mode << ", set " << i;
      if (set.GetWindow()) World.Ui.SetWindows[0]->CloseNow();
      World.Open.Sets.clear();
      World.RunMessages();
    }
}

TEST_F(DeliveryPassTest, TheDelivererHearsTheEarliestTimeOrThatThereIsNone) {
  Run(Message(EVENT_SETS_CHANGED));
  EXPECT_THAT(Sent, ElementsAre(NothingPending));
  EXPECT_TRUE(MayFail) << "that it cannot be reached does not matter";
  Event& event = Add(NewSet("/sets/a"), OnceAt(Now + 50));
  Add(NewSet("/sets/b"), OnceAt(Now + 40)).SetActive(false);
  Add(NewSet("/sets/c"), OnceAt(Now + 60));
  World.RunMessages();
  EXPECT_EQ(Sent.back(), Now + 50);
  EXPECT_FALSE(MayFail);
  event.SetActive(false);
  World.RunMessages();
  EXPECT_EQ(Sent.back(), Now + 60);
  World.Time.JumpTo(Now + 61);
  Pass.SendNextTime();
  EXPECT_EQ(Sent.back(), Now + 60) << "past, but not dealt with";
  EXPECT_THAT(Delivered(), IsEmpty());
}

TEST_F(DeliveryPassTest, WhatIsDueIsWorkedOffInOrderAndTheDelivererHearsOnce) {
  EventSet& a = NewSet("/sets/a");
  EventSet& b = NewSet("/sets/b");
  Add(a, OnceAt(Now, "third"));
  Add(b, OnceAt(Now - 120, "first"));
  Add(b, OnceAt(Now, "fourth"));
  Add(b, OnceAt(Now, "fifth"));
  EventRecord dropped = OnceAt(Now - 100, "dropped");
  dropped.DeliverIfMissed = false;
  Add(b, dropped);
  Add(a, OnceAt(Now - 90, "second"));
  Add(a, OnceAt(Now + 1, "ahead"));
  World.Messages.clear();
  while (World.Queue.Take()) continue;
  Sent.clear();
  // A change and a wake-up while an event is dealt with start no pass, and keep the start-up flag.
  World.Actions.WhenEvent = [this](Event& event) {
    EXPECT_TRUE(Pass.IsDealing());
    if (event.GetName() == "first") {
      Pass.PassWithStartupFlag();
      World.Queue.Post(EVENT_SETS_CHANGED);
      World.Queue.Post(DELIVER_EVENTS);
    }
  };
  Pass.SetCounterForNextEvent(true);
  World.RunMessages();
  EXPECT_THAT(Delivered(),
              ElementsAre("first missed", "second missed", "third", "fourth", "fifth"));
  EXPECT_THAT(Sent, ElementsAre(Now + 1));
  EXPECT_EQ(World.CountMessages(EVENT_DEALT_WITH), 6);
  EXPECT_EQ(World.CountMessages(PASSES_AT_REST), 1);
  EXPECT_FALSE(Pass.IsDealing());
  World.Time.JumpTo(Now + 100);
  Run(Message(DELIVER_EVENTS));
  EXPECT_THAT(Delivered(), ElementsAre("ahead")) << "no start any more";
}

TEST_F(DeliveryPassTest, OnlyAWakeUpThatIsLateItselfMakesEventsMissed) {
  EventSet& set = NewSet();
  for (const int32 late : {0, 60, 61}) {
    const std::string missed = late > 60 ? " missed" : "";
    Add(set, OnceAt(Now - 3600, "first"));
    Add(set, OnceAt(Now - 61, "second"));
    Add(set, OnceAt(Now - 60, "just now"));
    while (World.Queue.Take()) continue;
    Message wakeUp(DELIVER_EVENTS);
    wakeUp.Set("Late", late);
    Run(wakeUp);
    EXPECT_THAT(Delivered(), ElementsAre("first" + missed, "second" + missed, "just now")) << late;
  }
  Add(set, DailyAt(Now - Day));  // a set is opened behind a change that is told first
  Run(Message(SETS_OPENED));
  EXPECT_THAT(Delivered(), ElementsAre("Tea missed"));
  EXPECT_EQ(World.Record.All().back().Why, "further occurrences had passed by then")
      << "the one of this very second";
}

TEST_F(DeliveryPassTest, WithoutAScreenWhatNeedsOneIsAskedForAMinuteLater) {
  World.Ui.Screen = false;
  World.Actions.Able = false;
  EventSet& set = NewSet();
  Event& event = Add(set, DailyAt(Now - 10));
  testing::internal::CaptureStderr();
  World.RunMessages();
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("no display"));
  EXPECT_EQ(Sent.back(), Now + 60);
  EXPECT_EQ(event.GetNextEventTime(), Now - 10) << "it stays due";
  Pass.SendNextTime();
  EXPECT_EQ(Sent.back(), Now + 60) << "or leaving would wake the application at once, for ever";
  Add(set, OnceAt(Now, "Milk"));
  Add(set, OnceAt(Now + 30));
  World.RunMessages();
  EXPECT_EQ(Sent.back(), Now + 30) << "what is ahead may come earlier";
  EXPECT_EQ(Since, Now - 10) << "how long it waits is known to whoever wakes the application";
  World.Actions.Able = true;
  Run(Message(DELIVER_EVENTS));
  EXPECT_THAT(Delivered(), ElementsAre("Tea", "Milk"));
  EXPECT_EQ(Sent.back(), Now + 30);
}

TEST_F(DeliveryPassTest, AReplyActsOnlyOnTheEventAndOccurrenceItIsFor) {
  const int32 ahead = Now + 5 * Hour, past = Now - Hour;
  const struct {
    const char* what;
    uint32 code;
    int32 actual, status;
    bool acts;
    const char* field = "";  ///< of the reply, which is off
    int64 off = 0;
    bool another = false;  ///< set stands before it
  } cases[] = {
      {"no more prewarnings", PREWARN_ALERT_REPLY, ahead, WaitingForPrewarning, true},
      {"after the last prewarning", PREWARN_ALERT_REPLY, ahead, WaitingForEvent, true},
      {"the event has come", PREWARN_ALERT_REPLY, past, WaitingForEvent, false},
      {"it comes this very second", PREWARN_ALERT_REPLY, Now, WaitingForEvent, false},
      {"it nags already", PREWARN_ALERT_REPLY, past, WaitingToNag, false},
      {"no more nagging", NAG_ALERT_REPLY, past, WaitingToNag, true},
      {"it nags no longer", NAG_ALERT_REPLY, ahead, WaitingForEvent, false},
      {"OK", NAG_ALERT_REPLY, past, WaitingToNag, false, "which", 1},
      {"event gone", NAG_ALERT_REPLY, past, WaitingToNag, false, "Event", 1000},
      {"set gone", NAG_ALERT_REPLY, past, WaitingToNag, false, "EventSet", 1000},
      {"moved on", NAG_ALERT_REPLY, past, WaitingToNag, false, "Occurrence", -Day},
      {"not the first set", NAG_ALERT_REPLY, past, WaitingToNag, false, "", 0, true},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.what);
    if (each.another) NewSet("/sets/first");
    EventSet& set = NewSet();
    EventRecord record = DailyAt(each.actual);
    record.Status = each.status;
    record.NextEventTime = Now + Hour;
    record.ApplyPrewarn = record.ApplyPrewarnRepeat = record.ApplyNag = true;
    record.PrewarnRepeatTime = 1;
    Event& event = Add(set, record);
    Settle(set);
    World.Holding.ProcessHold();
    Message reply(each.code);
    const auto off = [&](const char* name) {
      return name == std::string(each.field) ? each.off : 0;
    };
    reply.Set("which", static_cast<int32>(off("which")));
    reply.Set("Event", static_cast<int64>(event.GetHandle()) + off("Event"));
    reply.Set("EventSet", static_cast<int64>(set.GetHandle()) + off("EventSet"));
    reply.Set("Occurrence", static_cast<int32>(each.actual + off("Occurrence")));
    Pass.MessageReceived(reply);
    const bool nag = each.code == NAG_ALERT_REPLY;
    EXPECT_EQ(event.GetStatus(), !each.acts ? each.status
                                 : nag      ? WaitingForPrewarning
                                            : WaitingForEvent);
    EXPECT_EQ(event.GetNextEventTime() == ahead, each.acts && !nag);
    EXPECT_EQ(set.OnlyDeliveriesChanged(), each.acts);
    if (each.acts) event.UpdateEventTime();
    EXPECT_EQ(event.GetStatus(), each.acts ? WaitingForPrewarning : each.status) << "only once";
    EXPECT_EQ(World.Holding.Count(), 0) << "the hold is given back in any case";
    while (World.Queue.Take()) continue;
    World.Open.Sets.clear();
  }
}

TEST_F(DeliveryPassTest, AnEventThatIsDeletedWhileItActsHasBeenDelivered) {
  EventSet& set = NewSet();
  EventRecord record = DailyAt(Now);
  record.DeleteOnceDelivered = true;
  Add(set, record);
  std::unique_ptr<Event> deleted;
  World.Actions.WhenEvent = [&](Event& event) { deleted = set.RemoveEvent(&event); };
  World.RunMessages();
  ASSERT_TRUE(deleted);
  EXPECT_EQ(deleted->GetNextEventTime(), Now + Day) << "put back, it does not come again";
}

TEST_F(DeliveryPassTest, AnEventThatIsMovedWhileItActsComesWhenThePersonSays) {
  EventSet& set = NewSet();
  EventRecord record = OnceAt(Now);
  record.ApplyNag = true;
  Event& event = Add(set, record);
  record.Name = "Cake";
  Add(set, record);
  World.Actions.WhenEvent = [&event](Event& acting) {
    if (&acting == &event) acting.SetEventTime(Now + Day, true);
  };
  World.RunMessages();
  EXPECT_EQ(event.GetNextEventTime(), Now + Day);
  EXPECT_EQ(event.GetStatus(), WaitingForEvent);
  EXPECT_THAT(Delivered(), ElementsAre("Tea", "Cake")) << "nobody waits for it";
}

TEST_F(DeliveryPassTest, ATrialActsWhoeverElseHasDelivered) {
  EventSet& set = NewSet();
  Event& event = Add(set, DailyAt(Now + Hour));
  Settle(set);
  World.Actions.Plan = {true, "brew", ""};
  const FakeProcesses other(77);
  Journal theirs(Door, other, World.Time, "/state", {});
  theirs.Read();
  JournalRecord rival;
  rival.Set = set.GetFileName();
  rival.Event = {"Tea", "Message", 0};
  rival.Kind = RecordKind::Event;
  rival.From = StateOf(event.Record());
  ASSERT_TRUE(theirs.Claim(rival));
  World.Actions.WhenEvent = [](Event& acting) { EXPECT_TRUE(acting.IsActing()); };
  for (const auto kind : {RecordKind::Prewarning, RecordKind::Event, RecordKind::Nag})
    ActAgain(event, kind);
  std::string kinds;
  for (const auto& each : World.Actions.Deliveries) kinds += each.Kind + " ";
  EXPECT_EQ(kinds, "prewarning event nag ");
  World.Actions.Deliveries.clear();
  World.Time.JumpTo(Now + Hour);
  Run(Message(DELIVER_EVENTS));
  EXPECT_THAT(Delivered(), IsEmpty()) << "the other one has carried it out";
  EXPECT_EQ(event.GetNextEventTime(), Now + Hour + Day);
}

TEST_F(DeliveryPassTest, AnActionThatBlocksIsSeenAndOneAfterAnotherIsNot) {
  std::promise<std::string> overrun;
  ActionWatch watch([&](const std::string& record) { overrun.set_value(record); },
                    std::chrono::milliseconds(20));
  World.Core.watch = &watch;
  EventSet& set = NewSet();
  for (int i = 0; i < 100; ++i) Add(set, OnceAt(Now));
  Add(set, OnceAt(Now, "blocks"));
  std::string seen;
  World.Actions.WhenEvent = [&](Event& event) {
    if (event.GetName() == "blocks") seen = overrun.get_future().get();
  };
  World.RunMessages();
  World.Core.watch = nullptr;
  const auto record = World.Record.Find(seen);
  ASSERT_TRUE(record);
  EXPECT_EQ(record->Event.Name, "blocks");
}

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

TEST_F(DeliveryPassTest, TheTableOfStatesOnThePageHolds) {
  const std::vector<Row> rows = TableOfPage("delivery.md", "| before |");
  ASSERT_GT(rows.size(), 30u);
  World.OnMessage = nullptr;  // one pass at a time
  for (const Row& row : rows) {
    ASSERT_EQ(row.size(), 8u);
    SCOPED_TRACE(testing::PrintToString(row));
    EventSet& set = NewSet();
    Event* const event = &Add(set, RecordOf(row));
    Settle(set);
    World.Actions.Deliveries.clear();
    bool locked = false;
    World.Actions.WhenEvent = [&](Event&) {
      locked = set.IsLocked();
      EXPECT_TRUE(set.SaveData());
    };
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
    EXPECT_TRUE(World.Queue.Holds(EVENT_DEALT_WITH));
    while (World.Queue.Take()) continue;
    World.Open.Sets.clear();
  }
}

TEST_F(DeliveryPassTest, AnAllDayEventIsMissedOnceItsDayIsOverWhereThePersonIs) {
  for (const char* name : {"Europe/Berlin", "Asia/Tokyo", "America/New_York"})
    for (const auto& [sinceMidnight, delivered] : {std::pair(9 * Hour, "All day"),
                                                   {20 * Hour + 30 * Minute, "All day"},
                                                   {Day - 1, "All day"},
                                                   {Day, "All day missed"}}) {
      const Zone& zone = World.Core.zone = *Zone::Load(name);
      EventRecord record = OnceAt(static_cast<int32>(zone.ToMoment({Sunday})), "All day");
      record.ApplyTime = false;
      Add(NewSet(), record);
      World.Time.JumpTo(zone.ToMoment({Sunday + sinceMidnight}));
      while (World.Queue.Take()) continue;
      Pass.SetCounterForNextEvent(true);
      EXPECT_THAT(Delivered(), ElementsAre(delivered)) << name << ", " << sinceMidnight;
      World.Open.Sets.clear();
    }
}

TEST(NagOrPrewarnMessageTest, SaysWhatAndWhen) {
  const struct {
    ReminderKind kind;
    int32 when;
    bool timed;
    const char* text;
    const char* message;
    const char* zone = "UTC";
    bool use24Hours = false;
  } rows[] = {
      // It is 5 in the afternoon there, and the event is tomorrow.
      {ReminderKind::Prewarning, Sunday + 15 * Hour + 30 * Minute, true, "",
       "The event \"Tea\" will occur at 00:30 on Monday, November 16,  2026.\n\n", "Asia/Tokyo",
       true},
      {ReminderKind::Prewarning, Sunday + 12 * Hour, false, "Hot.",
       "The event \"Tea\" will occur today.\n\nHot."},
      {ReminderKind::Nag, Sunday - 6 * Day + 12 * Hour + 5 * Minute, true, "Late.",
       "The event \"Tea\" occurred at 12:05 PM on Monday, November 9,  2026.\n\nLate."},
      {ReminderKind::Prewarning, Sunday + 13 * Hour, true, "%s",
       "The event \"Tea\" will occur at 1:00 PM today.\n\n%s"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(GetNagOrPrewarnMessage(row.kind, "Tea", row.when, row.timed, row.text,
                                     Sunday + 8 * Hour, *Zone::Load(row.zone), row.use24Hours),
              row.message);
}

}  // namespace
}  // namespace kestrin
