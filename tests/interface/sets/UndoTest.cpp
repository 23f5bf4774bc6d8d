// Events made, edited, copied, deleted and brought back, also when they came due meanwhile.
#include <QClipboard>

#include "core/files/StoredSetFile.h"
#include "core/ports/UserInterface.h"
#include "harness/AppOnScreen.h"
#include "interface/sets/EventClipboard.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class UndoTest : public AppOnScreen {
 protected:
  UndoTest() { QGuiApplication::clipboard()->clear(); }

  static Event& First(EventSet& set) { return *set.Events().at(0); }
  static ListEventView& ListOf(EventSet& set) { return *WindowOf(set).GetEventsView(); }
  static void Select(EventSet& set, const std::string& name) {
    for (const auto& event : set.Events())
      if (event->GetName() == name) ListOf(set).SelectEvent(event.get());
  }
  static std::string Selected(EventSet& set) {
    const Event* event = ListOf(set).GetSelectedEvent();
    return event ? event->GetName() : "";
  }
  EventSet* OpenFile(const std::string& leaf) {
    Message open(OPEN_FILES);
    open.Set("0", Path(leaf));
    Post(open);
    return Set(leaf);
  }
  static std::vector<std::string> Names(const EventSet& set) {
    std::vector<std::string> names;
    for (const auto& event : set.Events()) names.push_back(event->GetName());
    return names;
  }
  void Key(EventSet& set, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    WindowOf(set).activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&WindowOf(set)));
    QTest::keyClick(&ListOf(set), key, modifiers);
    Run();
  }
  /// Tea and Cake, saved.
  EventSet& TwoEvents() {
    EventSet& set = OpenSet();
    Add(set, "Cake", Sunday + 10 * Hour);
    EXPECT_TRUE(set.SaveData());
    Run();
    return set;
  }
  static std::string Line(EventSet& set, const char* name) {
    const auto* line = WindowOf(set).findChild<QWidget*>(name);
    return line->isVisible() ? line->accessibleName().toStdString() : "";
  }
};

