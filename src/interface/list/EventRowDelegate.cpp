#include "interface/list/EventRowDelegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QIcon>
#include <QLineEdit>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>
#include <algorithm>

#include "interface/list/EventListModel.h"
#include "support/Bitmap.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

constexpr int LowestRow = 20, RoomAroundText = 6;

/// Text that stands back, but can still be read on either ground.
QColor Dimmed(const QPalette& palette) {
  constexpr float Share = 0.42F;
  const QColor text = palette.color(QPalette::Text), base = palette.color(QPalette::Base);
  const auto mixed = [](float a, float b) { return a + (b - a) * Share; };
  return QColor::fromRgbF(mixed(text.redF(), base.redF()), mixed(text.greenF(), base.greenF()),
                          mixed(text.blueF(), base.blueF()));
}

}  // namespace

void EventRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
  QStyleOptionViewItem item = option;
  initStyleOption(&item, index);
  const auto icon = index.data(Qt::DecorationRole).value<QIcon>();
  item.features &= ~QStyleOptionViewItem::HasDecoration;
  item.icon = {};
  const bool isDimmed = index.data(EventListModel::DimmedRole).toBool();
  if (isDimmed) item.palette.setColor(QPalette::Text, Dimmed(item.palette));
  item.widget->style()->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
  if (icon.isNull()) return;
  QRect place(0, 0, MiniIconSize, MiniIconSize);
  place.moveCenter(option.rect.center());
  icon.paint(painter, place, Qt::AlignCenter, isDimmed ? QIcon::Disabled : QIcon::Normal);
}

QWidget* EventRowDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                        const QModelIndex&) const {
  auto* name = new QLineEdit(parent);
  name->setObjectName("rename");
  name->setAccessibleName("Name");
  name->setMaxLength(TextLimit - 1);
  return name;
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
