// Events made, edited, copied, deleted and brought back, also when they came due meanwhile.
#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "core/ports/UserInterface.h"
#include "harness/AppOnScreen.h"
#include "interface/sets/EventClipboard.h"

namespace kestrin {
namespace {

using testing::SizeIs;

class UndoTest : public AppOnScreen {
 protected:
  UndoTest() { QGuiApplication::clipboard()->clear(); }

  static Event& First(EventSet& set) { return *set.Events().at(0); }
  static ListEventView& ListOf(EventSet& set) { return *WindowOf(set).GetEventsView(); }
  static void Select(EventSet& set, const std::string& name) {
    for (const auto& event : set.Events())
      if (event->GetName() == name) ListOf(set).SelectEvents({event.get()});
  }
  static std::string Selected(EventSet& set) {
    const Event* event = ListOf(set).GetSelectedEvent();
    return event ? event->GetName() : "";
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

TEST_F(UndoTest, DeletedEventsComeBackAsAndWhereTheyWereTheLastOneFirst) {
  EventSet& set = TwoEvents();
  Select(set, "Tea");
  const uint64 handle = First(set).GetHandle();
  First(set).OpenWindow();
  Key(set, Qt::Key_Delete);
  EXPECT_THAT(Names(set), ElementsAre("Cake"));
  EXPECT_EQ(Selected(set), "Cake") << "the next row";
  EXPECT_EQ(Line(set, "report"), "Deleted “Tea”.");
  EXPECT_EQ(Line(set, "nextEvent"), "Next: Cake, Sun, Nov 15 2026");
  Choose(WindowOf(set), "Delete event");
  EXPECT_EQ(Line(set, "nextEvent"), "No events yet");
  EXPECT_EQ(Selected(set), "");
  auto* button = WindowOf(set).findChild<QPushButton*>("undo");
  button->setFocus();
  QTest::keyClick(button, Qt::Key_Space);
  Run();
  EXPECT_THAT(Names(set), ElementsAre("Cake"));
  EXPECT_EQ(Line(set, "report"), "Deleted “Tea”.") << "what can still come back";
  Key(set, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_THAT(Names(set), ElementsAre("Tea", "Cake"));
  EXPECT_EQ(First(set).GetHandle(), handle);
  EXPECT_EQ(First(set).GetNextEventTime(), Sunday + 9 * Hour);
  EXPECT_FALSE(First(set).GetWindow()) << "the editor stays closed";
  EXPECT_EQ(Selected(set), "Tea");
  EXPECT_EQ(Line(set, "report"), "");
  EXPECT_FALSE(Item(WindowOf(set), "Undo")->isEnabled());
  Key(set, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_THAT(Names(set), ElementsAre("Cake"));
  EXPECT_EQ(Line(set, "report"), "Deleted “Tea”.");
}

TEST_F(UndoTest, CutAndPasteMoveAnEventToAnotherSet) {
  EventSet& from = TwoEvents();
  EventSet& to = NewSet();
  EXPECT_EQ(Selected(from), "Tea") << "the first row is current, and selected";
  ListOf(from).clearSelection();
  Key(from, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "") << "nothing is selected";
  Select(from, "Tea");
  Key(from, Qt::Key_X, Qt::ControlModifier);
  EXPECT_THAT(Names(from), ElementsAre("Cake"));
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "Tea");
  Key(to, Qt::Key_V, Qt::ControlModifier);
  ASSERT_THAT(Names(to), ElementsAre("Tea"));
  EXPECT_EQ(First(to).GetNextEventTime(), Sunday + 9 * Hour);
  EXPECT_EQ(Selected(to), "Tea");
  EXPECT_FALSE(First(to).GetWindow());
  Choose(WindowOf(from), "Undo cutting of 'Tea'");
  EXPECT_THAT(Names(from), ElementsAre("Tea", "Cake"));
  QGuiApplication::clipboard()->setText("only words");
  Choose(WindowOf(to), "Paste");
  EXPECT_EQ(to.CountEvents(), 1);
}

TEST_F(UndoTest, TheEditorsKeysTakeBackWhatItsFieldsNoLongerCan) {
  EventSet& set = TwoEvents();
  Event& tea = First(set);
  tea.SetTabShown(4);
  tea.OpenWindow();
  auto* editor = dynamic_cast<QWidget*>(tea.GetWindow());
  ASSERT_TRUE(QTest::qWaitForWindowActive(editor));
  const auto key = [&](QWidget* at, Qt::Key which, Qt::KeyboardModifiers modifiers = {}) {
    at->setFocus();
    QTest::keyClick(at, which, modifiers);
    Run();
  };
  auto* name = editor->findChild<QLineEdit*>("eventName");
  auto* comment = editor->findChild<QPlainTextEdit*>("comment");
  name->setFocus();
  name->selectAll();
  QTest::keyClicks(name, "Coffee");
  key(name, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(name->text(), "Tea") << "its own";
  QTest::keyClick(name, Qt::Key_End);
  QTest::keyClicks(name, " time");
  key(name, Qt::Key_Return);
  comment->setFocus();
  QTest::keyClicks(comment, "black");
  key(name, Qt::Key_Home);
  EXPECT_EQ(tea.GetComment(), "black");
  EXPECT_TRUE(Item(WindowOf(set), "Undo change of 'Tea time'"));
  key(name, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(comment->toPlainText(), "");
  key(comment, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(tea.GetName(), "Tea");
  EXPECT_EQ(name->text(), "Tea");
  EXPECT_FALSE(set.HasBeenModified());
  for (int i = 0; i < 2; ++i) key(comment, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(tea.GetName() + tea.GetComment(), "Tea timeblack");
  EXPECT_TRUE(tea.GetWindow());
  comment->setFocus();
  QTest::keyClicks(comment, ", hot");
  Select(set, "Tea time");
  Choose(WindowOf(set), "Duplicate event");
  EXPECT_THAT(set.Events().back()->GetComment(), testing::HasSubstr("hot")) << "what is typed too";
}

TEST_F(UndoTest, ManyAtATimeAreOneStep) {
  EventSet& set = TwoEvents();
  Add(set, "Pie", Sunday + 11 * Hour).SetTimes({0, 0, DoneWithEvent});
  Run();
  ListOf(set).selectAll();
  Key(set, Qt::Key_D, Qt::ControlModifier);
  EXPECT_THAT(Names(set),
              testing::UnorderedElementsAre("Tea", "Cake", "Pie", "Tea", "Cake", "Pie"));
  EXPECT_THAT(ListOf(set).GetSelectedEvents(), SizeIs(3)) << "the copies";
  Key(set, Qt::Key_Delete);
  Choose(WindowOf(set), "Undo deletion of 3 events");
  EXPECT_THAT(set.Events(), SizeIs(6));
  Choose(WindowOf(set), "Delete finished events");
  EXPECT_THAT(Names(set), testing::Not(testing::Contains("Pie")));
  EXPECT_EQ(Line(set, "report").substr(0, 7), "Deleted");

  Select(set, "Cake");
  QTest::keyClick(&ListOf(set), Qt::Key_Space);
  Run();
  EXPECT_EQ(Line(set, "report"), "Deactivated “Cake”.");
  const Event* const cake = ListOf(set).GetSelectedEvent();
  EXPECT_FALSE(cake->GetActive());
  Key(set, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(cake->GetActive());
  QTest::keyClicks(&ListOf(set), "ca e");
  EXPECT_TRUE(cake->GetActive()) << "a blank of a name that is being typed";

  Key(set, Qt::Key_F2);
  auto* rename = ListOf(set).findChild<QLineEdit*>("rename");
  ASSERT_TRUE(rename);
  rename->setText("Cup cake");
  EXPECT_EQ(cake->GetName(), "Cake");
  set.CommitEdits();
  EXPECT_EQ(cake->GetName(), "Cup cake") << "a save takes along what is being typed";
  QTest::keyClick(rename, Qt::Key_Return);
  Run();
  EXPECT_FALSE(cake->GetWindow()) << "Return is the field's";
  EXPECT_TRUE(Item(WindowOf(set), "Undo change of 'Cup cake'"));
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
