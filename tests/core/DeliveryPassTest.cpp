// Which event is dealt with next, in which order and with which flags, what the deliverer is told,
// and what replies of alerts do: on messages that go through the queue.
#include "core/DeliveryPass.h"

#include "core/Holds.h"
#include "fakes/SetTestBase.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
  bool MayFail = false;     ///< of the last
  bool Stopped = false;
  DeliveryPass Pass{World.Core,
                    [this](const Message& message, bool mayFail) {
                      EXPECT_EQ(message.what, FourCharCode("SetE"));
                      Sent.push_back(message.Get<int32>("When").value_or(0));
                      MayFail = mayFail;
                    },
                    [this] { Stopped = true; }};
};

TEST_F(DeliveryPassTest, TheSettingSaysWhichSetsDeliver) {
  const struct {
    int32 mode;
    bool expected[4];  ///< of a set that is neither shown nor remembered, shown, remembered, both
  } rows[] = {{0, {false, true, false, true}},   {1, {false, true, true, true}},
              {2, {false, false, true, true}},   {3, {false, false, true, false}},
              {4, {false, false, false, false}}, {-1, {false, false, false, false}}};
  for (const auto& [mode, expected] : rows) {
    KestrinSettings::WhichEventsToDeliver = mode;
    for (size_t i = 0; i < 4; ++i) {
      EventSet& set = NewSet("/sets/" + std::to_string(i));
      Add(set, OnceAt(Now));
      if (i % 2 == 1) set.OpenWindow();
      if (i < 2) KestrinSettings::ForgetSet(set.GetFileName());
      Sent.clear();
      Pass.SetCounterForNextEvent(false);
      EXPECT_EQ(Delivered().size(), expected[i] ? 1u : 0u) << "mode " << mode << ", set " << i;
      EXPECT_EQ(Sent.empty(), expected[i]);
      if (set.GetWindow()) World.Ui.SetWindows[0]->CloseNow();
      OpenSets::Sets.clear();
      World.RunMessages();
    }
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
  while (World.Queue.Take()) {
  }
  Sent.clear();
  // A change and a wake-up while an event is dealt with start no pass, and keep the start-up flag.
  World.Actions.WhenEvent = [this](Event& event) {
    EXPECT_TRUE(Pass.IsDealing());
    if (event.GetName() == "first") {
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
  EXPECT_TRUE(DeliverOnly);
}

TEST_F(DeliveryPassTest, OnlyPassesAfterAStartOrAnOpeningAskWhatWasMissed) {
  EventSet& set = NewSet();
  const auto addPast = [&](const char* name) { Add(set, DailyAt(Now - Hour, name)); };
  addPast("woken");
  Run(Message(DELIVER_EVENTS));
  EXPECT_THAT(Delivered(), ElementsAre("woken"));
  addPast("opened");
  Pass.PassWithStartupFlag();
  EXPECT_THAT(Delivered(), ElementsAre("opened missed"));
  EXPECT_TRUE(Pass.IsDealing());
  addPast("while dealing");
  Pass.PassWithStartupFlag();
  EXPECT_THAT(Delivered(), IsEmpty()) << "one at a time";
  World.RunMessages();
  EXPECT_THAT(Delivered(), ElementsAre("while dealing missed"));
  addPast("changed");
  Run(Message(EVENT_SETS_CHANGED));
  EXPECT_THAT(Delivered(), ElementsAre("changed"));
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
  Add(set, OnceAt(Now + 30));
  World.RunMessages();
  EXPECT_EQ(Sent.back(), Now + 30) << "what is ahead may come earlier";
  World.Actions.Able = true;
  Run(Message(DELIVER_EVENTS));
  EXPECT_THAT(Delivered(), ElementsAre("Tea"));
  EXPECT_EQ(Sent.back(), Now + 30);
}

TEST_F(DeliveryPassTest, AReplyActsOnlyOnTheEventAndOccurrenceItIsFor) {
  const int32 ahead = Now + 5 * Hour, past = Now - Hour;
  const struct {
    const char* what;
    uint32 code;
    int32 actual, status, which = 0;
    bool acts = false;
    int32 eventOff = 0, setOff = 0, daysOff = 0;
    bool another = false;  ///< set stands before it
  } cases[] = {
      {"no more prewarnings", PREWARN_ALERT_REPLY, ahead, WaitingForPrewarning, 0, true},
      {"after the last prewarning", PREWARN_ALERT_REPLY, ahead, WaitingForEvent, 0, true},
      {"the event has come", PREWARN_ALERT_REPLY, past, WaitingForEvent},
      {"it nags already", PREWARN_ALERT_REPLY, past, WaitingToNag},
      {"no more nagging", NAG_ALERT_REPLY, past, WaitingToNag, 0, true},
      {"it nags no longer", NAG_ALERT_REPLY, ahead, WaitingForEvent},
      {"OK", PREWARN_ALERT_REPLY, ahead, WaitingForPrewarning, 1},
      {"OK", NAG_ALERT_REPLY, past, WaitingToNag, 1},
      {"event gone", NAG_ALERT_REPLY, past, WaitingToNag, 0, false, 1000},
      {"set gone", NAG_ALERT_REPLY, past, WaitingToNag, 0, false, 0, 1000},
      {"moved on", NAG_ALERT_REPLY, past, WaitingToNag, 0, false, 0, 0, 1},
      {"not the first set", NAG_ALERT_REPLY, past, WaitingToNag, 0, false, 0, 0, 0, true},
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
    World.Holding.ProcessHold(set.GetHandle());
    Message reply(each.code);
    reply.Set("which", each.which);
    reply.Set("Event", static_cast<int64>(event.GetHandle()) + each.eventOff);
    reply.Set("EventSet", static_cast<int64>(set.GetHandle()) + each.setOff);
    reply.Set("Occurrence", each.actual - each.daysOff * Day);
    Pass.MessageReceived(reply);
    const bool nag = each.code == NAG_ALERT_REPLY;
    EXPECT_EQ(event.GetStatus(), !each.acts ? each.status
                                 : nag      ? WaitingForPrewarning
                                            : WaitingForEvent);
    if (each.acts && !nag) {
      EXPECT_EQ(event.GetNextEventTime(), ahead);
    }
    EXPECT_EQ(set.OnlyDeliveriesChanged(), each.acts);
    EXPECT_EQ(World.Holding.Count(), 0) << "the hold is given back in any case";
    while (World.Queue.Take()) {
    }
    OpenSets::Sets.clear();
  }
}

TEST_F(DeliveryPassTest, AnActionOfMoreThanASecondStopsTheProgram) {
  Add(NewSet(), DailyAt(Now));
  int64 took = DealWithEventLimit;
  World.Actions.WhenEvent = [&](Event&) {
    World.Time.JumpTo(Now + Hour);  // a clock that is set says nothing
    World.Time.AdvanceMicroseconds(took);
  };
  Pass.SetCounterForNextEvent(false);
  EXPECT_FALSE(Stopped);
  while (World.Queue.Take()) {
  }
  took = DealWithEventLimit + 1;
  DeliveryPass pass(
      World.Core, [](const Message&, bool) {}, [] { std::fputs("saved first; ", stderr); });
  World.Time.JumpTo(Now + Day);
  EXPECT_DEATH(pass.SetCounterForNextEvent(false),
               "saved first; Add-ons may not block or take more than one second to deal with an "
               "event");
}

}  // namespace
}  // namespace kestrin
