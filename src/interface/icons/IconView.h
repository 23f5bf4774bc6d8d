// An event's large icon, and the ways to another one.
#pragma once

#include <QPointer>
#include <QToolButton>

#include "interface/common/FilePanels.h"
#include "interface/icons/IconGrid.h"

class QFileDialog;

namespace kestrin {

class Event;
class IconMenu;
class IconPanel;

/// Opens a menu of icons when it is pressed. An image file that is chosen or dropped on it becomes
/// the event's own icon and one of the user's; one that cannot be read is reported.
class IconView final : public QToolButton {
  Q_OBJECT

 public:
  explicit IconView(Event& event, QWidget* parent = nullptr);

  void ShowEvent();
  /// The event may go: what was opened from here closes, and the event is asked no more.
  void Forget();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void OpenMenu();
  void OpenFilePanel();
  void OpenOwnFilePanel();
  void OpenPanel();
  IconChoice Now() const;
  void Choose(const IconChoice& choice);
  void Import(const QString& path);

  Event* event_;
  QPointer<IconMenu> menu_;
  DesktopPanel desktopPanel_;
  QPointer<QFileDialog> filePanel_;
  QPointer<IconPanel> panel_;
};

}  // namespace kestrin
