// Every menu item of an event set window: its text, place, shortcut, state, and where it goes.
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <set>

#include "harness/AppOnScreen.h"
#include "harness/PageTable.h"
#include "interface/sets/EventSetMenus.h"

namespace kestrin {
namespace {

struct Row {
  explicit Row(const std::vector<std::string>& cells)
      : menu(cells.at(0)), text(cells[1]), shortcut(cells[2]), goes(cells[4]), state(cells.at(5)) {
    const bool isNumber = cells[3].size() < 4;
    if (isNumber) command = static_cast<uint32>(std::atoi(cells[3].c_str()));
    for (size_t i = 0; i < 4 && !isNumber; ++i) command = command << 8 | uint32(cells[3][i]);
  }
  std::string menu, text, shortcut, goes, state;
  uint32 command = 0;
};

std::string Plain(QString text) { return text.remove('&').toStdString(); }

struct SetMenusTest : testing::Test {
  ScreenContext context;
  EventSet& set = context.NewSet();
  EventSetWindow* window = &context.OpenWindow(set);

  /// The items of a menu and what they lead to, in order; submenus follow their menu.
  static void Walk(const std::string& title, const QList<QAction*>& actions,
                   std::vector<std::pair<std::string, QAction*>>& found) {
    for (QAction* action : actions) found.emplace_back(title, action);
    for (QAction* action : actions)
      if (action->menu()) Walk(Plain(action->text()), action->menu()->actions(), found);
  }
  static std::vector<Row> Table() {
    const auto rows = TableOfPage("menus.md", "| menu | item |");
    return {rows.begin(), rows.end()};
  }
  std::vector<std::pair<std::string, QAction*>> All() const {
    std::vector<std::pair<std::string, QAction*>> found;
    Walk("", window->menuBar()->actions(), found);
    return found;
  }
  QAction* Item(const std::string& text) const {
    for (const auto& [menu, action] : All())
      if (Plain(action->text()) == text) return action;
    return nullptr;
  }
};

TEST_F(SetMenusTest, EveryItemIsAsTheTableSays) {
  context.RunMessages();
  std::vector<uint32> chosen;
  std::set<std::pair<std::string, QChar>> mnemonics;
  auto* menus = window->findChild<EventSetMenus*>();
  // Only watched here: what the commands do is shown elsewhere.
  QObject::disconnect(menus, &EventSetMenus::Chosen, window, nullptr);
  QObject::connect(menus, &EventSetMenus::Chosen,
                   [&](uint32 command) { chosen.push_back(command); });
  const auto all = All();
  const std::vector<Row> table = Table();
  ASSERT_EQ(all.size(), table.size());
  for (size_t i = 0; i < all.size(); ++i) {
    const Row& row = table[i];
    QAction& item = *all[i].second;
    SCOPED_TRACE(row.text);
    EXPECT_EQ(all[i].first, row.menu);
    EXPECT_EQ(item.isSeparator(), row.text.empty());
    if (item.isSeparator()) continue;
    const QString text = item.text();
    EXPECT_EQ(Plain(text), row.text);
    ASSERT_GE(text.indexOf('&'), 0);
    EXPECT_TRUE(mnemonics.emplace(row.menu, text[text.indexOf('&') + 1].toLower()).second);
    EXPECT_EQ(item.shortcut().toString().toStdString(), row.shortcut);
    EXPECT_EQ(item.isEnabled(), row.state.empty() || row.state.ends_with("ticked"));
    EXPECT_EQ(item.toolTip().contains("yet"), row.state == "of no use yet") << "and says why";
    EXPECT_EQ(item.isChecked(), row.state == "ticked");
    if (row.goes.empty()) continue;
    item.setEnabled(true);
    item.trigger();
    const std::vector<uint32> expected = {row.command}, none;
    EXPECT_EQ(std::exchange(chosen, {}), row.goes == "window" ? expected : none);
    EXPECT_EQ(context.RunMessages(), row.goes == "application" ? expected : none);
  }
}

TEST_F(SetMenusTest, ASelectedEventEnablesWhatWorksOnIt) {
  set.AddEvent(nullptr);
  for (const bool selected : {true, false}) {
    if (selected)
      window->GetEventsView()->SelectEvents({set.Events()[0].get()});
    else
      window->GetEventsView()->clearSelection();
    for (const Row& row : Table())
      EXPECT_TRUE(row.state != "with a selection" || Item(row.text)->isEnabled() == selected)
          << row.text;
  }
}

TEST_F(SetMenusTest, DisplayItemsFlipTheirColumnsAndTheSetRemembersThem) {
  ListEventView& list = *window->GetEventsView();
  const std::vector<std::pair<const char*, Columns>> rows = {{"Event icons", IconColumn},
                                                             {"Event time", EventTimeColumn},
                                                             {"Next message time", NextTimeColumn},
                                                             {"Selected handler", HandlerColumn},
                                                             {"Event status", StatusColumn}};
  for (const auto& [text, column] : rows) {
    SCOPED_TRACE(text);
    const bool before = set.Layout().ColumnShown[column];
    for (const bool now : {!before, before}) {
      Item(text)->trigger();
      EXPECT_EQ(set.Layout().ColumnShown[column], now);
      EXPECT_EQ(Item(text)->isChecked(), now);
      EXPECT_EQ(list.isColumnHidden(column), !now);
    }
  }
  list.SetColumnShown(NameColumn, false);
  for (const auto& [text, column] : rows)
    if (Item(text)->isChecked()) Item(text)->trigger();
  EXPECT_FALSE(list.isColumnHidden(NameColumn)) << "one is always shown";
  EXPECT_FALSE(set.HasBeenModified());
}

TEST_F(SetMenusTest, AViewModeThatNoViewShowsIsMarkedUntilTheListIsChosen) {
  window->CloseNow();
  EventSet& week = context.NewSet("/sets/Week.kestrin");
  week.Layout().ViewMode = 2;
  window = &context.OpenWindow(week);
  EXPECT_TRUE(Item("Week")->isChecked());
  EXPECT_TRUE(window->GetEventsView()->isVisible());
  Item("List")->trigger();
  EXPECT_TRUE(Item("List")->isChecked() && !Item("Week")->isChecked());
  EXPECT_EQ(week.Layout().ViewMode, 0);
}

TEST_F(SetMenusTest, RowsTheEmptyPartAndTheHeaderHaveMenusOfTheirOwn) {
  set.AddEvent(nullptr)->SetName("Tea");
  ListEventView& list = *window->GetEventsView();
  list.SelectEvents({set.Events()[0].get()});
  const auto menuAt = [](QWidget* widget, const QPoint& at) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, widget->mapToGlobal(at));
    QApplication::sendEvent(widget, &event);
    QWidget* const popup = QApplication::activePopupWidget();
    std::vector<std::string> texts;
    if (!popup) return texts;
    for (const QAction* action : popup->actions())
      if (!action->isSeparator()) texts.push_back(Plain(action->text()));
    popup->close();
    return texts;
  };
  const QPoint row = list.visualRect(list.currentIndex()).center();
  EXPECT_THAT(menuAt(list.viewport(), row),
              ElementsAre("Edit event…", "Cut", "Copy", "Paste", "Duplicate event", "Activate",
                          "Deactivate", "Delete event"));
  EXPECT_THAT(menuAt(list.viewport(), QPoint(10, list.viewport()->height() - 2)),
              ElementsAre("New event…", "Paste"));
  EXPECT_THAT(menuAt(list.header()->viewport(), QPoint(10, 5)),
              ElementsAre("Event icons", "Event time", "Next message time", "Selected handler",
                          "Event status"));
}

}  // namespace
}  // namespace kestrin