TEST_F(UndoTest, ANewEventIsSelectedAndItsEditorOpens) {
  EventSet& set = OpenSet();
  Key(set, Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_THAT(set.Events(), SizeIs(2));
  EXPECT_EQ(ListOf(set).GetSelectedEvent(), set.Events()[1].get());
  EXPECT_TRUE(set.Events()[1]->GetWindow());
  Select(set, "Tea");
  Key(set, Qt::Key_Return);
  EXPECT_TRUE(First(set).GetWindow());
  First(set).GetWindow()->CloseNow();
  Key(set, Qt::Key_E, Qt::ControlModifier);
  EXPECT_TRUE(First(set).GetWindow());
}

TEST_F(UndoTest, DeletedEventsComeBackAsAndWhereTheyWereTheLastOneFirst) {
  EventSet& set = TwoEvents();
  Select(set, "Tea");
  const uint64 handle = First(set).GetHandle();
  First(set).OpenWindow();
  Key(set, Qt::Key_Delete);
  EXPECT_THAT(Names(set), ElementsAre("Cake"));
  EXPECT_EQ(Selected(set), "Cake") << "the next row";
  EXPECT_EQ(Line(set, "deleted"), "Deleted “Tea”.");
  EXPECT_EQ(Line(set, "nextEvent"), "Next: Cake, Sun, Nov 15 2026");
  Choose(WindowOf(set), "Delete event");
  EXPECT_EQ(Line(set, "nextEvent"), "No events yet");
  EXPECT_EQ(Selected(set), "");
  auto* button = WindowOf(set).findChild<QPushButton*>("undoDelete");
  button->setFocus();
  QTest::keyClick(button, Qt::Key_Space);
  Run();
  EXPECT_THAT(Names(set), ElementsAre("Cake"));
  EXPECT_EQ(Line(set, "deleted"), "Deleted “Tea”.") << "what can still come back";
  Key(set, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_THAT(Names(set), ElementsAre("Tea", "Cake"));
  EXPECT_EQ(First(set).GetHandle(), handle);
  EXPECT_EQ(First(set).GetNextEventTime(), Sunday + 9 * Hour);
  EXPECT_FALSE(First(set).GetWindow()) << "the editor stays closed";
  EXPECT_EQ(Selected(set), "Tea");
  EXPECT_EQ(Line(set, "deleted"), "");
  EXPECT_FALSE(Item(WindowOf(set), "Undo delete")->isEnabled());
}

TEST_F(UndoTest, WhatCameDueWhileItWasDeletedCountsAsMissed) {
  for (const bool deliverIfMissed : {true, false}) {
    Start();
    EventSet& set = OpenSet();
    First(set).SetDeliverIfMissed(deliverIfMissed);
    Select(set, "Tea");
    Choose(WindowOf(set), "Delete event");
    It->Time.JumpTo(Sunday + 9 * Hour + 600);
    Post(Message(DELIVER_EVENTS));
    EXPECT_THAT(AlertTexts(), IsEmpty());
    It->Queue.Post(EVENT_SETS_CHANGED);  // a pass that waits already comes first
    Choose(WindowOf(set), "Undo delete");
    EXPECT_THAT(AlertTexts(), SizeIs(deliverIfMissed ? 1 : 0));
    EXPECT_EQ(Answer("The event was missed.", "Ok"), deliverIfMissed);
    EXPECT_EQ(First(set).GetNextEventTime(), Sunday + Day + 9 * Hour);
  }
}

TEST_F(UndoTest, AnEventThatDeliveryDeletedIsNotOffered) {
  EventSet& set = OpenSet();
  First(set).SetDeleteOnceDelivered(true);
  It->Time.JumpTo(Sunday + 9 * Hour);
  Post(Message(DELIVER_EVENTS));
  EXPECT_EQ(set.CountEvents(), 0);
  EXPECT_FALSE(Item(WindowOf(set), "Undo delete")->isEnabled());
  EXPECT_EQ(Line(set, "deleted"), "");
}

TEST_F(UndoTest, CutAndPasteMoveAnEventToAnotherSet) {
  EventSet& from = TwoEvents();
  EventSet& to = NewSet();
  EXPECT_EQ(Selected(from), "Tea") << "the first row is current, and selected";
  ListOf(from).clearSelection();
  Key(from, Qt::Key_C, Qt::ControlModifier);
  EXPECT_FALSE(ClipboardHasEvent()) << "nothing is selected";
  Select(from, "Tea");
  Key(from, Qt::Key_X, Qt::ControlModifier);
  EXPECT_THAT(Names(from), ElementsAre("Cake"));
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "Tea");
  Key(to, Qt::Key_V, Qt::ControlModifier);
  ASSERT_THAT(Names(to), ElementsAre("Tea"));
  EXPECT_EQ(First(to).GetNextEventTime(), Sunday + 9 * Hour);
  EXPECT_EQ(Selected(to), "Tea");
  EXPECT_FALSE(First(to).GetWindow());
  Choose(WindowOf(from), "Undo delete");
  EXPECT_THAT(Names(from), ElementsAre("Tea", "Cake"));
  QGuiApplication::clipboard()->setText("only words");
  Choose(WindowOf(to), "Paste");
  EXPECT_EQ(to.CountEvents(), 1);
}

TEST_F(UndoTest, EditorsThatStoodOpenOpenAgainButNeverTooMany) {
  EventSet& set = TwoEvents();
  First(set).OpenWindow();
  Choose(WindowOf(set), "Save");
  WindowOf(set).close();
  Run();
  ASSERT_FALSE(Set("Work.kestrin"));
  EventSet& again = *OpenFile("Work.kestrin");
  EXPECT_TRUE(again.Events()[0]->GetWindow());
  EXPECT_FALSE(again.Events()[1]->GetWindow());
  EXPECT_FALSE(again.HasBeenModified());

  WindowOf(again).CloseNow();
  Run();
  const auto owned = kestrin::NewSet(It->Core, Path("Many.kestrin"));
  EventSet& hostile = *owned;
  for (int i = 0; i < 100; ++i) Add(hostile, "x", Sunday + Day).SetShouldWindowOpen(true);
  ASSERT_TRUE(hostile.SaveData());
  int editors = 0;
  for (const auto& event : OpenFile("Many.kestrin")->Events())
    editors += event->GetWindow() != nullptr;
  EXPECT_EQ(editors, 20);
}

TEST_F(UndoTest, TheStatusLineSaysWhenTheSetRings) {
  const struct {
    int32 mode;
    bool remembered;
    const char* text;
  } rows[] = {
      {DeliverShown, false, "Silent once this window is closed, as the settings say"},
      {DeliverShownOrRemembered, false,
       "Silent once this window is closed – not remembered for delivery"},
      {DeliverShownOrRemembered, true, "Rings, also when this window is closed"},
      {DeliverRemembered, false, "Silent – not remembered for delivery"},
      {DeliverRememberedNotShown, true,
       "Rings only once this window is closed, as the settings say"},
      {DeliverNothing, true, "Silent – delivery is switched off in the settings"},
  };
  EventSet& set = OpenSet();
  for (const auto& row : rows) {
    It->Settings.WhichEventsToDeliver = row.mode;
    It->Settings.SetFileNames.clear();
    if (row.remembered) It->Settings.SetFileNames = {Path("Work.kestrin")};
    It->Settings.Changed();
    Run();
    EXPECT_EQ(Line(set, "ringing"), row.text);
  }
  const int width = WindowOf(set).width();
  First(set).SetName(std::string(400, 'w'));
  Run();
  EXPECT_THAT(Line(set, "nextEvent"), testing::EndsWith("www, Sun, Nov 15 2026, 09:00 AM"));
  EXPECT_EQ(WindowOf(set).width(), width) << "a long name widens nothing";
}

}  // namespace
}  // namespace kestrin
