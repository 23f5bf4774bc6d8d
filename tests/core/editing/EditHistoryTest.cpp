// What the person did is taken back and done again, whatever deliveries do in between.
#include "core/editing/EditHistory.h"

#include <random>
#include <set>

#include "core/events/EventEdit.h"
#include "core/files/EventMessage.h"
#include "harness/SetTestBase.h"

namespace kestrin {
namespace {

class EditHistoryTest : public SetTestBase {
 protected:
  EventSet& Set = NewSet();
  EditHistory History{Set};

  ~EditHistoryTest() override { History.Clear(); }

  template <typename Change>
  static void Edit(Event& event, Change change) {
    const EventEdit edit(event);
    change(event);
  }
  static FakeHandlerData& DataOf(Event& event) {
    return *dynamic_cast<FakeHandlerData*>(event.GetAddOnData());
  }
  static std::unique_ptr<Event> CopyOf(EventSet& set, const Event& event) {
    Message message;
    EXPECT_TRUE(GenerateMessageForEvent(event, &message));
    return EventFromMessage(set, message).NewEvent;
  }
  /// Every event with all that a person can edit, but for those that deliveries took away.
  std::vector<std::string> Dump() const {
    std::vector<std::string> dump;
    for (const auto& event : Set.Events()) {
      if (gone_.contains(event->GetHandle())) continue;
      Message message;
      EXPECT_TRUE(GenerateMessageForEvent(*event, &message));
      for (const char* follows : {"NextEventTime", "ActualEventTime", "Status"})
        message.Set(follows, int32{0});
      dump.push_back(std::to_string(event->GetHandle()) + message.Flatten());
    }
    return dump;
  }
  std::vector<std::string> WithoutGone(std::vector<std::string> dump) const {
    std::erase_if(dump, [this](const std::string& each) {
      return gone_.contains(std::stoull(each.substr(0, each.find('{'))));
    });
    return dump;
  }

  void RandomStep() {
    const size_t count = Set.Events().size();
    Event* const event = count > 0 ? Set.Events()[UpTo(count)].get() : nullptr;
    const size_t choice = event ? UpTo(11) : 9;
    const auto number = static_cast<int32>(UpTo(1000));
    if (choice < 4)
      Edit(*event, [&](Event& it) { ChangeField(it, choice * 3 + UpTo(3), number); });
    else if (choice == 4)
      ChangeData(*event, number);
    else if (choice == 5)
      History.Remove(Some(), EditKind::Delete);
    else if (choice == 6)
      History.SetActive(Some(), UpTo(2) == 0);
    else if (choice == 7)
      Deliver(*event);
    else if (choice == 8)
      Paste(*event);
    else if (choice == 9 && count < 40)
      AddNew();
    if (UpTo(3) == 0) History.EndSitting();
  }
  size_t UpTo(size_t limit) { return static_cast<size_t>(random_() % limit); }

 private:
  void ChangeField(Event& it, size_t field, int32 number) {
    const auto type = static_cast<PeriodicityType>(number % NumberOfPeriodTypes);
    const std::function<void()> changes[] = {
        [&] { it.SetName("Event " + std::to_string(number)); },
        [&] { it.SetPeriodType(type); },
        [&] { it.SetEventTime(Sunday + number * Hour, number % 2 == 0); },
        [&] { it.SetApplyTime(number % 2 == 0); },
        [&] { it.SetTimeToApply(number * 60); },
        [&] { it.SetDayOfMonth(static_cast<int8>(number % 31 + 1)); },
        [&] { it.SetApplyNag(number % 2 == 0); },
        [&] { it.SetPrewarnMessage(std::string(static_cast<size_t>(number % 50), 'x')); },
        [&] { it.SetDeleteOnceDelivered(number % 2 == 0); },
        [&] { it.SetSelectedHandler(number % 2 + 1); },
        [&] { it.SetMultiple(static_cast<uint32>(number)); },
        [&] {
          const auto own = [number] { return std::string(1, static_cast<char>(number % 7)); };
          it.SetIcon(number % 2 == 0 ? OwnIconNumber : number % 10,
                     std::make_unique<IconPair>(IconPair{std::string(LargeIconBytes, own()[0]),
                                                         std::string(MiniIconBytes, 'm')}));
        }};
    changes[field]();
  }
  void ChangeData(Event& event, int32 number) {
    History.HandlerShown(event);
    DataOf(event).Bytes = std::to_string(number);
    event.HandlerChanged();
  }
  std::vector<Event*> Some() {
    std::vector<Event*> some;
    for (const auto& event : Set.Events())
      if (UpTo(4) == 0) some.push_back(event.get());
    return some;
  }
  void Paste(const Event& event) {
    std::vector<std::unique_ptr<Event>> copies;
    for (size_t i = UpTo(6) + 1; i > 0; --i) copies.push_back(CopyOf(Set, event));
    History.Add(std::move(copies), EditKind::Paste);
  }
  void AddNew() {
    std::vector<std::unique_ptr<Event>> one(1);
    History.Add(std::move(one), EditKind::New);
  }
  void Deliver(Event& event) {
    World.Time.Advance(600);
    const EventSet::DeliveryChange byDelivery(Set);
    if (UpTo(3) > 0) return event.UpdateEventTime();
    gone_.insert(event.GetHandle());
    Set.RemoveEvent(&event);
  }

