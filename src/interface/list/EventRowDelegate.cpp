#include "interface/list/EventRowDelegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QIcon>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>
#include <algorithm>

#include "support/Bitmap.h"

namespace kestrin {

namespace {

constexpr int LowestRow = 20, RoomAroundText = 6;

}  // namespace

void EventRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
  QStyleOptionViewItem item = option;
  initStyleOption(&item, index);
  const auto icon = index.data(Qt::DecorationRole).value<QIcon>();
  item.features &= ~QStyleOptionViewItem::HasDecoration;
  item.icon = {};
  item.widget->style()->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
  if (icon.isNull()) return;
  QRect place(0, 0, MiniIconSize, MiniIconSize);
  place.moveCenter(option.rect.center());
  icon.paint(painter, place);
}

QSize EventRowDelegate::sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
  const int width = QStyledItemDelegate::sizeHint(option, index).width();
  return {width, std::max(LowestRow, option.fontMetrics.height() + RoomAroundText)};
}

bool EventRowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                 const QStyleOptionViewItem& option, const QModelIndex& index) {
  if (event->type() != QEvent::ToolTip)
    return QStyledItemDelegate::helpEvent(event, view, option, index);
  const QString text = index.data(Qt::DisplayRole).toString();
  const bool isCut = sizeHint(option, index).width() > view->visualRect(index).width();
  // Escaped, because a tool tip takes what looks like HTML for it.
  QToolTip::showText(event->globalPos(), isCut ? Qt::convertFromPlainText(text) : QString(), view);
  return true;
}

}  // namespace kestrin
