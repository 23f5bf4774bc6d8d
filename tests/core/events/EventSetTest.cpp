// The list of events, what comes next in it, and what is marked and told when it changes.
#include "core/events/EventSet.h"

#include <random>

#include "harness/SetTestBase.h"

namespace kestrin {
namespace {

class EventSetTest : public SetTestBase {
 protected:
  /// The rule in words of its own: the first of the earliest.
  static const Event* SlowNext(const EventSet& set) {
    const Event* next = nullptr;
    for (const auto& event : set.Events())
      if (event->GetActive() && event->GetNextEventTime() != 0 &&
          (!next || event->GetNextEventTime() < next->GetNextEventTime()))
        next = event.get();
    return next;
  }
  /// Takes one after another out of the index, so that its whole order shows, and puts them back.
  static void Drain(EventSet& set) {
    std::vector<Event*> taken;
    while (Event* const next = set.GetNextEvent()) {
      ASSERT_EQ(next, SlowNext(set));
      taken.push_back(next);
      next->SetActive(false);
    }
    for (Event* const event : taken) event->SetActive(true);
  }
};

TEST_F(EventSetTest, TheIndexAgreesWithASearchWhateverChanges) {
  std::mt19937 random(4711);
  const auto upTo = [&random](size_t limit) { return static_cast<size_t>(random() % limit); };
  EventSet& set = NewSet();
  std::vector<EventList::Removed> removed;
  const auto someTime = [&] { return Sunday + Day + static_cast<int32>(upTo(9)); };
  for (int step = 0; step < 20000; ++step) {
    const size_t count = set.Events().size();
    Event* const event = count > 0 ? set.Events()[upTo(count)].get() : nullptr;
    const size_t choice = upTo(event ? 8 : 1);
    if (choice == 0 && count < 40) {
      Add(set, OnceAt(someTime()));
    } else if (choice == 1) {
      removed.push_back(std::move(set.RemoveEvents({event}).front()));
      removed.back().event->SetEventTime(someTime(), true);  // tells nobody while it is out
    } else if (choice == 2 && !removed.empty()) {
      const size_t all = upTo(2) == 0 ? removed.size() : 1;
      std::vector<EventList::Removed> back;
      for (; back.size() < all; removed.pop_back()) back.push_back(std::move(removed.back()));
      set.RestoreEvents(std::move(back));
    } else if (choice == 3) {
      event->SetActive(upTo(2) == 0);
    } else if (choice > 3) {
      // Past at times: nothing is pending.
      event->SetEventTime(choice == 4 ? Sunday : someTime(), true);
    }
    ASSERT_EQ(set.GetNextEvent(), SlowNext(set)) << "step " << step;
    if (step % 20 == 0) Drain(set);
  }
}

TEST_F(EventSetTest, WindowAndApplicationAreTold) {
  EventSet& set = NewSet();
  Event& event = Add(set, DailyAt(Sunday + Day));
  Settle(set);
  set.OpenWindow();
  FakeSetWindow& window = *World.Ui.SetWindows[0];
  const auto messages = [this] {
    World.RunMessages();
    const int changes = World.CountMessages(EVENT_SETS_CHANGED);
    World.Messages.clear();
    return changes;
  };
  EXPECT_EQ(messages(), 0);
  event.SetName("Toast");
  EXPECT_THAT(window.Modified, ElementsAre(event.GetHandle()));
  EXPECT_EQ(messages(), 1);

  const uint64 handle = event.GetHandle();
  event.OpenWindow();
  std::vector<EventList::Removed> removed = set.RemoveEvents({&event});
  EXPECT_THAT(window.Removed, ElementsAre(handle));
  EXPECT_THAT(World.Ui.EditorWindows, IsEmpty()) << "its editor closes first";
  EXPECT_EQ(messages(), 1);
  Event* const out = removed[0].event.get();
  EXPECT_EQ(set.RemoveEvent(out), nullptr) << "it is not in the list";
  out->SetName("Butter");
  EXPECT_EQ(messages(), 0);

  set.AddEvent(nullptr);
  EXPECT_EQ(World.Ui.EditorWindows.size(), 1u) << "a new event opens its editor";
  for (const int32 ahead : {1, 0}) {
    World.Time.JumpTo(Sunday + Day - ahead);
    set.RestoreEvents(ahead ? std::move(removed) : set.RemoveEvents({out}));
    World.RunMessages();
    EXPECT_EQ(World.CountMessages(SETS_OPENED), 1 - ahead) << "it is due this very second";
  }
  EXPECT_THAT(window.Added, ElementsAre(testing::_, handle, handle));
  EXPECT_EQ(set.Events()[0].get(), out) << "at its old place";
  EXPECT_EQ(World.Ui.EditorWindows.size(), 1u);
  const int changed = window.Changed;
  set.Remember(false);
  EXPECT_EQ(window.Changed, changed + 1);
  set.BackAsSaved();
  EXPECT_EQ(window.Changed, changed + 2);
}

TEST_F(EventSetTest, WhoGetsANamesakeBeforeItIsRenamedInTheJournalToo) {
  EventSet& set = NewSet();
  Event& milk = Add(set, DailyAt(Sunday + Day, "Milk"));
  Add(set, DailyAt(Sunday + Day, "Tea"));
  Settle(set);
  milk.SetName("Tea");
  EXPECT_THAT(
      set.FileNames().Saved(set),
      ElementsAre(testing::Pair(EventName{"Milk", "Message", 0}, EventName{"Tea", "Message", 0}),
                  testing::Pair(EventName{"Tea", "Message", 0}, EventName{"Tea", "Message", 1})));
  Settle(set);
  set.RemoveEvent(&milk);
  EXPECT_EQ(set.FileNames().Of(set, *set.Events()[0]).Place, 1) << "as its file still has it";
}

TEST_F(EventSetTest, EditorsThatStoodOpenOpenAgainButNeverTooMany) {
  EventSet& set = NewSet();
  for (int i = 0; i < 100; ++i) Add(set, DailyAt(Sunday + Day)).SetShouldWindowOpen(i > 0);
  set.OpenWindow();
  EXPECT_EQ(World.Ui.EditorWindows.size(), 20u);
  EXPECT_FALSE(set.Events()[0]->GetWindow());
}

TEST_F(EventSetTest, AClosedWindowEndsTheSetUnlessItDeliversUnseen) {
  const struct {
    int32 mode;
    bool remembered, kept, told;
  } cases[] = {{0, true, false, true},
               {1, false, false, true},
               {1, true, true, false},
               {3, true, true, true},
               {4, true, false, false}};
  for (const auto& each : cases) {
    SCOPED_TRACE(testing::Message() << "mode " << each.mode << ", remembered " << each.remembered);
    EventSet& set = NewSet();
    World.Settings.WhichEventsToDeliver = each.mode;
    if (!each.remembered) World.Settings.ForgetSet(set.GetFileName());
    for (int i = 0; i < 3; ++i) Add(set, DailyAt(Sunday + Day)).OpenWindow();
    set.OpenWindow();
    FakeSetWindow& window = *World.Ui.SetWindows[0];
    World.RunMessages();
    World.Messages.clear();
    window.CloseNow();
    EXPECT_THAT(World.Ui.EditorWindows, IsEmpty());
    ASSERT_EQ(World.Open.Sets.size(), each.kept ? 1u : 0u);
    EXPECT_TRUE(!each.kept || set.Events()[0]->GetShouldWindowOpen()) << "with the set's window";
    World.RunMessages();
    EXPECT_EQ(World.CountMessages(EVENT_SETS_CHANGED), each.told ? 1 : 0);
    World.Open.Sets.clear();
  }
}

}  // namespace
}  // namespace kestrin
