#include "interface/sets/EventSetMenus.h"

#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>

#include "core/events/EventSet.h"
#include "core/loop/AppMessages.h"
#include "core/loop/MessageQueue.h"
#include "core/settings/KestrinSettings.h"
#include "interface/common/ShownText.h"
#include "interface/sets/SetCommands.h"
#include "support/FileDoor.h"

namespace kestrin {

namespace {

constexpr uint32 Separator = 0;

// Why items that are there do nothing.
constexpr char NoPrinting[] = "Kestrin cannot print yet";
constexpr char NoSuchView[] = "Kestrin shows sets as lists only, as yet";

QKeySequence Ctrl(Qt::Key key) { return {Qt::CTRL | key}; }
QKeySequence CtrlShift(Qt::Key key) { return {Qt::CTRL | Qt::SHIFT | key}; }

}  // namespace

struct EventSetMenus::Item {
  enum Target { Window, Application };

  const char* text = nullptr;
  QKeySequence shortcut;
  uint32 command = Separator;
  Target target = Window;
  bool enabled = true;
  const char* tip = "";  ///< why it does nothing
};

EventSetMenus::EventSetMenus(QMenuBar& bar, Context& context)
    : QObject(&bar), context_(context), application_(context.queue) {
  AddMenu(bar, "&File",
          {{"&New event set", Ctrl(Qt::Key_N), NEW_EVENT_SET, Item::Application},
           {"&Open…", Ctrl(Qt::Key_O), OPEN_EVENT_SET, Item::Application},
           {},
           {"&Save", Ctrl(Qt::Key_S), SAVE_SET},
           {"Save &as…", {}, SAVE_SET_AS},
           {"&Remember for delivery", {}, REMEMBER_SET},
           {},
           {"Page set&up...", {}, PAGE_SETUP, Item::Window, false, NoPrinting},
           {"Pr&int event set...", {}, PRINT_SET, Item::Window, false, NoPrinting},
           {"Print selected &event...", {}, PRINT_EVENT, Item::Window, false, NoPrinting},
           {},
           {"Histor&y…", {}, SHOW_HISTORY, Item::Application},
           {"Se&ttings…", {}, OPEN_SETTINGS_WINDOW, Item::Application},
           {"A&bout…", {}, ABOUT_REQUESTED, Item::Application},
           {"&Help…", Ctrl(Qt::Key_H), HELP_REQUESTED, Item::Application},
           {},
           {"&Close", Ctrl(Qt::Key_W), QUIT_REQUESTED},
           {"&Quit to background", Ctrl(Qt::Key_Q), QUIT_REQUESTED, Item::Application},
           {"&Full quit", CtrlShift(Qt::Key_Q), FULL_QUIT_REQUESTED, Item::Application}});
  AddMenu(bar, "&Edit",
          {{"Cu&t", Ctrl(Qt::Key_X), CUT_EVENT, Item::Window, false},
           {"&Copy", Ctrl(Qt::Key_C), COPY_EVENT, Item::Window, false},
           {"&Paste", Ctrl(Qt::Key_V), PASTE_EVENT},
           {},
           {"&Undo", Ctrl(Qt::Key_Z), UNDO_EDIT, Item::Window, false},
           {"&Redo", CtrlShift(Qt::Key_Z), REDO_EDIT, Item::Window, false}});
  AddMenu(bar, "Eve&nt",
          {{"&New event…", CtrlShift(Qt::Key_N), NEW_EVENT},
           {"&Edit event…", Ctrl(Qt::Key_E), EDIT_EVENT, Item::Window, false},
           {"&Delete event", Qt::Key_Delete, DELETE_EVENT, Item::Window, false},
           {},
           {"D&uplicate event", Ctrl(Qt::Key_D), DUPLICATE_EVENT, Item::Window, false},
           {"&Rename event", Qt::Key_F2, RENAME_EVENT, Item::Window, false},
           {"&Activate", {}, ACTIVATE_EVENT, Item::Window, false},
           {"Dea&ctivate", {}, DEACTIVATE_EVENT, Item::Window, false},
           {},
           {"Delete &finished events", {}, DELETE_FINISHED}});
  AddViewMenu(bar);
  AddContextMenus(bar);
}

void EventSetMenus::AddMenu(QMenuBar& bar, const char* title, const std::vector<Item>& items) {
  QMenu* menu = bar.addMenu(title);
  menu->setToolTipsVisible(true);
  for (const Item& item : items) AddItem(*menu, item);
}

void EventSetMenus::AddItem(QMenu& menu, const Item& item) {
  if (item.command == Separator) {
    menu.addSeparator();
    return;
  }
  QAction* action = menu.addAction(item.text);
  action->setShortcut(item.shortcut);
  action->setEnabled(item.enabled);
  action->setToolTip(item.tip);
  const uint32 command = item.command;
  if (item.target == Item::Application) {
    connect(action, &QAction::triggered, this,
            [this, command] { application_.Post(Message(command)); });
    if (command == OPEN_EVENT_SET) AddRecentMenu(menu);
    return;
  }
  action->setCheckable(command == REMEMBER_SET);
  action->setData(command);
  actions_.push_back(action);
  connect(action, &QAction::triggered, this, [this, command] { emit Chosen(command); });
}

void EventSetMenus::AddViewMenu(QMenuBar& bar) {
  QMenu* view = bar.addMenu("&View");
  QMenu* modeMenu = view->addMenu("View &mode");
  modeMenu->setToolTipsVisible(true);
  auto* group = new QActionGroup(this);
  const char* const names[] = {"&List", "&Calendar", "&Week", "&Day"};
  for (size_t mode = 0; mode < modes_.size(); ++mode) {
    QAction* action = modes_[mode] = modeMenu->addAction(names[mode]);
    action->setCheckable(true);
    action->setEnabled(mode == 0);
    action->setToolTip(mode == 0 ? "" : NoSuchView);
    group->addAction(action);
    connect(action, &QAction::triggered, this,
            [this, mode] { emit ViewModeChosen(static_cast<int32>(mode)); });
  }
  displayMenu_ = view->addMenu("&Display");
  for (const Item& item : std::vector<Item>{{"Event &icons", {}, SHOW_ICONS},
                                            {"Event &time", {}, SHOW_EVENT_TIME},
                                            {"&Next message time", {}, SHOW_NEXT_TIME},
                                            {"Selected &handler", {}, SHOW_HANDLER},
                                            {"Event &status", {}, SHOW_STATUS}}) {
    AddItem(*displayMenu_, item);
    actions_.back()->setCheckable(true);
  }
}

void EventSetMenus::AddRecentMenu(QMenu& file) {
  recentMenu_ = file.addMenu("O&pen recent");
  recentMenu_->setObjectName("recentSets");
  recentMenu_->setToolTipsVisible(true);
  connect(&file, &QMenu::aboutToShow, this, &EventSetMenus::ShowRecent);
  ShowRecent();
}

/// Those whose files are there.
void EventSetMenus::ShowRecent() {
  constexpr int mostDigits = 9;
  std::vector<std::string> paths;
  {
    const AutoLock lock(context_.settings.Protect);
    paths = context_.settings.RecentSets;
  }
  std::erase_if(paths, [this](const std::string& path) {
    return context_.files.Kind(path) != FileKind::Regular;
  });
  recentMenu_->clear();
  for (const std::string& path : paths) {
    const int number = static_cast<int>(recentMenu_->actions().size()) + 1;
    const QString name = ShownLine(EventSet::LeafOf(path)).replace("&", "&&");
    QAction* action = recentMenu_->addAction(
        (number > mostDigits ? QString() : QString("&%1  ").arg(number)) + name);
    action->setToolTip(ShownLine(path).toHtmlEscaped());
    connect(action, &QAction::triggered, this,
            [this, path] { application_.Post(OpenFiles({path})); });
  }
  recentMenu_->setEnabled(!paths.empty());
}

void EventSetMenus::AddContextMenus(QMenuBar& bar) {
  rowMenu_ = new QMenu(&bar);
  rowMenu_->setObjectName("rowMenu");
  rowMenu_->addAction(Find(EDIT_EVENT));
  rowMenu_->addSeparator();
  rowMenu_->addActions({Find(CUT_EVENT), Find(COPY_EVENT), Find(PASTE_EVENT)});
  rowMenu_->addSeparator();
  rowMenu_->addActions({Find(DUPLICATE_EVENT), Find(ACTIVATE_EVENT), Find(DEACTIVATE_EVENT)});
  rowMenu_->addSeparator();
  rowMenu_->addAction(Find(DELETE_EVENT));
  emptyMenu_ = new QMenu(&bar);
  emptyMenu_->setObjectName("emptyMenu");
  emptyMenu_->addActions({Find(NEW_EVENT), Find(PASTE_EVENT)});
}

QAction* EventSetMenus::Find(uint32 command) const {
  for (QAction* action : actions_)
    if (action->data().toUInt() == command) return action;
  return nullptr;
}

std::optional<Columns> EventSetMenus::ColumnOf(uint32 command) {
  switch (command) {
    case SHOW_ICONS:
      return IconColumn;
    case SHOW_NAME:
      return NameColumn;
    case SHOW_STATUS:
      return StatusColumn;
    case SHOW_EVENT_TIME:
      return EventTimeColumn;
    case SHOW_NEXT_TIME:
      return NextTimeColumn;
    case SHOW_HANDLER:
      return HandlerColumn;
    default:
      return std::nullopt;
  }
}

void EventSetMenus::ShowLayout(const SetLayout& layout) {
  for (size_t mode = 0; mode < modes_.size(); ++mode)
    if (layout.ViewMode == static_cast<int32>(mode)) modes_[mode]->setChecked(true);
  for (QAction* action : actions_)
    if (const auto column = ColumnOf(action->data().toUInt()))
      action->setChecked(layout.ColumnShown[static_cast<size_t>(*column)]);
}

void EventSetMenus::ShowRemembered(bool remembered) { Find(REMEMBER_SET)->setChecked(remembered); }

void EventSetMenus::EnableForSelection(bool selected) {
  for (const uint32 command : {CUT_EVENT, COPY_EVENT, EDIT_EVENT, DELETE_EVENT, DUPLICATE_EVENT,
                               RENAME_EVENT, ACTIVATE_EVENT, DEACTIVATE_EVENT})
    Find(command)->setEnabled(selected);
}

void EventSetMenus::ShowStep(uint32 command, const QString& word, const QString& phrase) {
  QAction& item = *Find(command);
  item.setText(phrase.isEmpty() ? word : word + ' ' + WithoutMnemonic(phrase));
  item.setEnabled(!phrase.isEmpty());
}

void EventSetMenus::ShowSteps(const QString& undo, const QString& redo) {
  ShowStep(UNDO_EDIT, "&Undo", undo);
  ShowStep(REDO_EDIT, "&Redo", redo);
}

void EventSetMenus::AddListKeys(QWidget& list) {
  for (const uint32 command : {DELETE_EVENT, RENAME_EVENT}) {
    Find(command)->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    list.addAction(Find(command));
  }
}

}  // namespace kestrin
