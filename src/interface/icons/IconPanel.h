// A small window with all icons, which stays open while icons are handed out.
#pragma once

#include <QWidget>

#include "interface/icons/IconGrid.h"

namespace kestrin {

/// Belongs to the window of the event that its icons are for; a click sets the icon, and icons can
/// be dragged to other events' editors. Only one stands open; where it stands is kept in the
/// settings. No set may be locked when it opens or is deleted. Deletes itself once it is closed.
class IconPanel final : public QWidget {
  Q_OBJECT

 public:
  IconPanel(KestrinSettings& settings, const IconChoice& now, QWidget* owner);

  /// Closes the one that stands open and opens this one.
  void Open();
  /// Brings a panel that stands open in step with the settings.
  static void IconsChanged();

 signals:
  void Chosen(const IconChoice& choice);
  void FileWanted();

 protected:
  void moveEvent(QMoveEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  static IconPanel* Opened();

  KestrinSettings& settings_;
  IconGrid* icons_;
  IconChoice now_;
};

}  // namespace kestrin