  std::mt19937 random_{20261115};
  std::set<uint64> gone_;
};

TEST_F(EditHistoryTest, EverythingIsTakenBackAndDoneAgainWhateverIsDeliveredMeanwhile) {
  for (int i = 0; i < 8; ++i) Add(Set, DailyAt(Sunday + 9 * Hour + i, std::to_string(i)));
  Settle(Set);
  const std::vector<std::string> start = Dump();
  for (int i = 0; i < 500; ++i) RandomStep();
  const std::vector<std::string> end = Dump();
  for (int round = 0; round < 3; ++round) {
    int undone = 0, redone = 0;
    while (History.Undo()) ++undone;
    EXPECT_GT(undone, 250);
    ASSERT_EQ(Dump(), WithoutGone(start));
    EXPECT_TRUE(!Set.HasBeenModified() || Set.OnlyDeliveriesChanged());
    while (History.Redo()) ++redone;
    EXPECT_EQ(redone, undone);
    ASSERT_EQ(Dump(), WithoutGone(end));
    EXPECT_FALSE(Set.OnlyDeliveriesChanged());
    for (size_t i = UpTo(100); i > 0; --i) History.Undo();
    while (History.Redo()) continue;
    ASSERT_EQ(Dump(), WithoutGone(end));
  }
}

TEST_F(EditHistoryTest, EditsOfOneFieldInOneSittingAreOneStep) {
  Event& tea = Add(Set, DailyAt(Sunday + 9 * Hour));
  Settle(Set);
  Edit(tea, [](Event& it) { it.SetName("Te"); });
  Edit(tea, [](Event& it) { it.SetName("Coffee"); });
  Edit(tea, [](Event& it) { it.SetComment("black"); });
  History.EndSitting();
  Edit(tea, [](Event& it) { it.SetComment("white"); });
  EXPECT_EQ(History.NextUndo()->name, "Coffee");
  for (const char* comment : {"black", ""}) {
    History.Undo();
    EXPECT_EQ(tea.GetComment(), comment);
    EXPECT_EQ(tea.GetName(), "Coffee");
  }
  EXPECT_TRUE(Set.HasBeenModified());
  History.Undo();
  EXPECT_EQ(tea.GetName(), "Tea");
  EXPECT_FALSE(Set.HasBeenModified()) << "back at the saved state";
  EXPECT_FALSE(History.NextUndo());
  Edit(tea, [](Event& it) { it.SetActive(false); });
  EXPECT_FALSE(History.NextRedo()) << "another way was taken";
  Edit(tea, [](Event& it) { it.SetActive(true); });
  EXPECT_FALSE(History.NextUndo()) << "there and back is nothing";
  EXPECT_FALSE(Set.HasBeenModified());

  Edit(tea, [](Event& it) { it.SetComment("hot"); });
  for (const char* name : {"Coffee", "Tea"}) Edit(tea, [name](Event& it) { it.SetName(name); });
  Edit(tea, [](Event& it) { it.SetComment("cold"); });
  History.Undo();
  EXPECT_EQ(tea.GetComment(), "hot") << "there and back ends the sitting";
  History.Undo();
  Event& other = Add(Set, DailyAt(Sunday + 9 * Hour));
  History.SetActive({&other}, false);
  History.SetActive({&tea, &other}, false);
  EXPECT_EQ(History.NextUndo()->count, 1u) << "the other one was so already";
  for (int i = 0; i < 2; ++i) History.Undo();
  Settle(Set);

  Edit(tea, [](Event& it) { it.SetName("Cake"); });
  ASSERT_TRUE(Set.SaveData());
  Edit(tea, [](Event& it) { it.SetName("Pie"); });
  History.Undo();
  EXPECT_EQ(tea.GetName(), "Cake") << "a save ends the sitting";
  EXPECT_FALSE(Set.HasBeenModified());
  History.Undo();
  EXPECT_TRUE(Set.HasBeenModified());
  History.Redo();
  EXPECT_FALSE(Set.HasBeenModified()) << "as it was saved";
  tea.SetModified();
  History.Undo();
  History.Redo();
  EXPECT_TRUE(Set.HasBeenModified()) << "nobody knows what was changed there";
}

TEST_F(EditHistoryTest, AStepHoldsNeitherStatusNorTimesAndRingsNothing) {
  EventRecord record = OnceAt(Sunday + 9 * Hour);
  record.ApplyNag = true;
  Event& tea = Add(Set, record);
  Edit(tea, [](Event& it) { it.SetName("Green tea"); });
  tea.SetTimes({Sunday + 9 * Hour, Sunday + 11 * Hour, WaitingToNag});
  History.Undo();
  EXPECT_EQ(tea.GetStatus(), WaitingToNag) << "an old name ends no nag";
  EXPECT_EQ(tea.GetNextEventTime(), Sunday + 11 * Hour);

  Edit(tea, [](Event& it) { it.SetEventTime(Sunday + Day, true); });
  World.Time.JumpTo(Sunday + 10 * Hour);
  World.Messages.clear();
  const auto done = History.Undo();
  EXPECT_EQ(done->hasPassed, "Tea");
  EXPECT_THAT(done->events, ElementsAre(&tea)) << "what is to be selected";
  EXPECT_EQ(tea.GetNextEventTime(), 0);
  World.RunMessages();
  EXPECT_EQ(World.CountMessages(SETS_OPENED), 0);
  EXPECT_THAT(History.Redo()->hasPassed, IsEmpty());
  EXPECT_EQ(tea.GetNextEventTime(), Sunday + Day);

  Event& cake = Add(Set, DailyAt(Sunday + Day, "Cake"));
  Edit(cake, [](Event& it) { it.SetName("Pie"); });
  Edit(tea, [](Event& it) { it.SetComment("last"); });
  {
    const EventSet::DeliveryChange byDelivery(Set);
    Set.RemoveEvent(&tea);
  }
  EXPECT_EQ(History.NextUndo()->name, "Pie") << "what a delivery deleted is passed over";
  History.Undo();
  EXPECT_EQ(cake.GetName(), "Cake");
  EXPECT_FALSE(History.Undo());
  History.SetActive({&cake}, false);
  World.Time.JumpTo(Sunday + Day + 1);
  History.Undo();
  EXPECT_EQ(cake.GetNextEventTime(), Sunday + 2 * Day) << "what has passed meanwhile rings not";

  record = OnceAt(Sunday + 3 * Day);
  record.ApplyPrewarn = record.ApplyPrewarnRepeat = true;
  record.PrewarnTime = 3;
  Event& pie = Add(Set, record);
  pie.UpdateEventTime();
  const int32 next = pie.GetNextEventTime();
  Edit(pie, [](Event& it) { it.SetPrewarnRepeatType(Minutes); });
  EXPECT_LT(pie.GetNextEventTime(), next);
  History.Undo();
  EXPECT_EQ(pie.GetNextEventTime(), next);
}

}  // namespace
}  // namespace kestrin
