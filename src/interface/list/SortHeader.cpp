#include "interface/list/SortHeader.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionHeader>
#include <algorithm>

#include "core/KestrinSettings.h"

namespace kestrin {

namespace {

constexpr int ArrowWidth = 8, ArrowHeight = 4, MarkGap = 4, MarkMargin = 5;

}  // namespace

SortHeader::SortHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsMovable(true);
  setHighlightSections(false);
  setStretchLastSection(false);
  setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  setTextElideMode(Qt::ElideRight);
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
