#include "interface/list/SortHeader.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionHeader>
#include <algorithm>

#include "core/settings/SetLayout.h"

namespace kestrin {

namespace {

constexpr int ArrowWidth = 8, ArrowHeight = 4, MarkGap = 4, MarkMargin = 5;
constexpr int WidthStep = 10;

}  // namespace

SortHeader::SortHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsMovable(true);
  setHighlightSections(false);
  setStretchLastSection(false);
  setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  setTextElideMode(Qt::ElideRight);
  setFocusPolicy(Qt::TabFocus);
  connect(this, &QHeaderView::sectionClicked, this, &SortHeader::Clicked);
  // The second of two quick clicks comes as this.
  connect(this, &QHeaderView::sectionDoubleClicked, this, &SortHeader::Clicked);
}

void SortHeader::SetKeys(std::vector<SortKey> keys) {
  keys_ = std::move(keys);
  viewport()->update();
}

void SortHeader::mouseReleaseEvent(QMouseEvent* event) {
  withShift_ = event->modifiers().testFlag(Qt::ShiftModifier);
  QHeaderView::mouseReleaseEvent(event);
}

void SortHeader::mouseDoubleClickEvent(QMouseEvent* event) {
  withShift_ = event->modifiers().testFlag(Qt::ShiftModifier);
  QHeaderView::mouseDoubleClickEvent(event);
}

void SortHeader::Clicked(int column) {
  if (std::find(sortable_.begin(), sortable_.end(), column) == sortable_.end()) return;
  const int rank = RankOf(column);
  if (rank >= 0 && (withShift_ || keys_.size() == 1)) {
    SortKey& key = keys_[static_cast<size_t>(rank)];
    key.descending = !key.descending;
  } else if (!withShift_) {
    keys_ = {{column, false}};
  } else if (keys_.size() < MaxSortKeys) {
    keys_.push_back({column, false});
  }
  viewport()->update();
  emit SortingChanged();
}

void SortHeader::focusInEvent(QFocusEvent* event) {
  QHeaderView::focusInEvent(event);
  const bool isShown = reached_ >= 0 && !isSectionHidden(reached_);
  Reach(isShown ? reached_ : NextShown(-1, 1));
}

/// -1 starts before the first column, or after the last one, and is what there is at the other
/// end.
int SortHeader::NextShown(int column, int direction) const {
  int place = column >= 0 ? visualIndex(column) : direction > 0 ? -1 : count();
  do place += direction;
  while (place >= 0 && place < count() && isSectionHidden(logicalIndex(place)));
  return logicalIndex(place);
}

void SortHeader::Reach(int column) {
  if (column < 0) return;
  reached_ = column;
  QString told = model()->headerData(column, orientation(), Qt::AccessibleTextRole).toString();
  if (const int rank = RankOf(column); rank >= 0)
    told += QStringLiteral(", sort key %1, %2")
                .arg(rank + 1)
                .arg(keys_[static_cast<size_t>(rank)].descending ? "descending" : "ascending");
  setAccessibleDescription(told);
  viewport()->update();
  emit ColumnReached(column);
}

void SortHeader::StepTo(int direction, Qt::KeyboardModifiers modifiers) {
  const int next = NextShown(reached_, direction);
  if (modifiers.testFlag(Qt::ShiftModifier)) {
    if (reached_ >= 0 && sectionResizeMode(reached_) != Fixed)
      resizeSection(reached_,
                    std::max(minimumSectionSize(), sectionSize(reached_) + direction * WidthStep));
  } else if (!modifiers.testFlag(Qt::ControlModifier)) {
    Reach(next);
  } else if (next >= 0) {
    moveSection(visualIndex(reached_), visualIndex(next));
    Reach(reached_);
  }
}

