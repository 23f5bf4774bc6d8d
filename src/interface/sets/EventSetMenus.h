// The menus of an event set window.
#pragma once

#include <QObject>
#include <array>
#include <optional>
#include <vector>

#include "interface/list/EventOrder.h"

class QAction;
class QMenu;
class QMenuBar;

namespace kestrin {

class MessageQueue;
struct Context;
struct SetLayout;

/// Each item is a command: a number that goes to the window or, as a message, to the application.
class EventSetMenus final : public QObject {
  Q_OBJECT

 public:
  /// The recent sets are looked for whenever the menu opens.
  EventSetMenus(QMenuBar& bar, Context& context);

  /// Marks the view mode and the shown columns.
  void ShowLayout(const SetLayout& layout);
  /// Marks whether the set is remembered for delivery.
  void ShowRemembered(bool remembered);
  void EnableForSelection(bool selected);
  /// What would be taken back and what done again, as phrases; empty for nothing.
  void ShowSteps(const QString& undo, const QString& redo);
  /// Has the keys that mean something to the list alone work there.
  void AddListKeys(QWidget& list);

  /// Of a row, of the list's empty part, and of its header.
  QMenu& RowMenu() const { return *rowMenu_; }
  QMenu& EmptyMenu() const { return *emptyMenu_; }
  QMenu& DisplayMenu() const { return *displayMenu_; }

  /// The column that a Display command shows or hides.
  static std::optional<Columns> ColumnOf(uint32 command);

 signals:
  void Chosen(kestrin::uint32 command);
  void ViewModeChosen(kestrin::int32 mode);

 private:
  struct Item;
  void AddMenu(QMenuBar& bar, const char* title, const std::vector<Item>& items);
  void AddItem(QMenu& menu, const Item& item);
  void AddViewMenu(QMenuBar& bar);
  void AddRecentMenu(QMenu& file);
  void ShowRecent();
  void AddContextMenus(QMenuBar& bar);
  void ShowStep(uint32 command, const QString& word, const QString& phrase);
  QAction* Find(uint32 command) const;

  Context& context_;
  MessageQueue& application_;
  std::vector<QAction*> actions_;
  std::array<QAction*, 4> modes_{};
  QMenu* recentMenu_ = nullptr;
  QMenu* displayMenu_ = nullptr;
  QMenu* rowMenu_ = nullptr;
  QMenu* emptyMenu_ = nullptr;
};

}  // namespace kestrin
