#include <strings.h>

#include <QFile>
#include <QHeaderView>
#include <QSignalSpy>
#include <QtTest/QTest>
#include <cmath>
#include <limits>
#include <random>

#include "harness/ScreenContext.h"

namespace kestrin {
namespace {

using testing::AllOf, testing::Ge, testing::Le, testing::_;

/// Two events in one column, told apart plainly; their names are ASCII, their handlers the same.
int64 Compare(const Event& a, const Event& b, int32 column) {
  const auto status = [](const Event& event) { return event.GetActive() ? event.GetStatus() : 4; };
  switch (column) {
    case NameColumn:
      return strcasecmp(a.GetName().c_str(), b.GetName().c_str());
    case EventTimeColumn:
      return int64{a.GetActualEventTime()} - b.GetActualEventTime();
    case NextTimeColumn:
      return int64{a.GetNextEventTime()} - b.GetNextEventTime();
    default:
      return column == StatusColumn ? status(a) - status(b) : 0;
  }
}

struct EventListTest : testing::Test {
  ScreenContext context;
  EventSet& set = context.NewSet();
  EventSetWindow* window = nullptr;
  ListEventView* list = nullptr;

  EventListTest() {
    set.Layout().ColumnShown.fill(true);
    set.Layout().NumberOfKeys = 0;
  }
  void Open(std::initializer_list<const char*> names = {}) {
    for (const char* name : names) Append(name);
    window = &context.OpenWindow(set);
    list = window->GetEventsView();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
  }
  Event& Append(const std::string& name, int32 time = 0, int32 status = WaitingForEvent) {
    return AppendEvent(set, name, time, status);
  }
  std::string Cell(int row, int column) const {
    return list->model()->index(row, column).data().toString().toStdString();
  }
  std::vector<std::string> Row(int row) const {
    std::vector<std::string> cells;
    for (int column = NameColumn; column < NumberOfColumns; ++column)
      cells.push_back(Cell(row, column));
    return cells;
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (int row = 0; row < list->model()->rowCount(); ++row)
      names.push_back(Cell(row, NameColumn));
    return names;
  }
  QPoint MiddleOf(int row) const {
    return list->visualRect(list->model()->index(row, NameColumn)).center();
  }
  QPoint InHeader(int column, int inset = 10) const {
    return {list->header()->sectionViewportPosition(column) + inset, 8};
  }
  void ClickHeader(int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mouseClick(list->header()->viewport(), Qt::LeftButton, modifiers, InHeader(column));
  }
  /// Keys of the stored layout as text: "1+ 5-".
  std::string StoredKeys() const {
    std::string text;
    for (size_t i = 0; i < static_cast<size_t>(set.Layout().NumberOfKeys); ++i)
      text += (i ? " " : "") + std::to_string(set.Layout().SortKeys[i]) +
              (set.Layout().SortModes[i] ? "-" : "+");
    return text;
  }
};

TEST_F(EventListTest, CellsSayWhatTheEventIs) {
  Append("Tea\n<b>", 1794773322).SetActive(false);
  EventRecord timed;
  timed.Name = "\xff";
  timed.ActualEventTime = 1794773322;
  timed.ApplyTime = true;
  timed.Status = 77;
  set.AppendRead(std::make_unique<Event>(set, timed));
  EventRecord wholeDay;
  wholeDay.Name = "Whole day";
  wholeDay.ActualEventTime = 1794873600;
  wholeDay.NextEventTime = 1794773322;
  set.AppendRead(std::make_unique<Event>(set, wholeDay));
  EventRecord manyADay = wholeDay;
  manyADay.Name = "xs";
  manyADay.PeriodType = SubDaily;
  set.AppendRead(std::make_unique<Event>(set, manyADay));
  Open();
  EXPECT_THAT(Row(2), ElementsAre("Whole day", "Tue, Nov 17 2026", "Sun, Nov 15 2026, 08:08:42 PM",
                                  _, "Waiting for event"));
  EXPECT_THAT(list->model()->index(0, NameColumn).data(Qt::ToolTipRole).toString().toStdString(),
              HasSubstr("Tea &lt;b&gt;"));
  EXPECT_THAT(Row(0), ElementsAre("Tea <b>", "Sun, Nov 15 2026", _, "Unknown", "Inactive"));
  EXPECT_THAT(Row(1), ElementsAre("\uFFFD", "Sun, Nov 15 2026, 08:08:42 PM", "None", _, "77"));
  EXPECT_EQ(Cell(3, EventTimeColumn), "Tue, Nov 17 2026, 12:00:00 AM");
  context.Settings.Time24Hour = true;
  EXPECT_EQ(Cell(1, EventTimeColumn), "Sun, Nov 15 2026, 20:08:42");
}

TEST_F(EventListTest, SortsByEachColumnStably) {
  Append("beta", 30, DoneWithEvent);
  Append("Alpha", 10, WaitingToNag);
  Append("alpha", 30, 9);
  Append("\xc3\xa9t\xc3\xa9", -5, WaitingForEvent);      // été
  Append("\xc3\x89T\xc3\x89", 20, -3).SetActive(false);  // ÉTÉ
  set.Layout().ColumnShown[IconColumn] = true;
  Open();
  const auto arrival = Names();
  ClickHeader(IconColumn);
  EXPECT_EQ(Names(), arrival);
  EXPECT_EQ(StoredKeys(), "") << "the icon column is no key";
  ClickHeader(NameColumn);
  EXPECT_THAT(Names(), ElementsAre("Alpha", "alpha", "beta", "été", "ÉTÉ"));
  ClickHeader(NameColumn);
  EXPECT_THAT(Names(), ElementsAre("été", "ÉTÉ", "beta", "Alpha", "alpha"));
  ClickHeader(EventTimeColumn);
  EXPECT_THAT(Names(), ElementsAre("été", "Alpha", "ÉTÉ", "beta", "alpha"));
  ClickHeader(StatusColumn);
  EXPECT_THAT(Names(), ElementsAre("été", "Alpha", "beta", "ÉTÉ", "alpha"));
  ClickHeader(HandlerColumn);
  EXPECT_THAT(Names(), ElementsAre("été", "Alpha", "beta", "ÉTÉ", "alpha"));
  EXPECT_EQ(StoredKeys(), "4+");
}

// The list finds a changed event by what it was sorted by before, and packs keys for speed; a plain
// comparison of two events has to agree with where everything ends up.
TEST_F(EventListTest, StaysSortedThroughAnyChanges) {
  std::mt19937 random(7);
  const auto any = [&random](int below) { return static_cast<int>(random() % unsigned(below)); };
  const std::vector<std::string> names = {
      "", "a", "A", "Ab", "abcdefghijklmnopq", "abcdefghijklmnopz"};
  const auto someName = [&] { return names[static_cast<size_t>(any(6))]; };
  for (int i = 0; i < 60; ++i) Append(someName(), any(3) - 1, any(9) - 2);
  Open();
  auto& model = *static_cast<EventListModel*>(list->model());
  const std::vector<std::vector<SortKey>> orders = {{{5, false}, {1, true}, {2, false}},
                                                    {{1, false}, {5, true}},
                                                    {{2, true}, {3, false}, {1, false}},
                                                    {{4, false}, {1, true}, {3, true}},
                                                    {{1, true}}};
  for (const auto& keys : orders) {
    model.SetKeys(keys);
    for (int round = 0; round < 40; ++round) {
      for (int changes = any(3) ? any(4) : any(30); changes >= 0; --changes) {
        Event& event = *set.Events()[static_cast<size_t>(any(set.CountEvents()))];
        if (const int deed = any(4); deed == 0)
          event.SetName(someName());
        else if (deed == 1)
          event.SetActive(any(2) != 0);
        else if (deed == 2)
          set.AddEvent(std::make_unique<Event>(set, event.Record()));
        else if (set.CountEvents() > 20)
          set.RemoveEvent(&event);
      }
      model.Apply();
      ASSERT_EQ(model.rowCount(), set.CountEvents());
      for (int row = 1; row < model.rowCount(); ++row) {
        int64 order = 0;
        for (const SortKey& key : keys)
          if (order == 0)
            order = Compare(*model.EventAt(row - 1), *model.EventAt(row), key.column) *
                    (key.descending ? -1 : 1);
        ASSERT_LE(order, 0) << "row " << row;
      }
    }
  }
}

TEST_F(EventListTest, ABurstOfChangesIsAppliedOnceAndTheSelectionStaysWithItsEvent) {
  for (int i = 0; i < 50; ++i) Append("more");
  Open({"d", "b", "c", "a"});
  Event* chosen = set.Events()[51].get();
  list->SelectEvents({chosen});
  ClickHeader(NameColumn);
  EXPECT_EQ(list->GetSelectedEvent(), chosen);
  EXPECT_EQ(list->currentIndex().row(), 1);
  QSignalSpy told(list->model(), &QAbstractItemModel::dataChanged);
  for (const char* prefix : {"x", "z"})
    for (const auto& event : set.Events()) event->SetName(prefix + event->GetName());
  chosen->SetName("zz");
  EXPECT_EQ(told.size(), 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(told.size(), 1);
  EXPECT_EQ(list->GetSelectedEvent(), chosen);
  EXPECT_EQ(list->currentIndex().row(), 53);
  set.AddEvent(std::make_unique<Event>(set, EventRecord{}));
  QCoreApplication::processEvents();
  EXPECT_EQ(list->GetSelectedEvent(), chosen);
  set.RemoveEvent(chosen);
  EXPECT_NE(list->GetSelectedEvent(), chosen);
  std::vector<Event*> gone;
  for (int i = 0; i < 9; ++i)
    gone.push_back(set.AddEvent(std::make_unique<Event>(set, EventRecord{})));
  set.RemoveEvents(gone);
  QCoreApplication::processEvents();
  EXPECT_EQ(list->model()->rowCount(), set.CountEvents()) << "none of them, and all others";
}

TEST_F(EventListTest, WhatThePersonDoesToTheColumnsIsStoredAndNothingElse) {
  set.Layout().ColumnWidth = {35, 190, std::nanf(""), 150, 60, 115};
  Open();
  list->header()->resizeSection(NameColumn, 5);
  EXPECT_EQ(set.Layout().ColumnWidth[NameColumn], 20.0f) << "the narrowest";
  list->header()->resizeSection(StatusColumn, 333);
  EXPECT_EQ(set.Layout().ColumnWidth[StatusColumn], 333.0f);
  for (const bool shown : {false, true}) list->SetColumnShown(HandlerColumn, shown);
  EXPECT_EQ(set.Layout().ColumnWidth[HandlerColumn], 60.0f);
  EXPECT_TRUE(std::isnan(set.Layout().ColumnWidth[EventTimeColumn]));
  EXPECT_EQ(set.Layout().ColumnWidth[IconColumn], 35.0f);

  // Drag "Status" before "Name".
  QWidget* header = list->header()->viewport();
  window->resize(1200, 400);
  const QPoint from = InHeader(StatusColumn), to = InHeader(NameColumn, 3);
  QTest::mousePress(header, Qt::LeftButton, {}, from);
  QTest::mouseMove(header, (from + to) / 2);
  QTest::mouseMove(header, to);
  QTest::mouseRelease(header, Qt::LeftButton, {}, to);
  EXPECT_THAT(set.Layout().ColumnOrder, ElementsAre(0, 5, 1, 2, 3, 4));
  EXPECT_EQ(StoredKeys(), "") << "a drag is no click";
  EXPECT_FALSE(set.HasBeenModified());
}

TEST_F(EventListTest, AnyStoredLayoutIsShownAndKept) {
  constexpr float Infinite = std::numeric_limits<float>::infinity();
  SetLayout& layout = set.Layout();
  layout.ColumnOrder = {7, 5, 5, -1, 1, INT32_MAX};
  layout.ColumnWidth = {-1, -Infinite, std::nanf(""), Infinite, 1e30f, 3};
  layout.ColumnShown.fill(false);
  layout.NumberOfKeys = INT32_MAX;
  layout.SortKeys = {9, 0, 1, 1, 5};
  layout.SortModes = {0, 0, 1, 0, 2};
  layout.ViewMode = -7;
  layout.WindowFrame = {std::nanf(""), 1e30f, -Infinite, 0};
  const SetLayout stored = layout;
  Open({"a", "b"});
  EXPECT_THAT(list->DisplayOrder(), ElementsAre(5, 1, 0, 2, 3, 4));
  EXPECT_FALSE(list->isColumnHidden(NameColumn)) << "a list of nothing helps nobody";
  EXPECT_TRUE(list->isColumnHidden(IconColumn));
  EXPECT_THAT(Names(), ElementsAre("b", "a"));
  for (int column = 0; column < NumberOfColumns; ++column) {
    list->setColumnHidden(column, false);
    EXPECT_THAT(list->columnWidth(column), AllOf(Ge(20), Le(4000)));
  }
  EXPECT_TRUE(window->screen()->availableGeometry().contains(window->geometry()));
  EXPECT_EQ(layout.ColumnOrder, stored.ColumnOrder);
  EXPECT_EQ(layout.SortKeys, stored.SortKeys);
  EXPECT_EQ(layout.NumberOfKeys, stored.NumberOfKeys);
  EXPECT_EQ(layout.ColumnWidth[4], 1e30f);
}

TEST_F(EventListTest, NoFontCutsAColumnThatNobodyMadeNarrow) {
  const QFont usual = QApplication::font();
  constexpr float BuiltIn = 150, Wide = 230, Narrow = 40;
  const std::pair<int, float> rows[] = {
      {usual.pointSize(), BuiltIn}, {16, BuiltIn}, {16, Wide}, {16, Narrow}};
  for (const auto& [points, width] : rows) {
    SCOPED_TRACE(testing::Message() << points << " points, " << width);
    QFont font = usual;
    font.setPointSize(points);
    QApplication::setFont(font);
    EventSet& each = context.NewSet(std::to_string(points) + std::to_string(width));
    each.Layout().ColumnShown = context.Settings.Layout.ColumnShown;
    each.Layout().ColumnWidth[EventTimeColumn] = width;
    EventRecord record;
    record.Name = "Ada's next birthday";
    record.ActualEventTime = 1794773322;
    record.ApplyTime = true;
    record.Status = WaitingForPrewarning;
    each.AppendRead(std::make_unique<Event>(each, record));
    window = &context.OpenWindow(each);
    list = window->GetEventsView();
    for (const int column : {NameColumn, EventTimeColumn, HandlerColumn, StatusColumn})
      EXPECT_EQ(list->sizeHintForIndex(list->model()->index(0, column)).width() >
                    list->columnWidth(column),
                width == Narrow && column == EventTimeColumn)
          << column;
    const int most = window->screen()->availableGeometry().width();
    EXPECT_GE(list->viewport()->width(), std::min(list->header()->length(), most));
    EXPECT_EQ(each.Layout().ColumnWidth[EventTimeColumn], width) << "what is stored stays";
  }
  QApplication::setFont(usual);
}

/// The sample of the format's page, its columns named there from the left, as the list shows it.
TEST_F(EventListTest, TheColumnsStandInTheOrderOfTheFormatsPage) {
  const auto read = [](const char* name) {
    QFile file(QString(QT_TESTCASE_SOURCEDIR "/../../") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  };
  context.Files.Put("/tea", read("tests/data/sets/golden/tea.kestrin").toStdString());
  EventSet& tea = *context.Open.Sets.emplace_back(ReadSet(context.Core, "/tea").Set);
  list = context.OpenWindow(tea).GetEventsView();
  QStringList shown{"icon"};
  for (const int column : list->DisplayOrder())
    if (column != IconColumn)
      shown << list->model()->headerData(column, Qt::Horizontal).toString().toLower();
  const QString page = read("docs/file-format.md");
  EXPECT_EQ(page.section("column order: ", 1).section('\n', 0, 0), shown.join(", "));
}

TEST_F(EventListTest, KeysAndTheMouseInvokeAndDelete) {
  Open({"first", "second"});
  std::vector<const Event*> invoked;
  QObject::connect(list, &ListEventView::EventInvoked,
                   [&invoked](const Event* event) { invoked.push_back(event); });
  QSignalSpy deleted(list, &ColumnListView::DeleteRequested);
  EXPECT_EQ(list->GetSelectedEvent(), set.Events()[0].get()) << "what looks chosen is";
  QTest::keyClick(list, Qt::Key_Down);
  EXPECT_EQ(list->GetSelectedEvent(), set.Events()[1].get());
  QTest::keyClick(list, Qt::Key_Return);
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, MiddleOf(0));
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, MiddleOf(0));
  EXPECT_THAT(invoked, ElementsAre(set.Events()[1].get(), set.Events()[0].get()));
  QTest::keyClick(list, Qt::Key_Backspace);
  QTest::keyClick(list, Qt::Key_Delete);
  EXPECT_EQ(deleted.size(), 2);
  QTest::keyClick(list, 's');
  EXPECT_EQ(list->GetSelectedEvent(), set.Events()[1].get()) << "typing finds a name";
}

TEST_F(EventListTest, KeysSortMoveAndResizeTheColumnsToo) {
  set.Layout().ColumnShown[NextTimeColumn] = false;
  Open();
  window->resize(250, 200);
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window));
  QTest::keyClick(list, Qt::Key_Tab);
  ASSERT_EQ(QApplication::focusWidget(), list->header());
  const auto press = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(list->header(), key, modifiers);
    return StoredKeys();
  };
  press(Qt::Key_Right);
  EXPECT_EQ(press(Qt::Key_Space), "1+");
  EXPECT_EQ(press(Qt::Key_Return), "1-");
  press(Qt::Key_Right);
  EXPECT_EQ(press(Qt::Key_Space, Qt::ShiftModifier), "1- 2+");
  EXPECT_EQ(list->header()->accessibleDescription(), "Event time, sort key 2, ascending");
  const float width = static_cast<float>(list->columnWidth(EventTimeColumn));
  press(Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(set.Layout().ColumnWidth[EventTimeColumn], width + 10);
  press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_THAT(set.Layout().ColumnOrder, ElementsAre(0, 1, 3, 4, 2, 5)) << "past the hidden one";
  press(Qt::Key_End);
  EXPECT_EQ(press(Qt::Key_Right, Qt::ControlModifier), "1- 2+") << "there is no further";
  EXPECT_LT(list->header()->sectionViewportPosition(StatusColumn), list->viewport()->width());
  press(Qt::Key_Home);
  press(Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(list->columnWidth(IconColumn), 20) << "its width is fixed";
  EXPECT_EQ(press(Qt::Key_Delete), "1- 2+");
  QTest::keyClick(list->header(), Qt::Key_Backtab);
  EXPECT_EQ(QApplication::focusWidget(), list);
}

}  // namespace
}  // namespace kestrin
