// The pop-up in which an event's icon is chosen.
#pragma once

#include <QFrame>

#include "interface/icons/IconGrid.h"

class QBoxLayout;

namespace kestrin {

/// Deletes itself once it is closed.
class IconMenu final : public QFrame {
  Q_OBJECT

 public:
  IconMenu(KestrinSettings& settings, const IconChoice& now, QWidget* parent);

  /// Below the widget, on its screen.
  void OpenAt(const QWidget& widget);

 signals:
  void Chosen(const IconChoice& choice);
  void FileWanted();
  void PanelWanted();

 private:
  void AddButton(QBoxLayout& column, const char* objectName, const QString& label,
                 const std::function<void()>& act);

  IconGrid* icons_;
};

}  // namespace kestrin