void SortHeader::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
      StepTo(event->key() == Qt::Key_Right ? 1 : -1, event->modifiers());
      return;
    case Qt::Key_Home:
    case Qt::Key_End:
      Reach(NextShown(-1, event->key() == Qt::Key_Home ? 1 : -1));
      return;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      withShift_ = event->modifiers().testFlag(Qt::ShiftModifier);
      Clicked(reached_);
      Reach(reached_);
      return;
    default:  // what keys do to the rows is for when the list has the focus
      return;
  }
}

int SortHeader::RankOf(int column) const {
  const auto found = std::find_if(keys_.begin(), keys_.end(),
                                  [column](const SortKey& key) { return key.column == column; });
  return found == keys_.end() ? -1 : static_cast<int>(found - keys_.begin());
}

int SortHeader::MarkWidth(int column) const {
  if (RankOf(column) < 0) return 0;
  const int digit = keys_.size() > 1 ? fontMetrics().horizontalAdvance(u'0') + 1 : 0;
  return MarkGap + ArrowWidth + digit + MarkMargin;
}

QSize SortHeader::sectionSizeFromContents(int column) const {
  return QHeaderView::sectionSizeFromContents(column) + QSize(MarkWidth(column), 0);
}

void SortHeader::paintSection(QPainter* painter, const QRect& rect, int column) const {
  QStyleOptionHeaderV2 option;
  initStyleOption(&option);
  initStyleOptionForIndex(&option, column);
  option.rect = rect;
  option.sortIndicator = QStyleOptionHeader::None;
  style()->drawControl(QStyle::CE_HeaderSection, &option, painter, this);

  const int mark = MarkWidth(column);
  QStyleOptionHeaderV2 label = option;
  label.rect = style()->subElementRect(QStyle::SE_HeaderLabel, &option, this);
  label.rect.setRight(std::min(label.rect.right(), rect.right() - mark));
  const QString text = model()->headerData(column, orientation()).toString();
  label.text = fontMetrics().elidedText(text, textElideMode(), std::max(0, label.rect.width()));
  if (label.rect.width() > 0) style()->drawControl(QStyle::CE_HeaderLabel, &label, painter, this);
  if (mark > 0 && rect.width() >= mark) PaintMark(painter, rect, column);
  if (column == reached_ && hasFocus()) PaintFocus(painter, rect);
}

void SortHeader::PaintFocus(QPainter* painter, const QRect& rect) const {
  QStyleOptionFocusRect focus;
  focus.initFrom(this);
  focus.rect = rect.adjusted(1, 1, -1, -1);
  focus.state |= QStyle::State_KeyboardFocusChange;
  focus.backgroundColor = palette().color(QPalette::Button);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, this);
}

void SortHeader::PaintMark(QPainter* painter, const QRect& rect, int column) const {
  const auto rank = static_cast<size_t>(RankOf(column));
  const QPointF middle(rect.right() - MarkWidth(column) + MarkGap + ArrowWidth / 2.0,
                       rect.center().y() + 0.5);
  // The way the values rise: the smallest stands on top.
  const qreal tip = keys_[rank].descending ? -ArrowHeight / 2.0 : ArrowHeight / 2.0;
  const QPolygonF arrow({middle + QPointF(-ArrowWidth / 2.0, -tip),
                         middle + QPointF(ArrowWidth / 2.0, -tip), middle + QPointF(0, tip)});
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->setPen(Qt::NoPen);
  painter->setBrush(palette().color(QPalette::ButtonText));
  painter->drawPolygon(arrow);
  if (keys_.size() > 1) {
    QFont small = font();
    small.setPixelSize(fontInfo().pixelSize() * 4 / 5);
    painter->setFont(small);
    painter->setPen(palette().color(QPalette::ButtonText));
    const int left = qRound(middle.x() + ArrowWidth / 2.0) + 1;
    painter->drawText(QRect(left, rect.top(), rect.right() - left, rect.height()),
                      Qt::AlignLeft | Qt::AlignVCenter, QString::number(rank + 1));
  }
  painter->restore();
}

}  // namespace kestrin
