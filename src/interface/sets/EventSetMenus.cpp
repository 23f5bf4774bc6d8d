#include "interface/sets/EventSetMenus.h"

#include <QMenu>
#include <QMenuBar>

#include "core/MessageQueue.h"

namespace kestrin {

struct EventSetMenus::Item {
  enum Target { Window, Application };

  const char* text;
  QKeySequence shortcut;
  uint32 command;
  Target target;
};

EventSetMenus::EventSetMenus(QMenuBar& bar, MessageQueue& application)
    : QObject(&bar), application_(application) {
  AddMenu(bar, "&File",
          {{"&Close", QKeySequence(Qt::CTRL | Qt::Key_W), QUIT_REQUESTED, Item::Window},
           {"&Quit to background", QKeySequence(Qt::CTRL | Qt::Key_Q), QUIT_REQUESTED,
            Item::Application},
           {"&Full quit", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Q), FULL_QUIT_REQUESTED,
            Item::Application}});
}

void EventSetMenus::AddMenu(QMenuBar& bar, const char* title, const std::vector<Item>& items) {
  QMenu* menu = bar.addMenu(title);
  for (const Item& item : items) {
    QAction* action = menu->addAction(item.text);
    action->setShortcut(item.shortcut);
    const uint32 command = item.command;
    if (item.target == Item::Window)
      connect(action, &QAction::triggered, this, [this, command] { emit Chosen(command); });
    else
      connect(action, &QAction::triggered, this,
              [this, command] { application_.Post(Message(command)); });
  }
}

}  // namespace kestrin
