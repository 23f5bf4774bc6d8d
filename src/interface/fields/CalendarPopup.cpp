#include "interface/fields/CalendarPopup.h"

#include <QCalendarWidget>
#include <QKeyEvent>
#include <QLocale>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "interface/fields/Region.h"

namespace kestrin {

CalendarPopup::CalendarPopup(const QDate& day, QWidget* parent)
    : QFrame(parent, Qt::Popup), calendar_(new QCalendarWidget) {
  setAttribute(Qt::WA_DeleteOnClose);
  setFrameShape(QFrame::StyledPanel);
  calendar_->setObjectName("calendar");
  calendar_->setAccessibleName("Calendar");
  calendar_->setLocale(QLocale(QLocale::English));  // as all the program's texts
  calendar_->setFirstDayOfWeek(RegionOf(*parent).firstDayOfWeek());
  calendar_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  // A day within these is one in every zone.
  calendar_->setDateRange(QDate(1901, 12, 15), QDate(2038, 1, 18));
  calendar_->setSelectedDate(day);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(calendar_);
  setFocusProxy(calendar_);
  connect(calendar_, &QCalendarWidget::clicked, this, &CalendarPopup::Pick);
  connect(calendar_, &QCalendarWidget::activated, this, &CalendarPopup::Pick);
}

void CalendarPopup::OpenBelow(const QWidget& field) {
  adjustSize();
  const QRect room = field.screen()->availableGeometry();
  QPoint corner = field.mapToGlobal(QPoint(0, field.height()));
  if (corner.y() + height() > room.bottom())
    corner.setY(field.mapToGlobal(QPoint()).y() - height());
  corner.setX(std::clamp(corner.x(), room.left(), std::max(room.left(), room.right() - width())));
  corner.setY(std::max(corner.y(), room.top()));
  move(corner);
  show();
  calendar_->setFocus();
}

void CalendarPopup::Pick(const QDate& day) {
  if (isHidden()) return;  // a double click picks once
  close();
  emit Picked(day);
}

void CalendarPopup::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    close();
  else
    QFrame::keyPressEvent(event);
}

}  // namespace kestrin
