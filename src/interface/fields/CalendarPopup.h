// A month to pick a day from, over the window that asks for it.
#pragma once

#include <QFrame>

class QCalendarWidget;
class QDate;

namespace kestrin {

/// Offers the days that a repeating event can keep; weeks begin as the region's do. A click or
/// Return picks one, Escape none; either closes and deletes it.
class CalendarPopup final : public QFrame {
  Q_OBJECT

 public:
  CalendarPopup(const QDate& day, QWidget* parent);

  void OpenBelow(const QWidget& field);

 signals:
  void Picked(const QDate& day);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Pick(const QDate& day);

  QCalendarWidget* calendar_;
};

}  // namespace kestrin
