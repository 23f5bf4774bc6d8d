// Every menu item of an event set window: its text, place, shortcut, state, and where it goes.
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <set>

#include "harness/AppOnScreen.h"
#include "interface/sets/EventSetMenus.h"

namespace kestrin {
namespace {

using testing::ElementsAre;

enum Goes { Nowhere, ToWindow, ToApplication };
enum State { Disabled, Idle, Enabled, WithSelection, Ticked, Unticked };  // Idle: of no use yet

struct Row {
  const char* menu;
  const char* text;  ///< "" for a separator
  const char* shortcut = "";
  uint32 command = 0;
  Goes goes = Nowhere;
  State state = Enabled;
};

constexpr uint32 Code(const char (&text)[5]) { return FourCharCode(text); }

const Row Table[] = {
    {"", "File"},
    {"", "Edit"},
    {"", "Event"},
    {"", "View"},
    {"File", "New event set", "Ctrl+N", 1, ToApplication},
    {"File", "Open…", "Ctrl+O", 2, ToApplication},
    {"File", "Open recent", "", 0, Nowhere, Disabled},
    {"File", ""},
    {"File", "Save", "Ctrl+S", Code("SAVE"), ToWindow},
    {"File", "Save as…", "", 10, ToWindow},
    {"File", "Remember for delivery", "", 11, ToWindow, Unticked},
    {"File", ""},
    {"File", "Page setup...", "", 12, ToWindow, Idle},
    {"File", "Print event set...", "", 13, ToWindow, Idle},
    {"File", "Print selected event...", "", 14, ToWindow, Idle},
    {"File", ""},
    {"File", "History…", "", Code("Hist"), ToApplication},
    {"File", "Settings…", "", 3, ToApplication},
    {"File", "About…", "", Code("_ABR"), ToApplication},
    {"File", "Help…", "Ctrl+H", 5, ToApplication},
    {"File", ""},
    {"File", "Close", "Ctrl+W", Code("_QRQ"), ToWindow},
    {"File", "Quit to background", "Ctrl+Q", Code("_QRQ"), ToApplication},
    {"File", "Full quit", "Ctrl+Shift+Q", 4, ToApplication},
    {"Edit", "Cut", "Ctrl+X", Code("CCUT"), ToWindow, WithSelection},
    {"Edit", "Copy", "Ctrl+C", Code("COPY"), ToWindow, WithSelection},
    {"Edit", "Paste", "Ctrl+V", Code("PSTE"), ToWindow},
    {"Edit", ""},
    {"Edit", "Undo", "Ctrl+Z", Code("UNDO"), ToWindow, Disabled},
    {"Edit", "Redo", "Ctrl+Shift+Z", Code("REDO"), ToWindow, Disabled},
    {"Event", "New event…", "Ctrl+Shift+N", 15, ToWindow},
    {"Event", "Edit event…", "Ctrl+E", 17, ToWindow, WithSelection},
    {"Event", "Delete event", "Del", 18, ToWindow, WithSelection},
    {"Event", ""},
    {"Event", "Duplicate event", "Ctrl+D", Code("DUPL"), ToWindow, WithSelection},
    {"Event", "Rename event", "F2", Code("RENA"), ToWindow, WithSelection},
    {"Event", "Activate", "", Code("ACTV"), ToWindow, WithSelection},
    {"Event", "Deactivate", "", Code("DACT"), ToWindow, WithSelection},
    {"Event", ""},
    {"Event", "Delete finished events", "", Code("DFIN"), ToWindow},
    {"View", "View mode"},
    {"View", "Display"},
    {"View mode", "List", "", 0, Nowhere, Ticked},
    {"View mode", "Calendar", "", 0, Nowhere, Idle},
    {"View mode", "Week", "", 0, Nowhere, Idle},
    {"View mode", "Day", "", 0, Nowhere, Idle},
    {"Display", "Event icons", "", 20, ToWindow, Ticked},
    {"Display", "Event time", "", 23, ToWindow, Ticked},
    {"Display", "Next message time", "", 24, ToWindow, Unticked},
    {"Display", "Selected handler", "", 25, ToWindow, Ticked},
    {"Display", "Event status", "", 22, ToWindow, Ticked},
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
  ASSERT_EQ(all.size(), std::size(Table));
  for (size_t i = 0; i < all.size(); ++i) {
    const Row& row = Table[i];
    QAction& item = *all[i].second;
    SCOPED_TRACE(row.text);
    EXPECT_EQ(all[i].first, row.menu);
    EXPECT_EQ(item.isSeparator(), *row.text == '\0');
    if (item.isSeparator()) continue;
    const QString text = item.text();
    EXPECT_EQ(Plain(text), row.text);
    ASSERT_GE(text.indexOf('&'), 0);
    EXPECT_TRUE(mnemonics.emplace(row.menu, text[text.indexOf('&') + 1].toLower()).second);
    EXPECT_EQ(item.shortcut().toString().toStdString(), row.shortcut);
    EXPECT_EQ(item.isEnabled(), row.state > Idle && row.state != WithSelection);
    EXPECT_EQ(item.toolTip().contains("yet"), row.state == Idle) << "and says why";
    EXPECT_EQ(item.isChecked(), row.state == Ticked);
    if (row.goes == Nowhere) continue;
    item.setEnabled(true);
    item.trigger();
    const std::vector<uint32> expected = {row.command}, none;
    EXPECT_EQ(std::exchange(chosen, {}), row.goes == ToWindow ? expected : none);
    EXPECT_EQ(context.RunMessages(), row.goes == ToApplication ? expected : none);
  }
}

TEST_F(SetMenusTest, ASelectedEventEnablesWhatWorksOnIt) {
  set.AddEvent(nullptr);
  for (const bool selected : {true, false}) {
    if (selected)
      window->GetEventsView()->SelectEvents({set.Events()[0].get()});
    else
      window->GetEventsView()->clearSelection();
    for (const Row& row : Table)
      EXPECT_TRUE(row.state != WithSelection || Item(row.text)->isEnabled() == selected)
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
