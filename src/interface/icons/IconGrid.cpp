#include "interface/icons/IconGrid.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QStyle>
#include <QStyledItemDelegate>
#include <algorithm>

#include "interface/icons/StandardIconShapes.h"
#include "interface/icons/StandardIcons.h"
#include "interface/icons/UserIcons.h"

namespace kestrin {

namespace {

constexpr int Columns = 6, FewestRows = 2, MostRows = 6;
constexpr QSize Cell(44, 44);

/// The icon in the middle of its cell, on a patch that shows which is current.
class IconDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override { return Cell; }

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    const bool isCurrent = option.state & QStyle::State_Selected;
    if (isCurrent || option.state & QStyle::State_MouseOver) {
      QColor patch = option.palette.color(QPalette::Highlight);
      patch.setAlphaF(isCurrent ? 0.45F : 0.2F);
      painter->save();
      painter->setRenderHint(QPainter::Antialiasing);
      painter->setPen(isCurrent ? QPen(option.palette.color(QPalette::Highlight)) : Qt::NoPen);
      painter->setBrush(patch);
      painter->drawRoundedRect(QRectF(option.rect).adjusted(1.5, 1.5, -1.5, -1.5), 4, 4);
      painter->restore();
    }
    QRect place(0, 0, LargeIconSize, LargeIconSize);
    place.moveCenter(option.rect.center());
    index.data(Qt::DecorationRole).value<QIcon>().paint(painter, place);
  }
};

}  // namespace

std::optional<IconChoice> DraggedIcon(const QMimeData& data) {
  const std::string bytes = data.data(DraggedIconType).toStdString();
  if (bytes.size() == 1 && bytes[0] >= 0 && bytes[0] < NumberOfStandardIcons)
    return IconChoice{bytes[0], {}};
  if (bytes.size() != size_t{LargeIconBytes + MiniIconBytes}) return {};
  return IconChoice{OwnIconNumber, {bytes.substr(0, LargeIconBytes), bytes.substr(LargeIconBytes)}};
}

IconGrid::IconGrid(KestrinSettings& settings, QWidget* parent)
    : QListWidget(parent), settings_(settings) {
  setObjectName("icons");
  setAccessibleName("Icons");
  setViewMode(QListView::IconMode);
  setMovement(QListView::Static);
  setResizeMode(QListView::Adjust);
  setUniformItemSizes(true);
  setIconSize(QSize(LargeIconSize, LargeIconSize));
  setGridSize(Cell);
  setItemDelegate(new IconDelegate(this));
  setMouseTracking(true);
  setTabKeyNavigation(false);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  connect(this, &QListWidget::clicked, this,
          [this](const QModelIndex& index) { Choose(index.row()); });
}

QSize IconGrid::sizeHint() const {
  const int rows = std::clamp((count() + Columns - 1) / Columns, FewestRows, MostRows);
  const bool scrolls = verticalScrollBarPolicy() == Qt::ScrollBarAlwaysOn;
  const int bar = scrolls ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
  const int around = 2 * frameWidth() + 2;
  return {Columns * Cell.width() + around + bar, rows * Cell.height() + around};
}

void IconGrid::ShowIcons(const IconChoice& now) {
  clear();
  choices_.clear();
  for (int32 i = 0; i < NumberOfStandardIcons; ++i) Add({i, {}}, StandardIcon(i), IconName(i));
  int number = 0;
  for (const IconPair& icon : UserIcons(settings_))
    Add({OwnIconNumber, icon}, OwnIcon(icon), QString("Own image %1").arg(++number));
  const auto current = std::find(choices_.begin(), choices_.end(), now);
  setCurrentRow(current == choices_.end() ? 0 : static_cast<int>(current - choices_.begin()));
  setVerticalScrollBarPolicy(count() > MostRows * Columns ? Qt::ScrollBarAlwaysOn
                                                          : Qt::ScrollBarAlwaysOff);
  updateGeometry();
}

void IconGrid::Add(const IconChoice& choice, const QIcon& icon, const QString& name) {
  choices_.push_back(choice);
  auto* item = new QListWidgetItem(icon, {}, this);
  item->setToolTip(name);
  item->setData(Qt::AccessibleTextRole, name);
}

void IconGrid::Choose(int row) {
  if (row < 0) return;
  const IconChoice choice = choices_[static_cast<size_t>(row)];  // the grid may be filled anew
  emit Chosen(choice);
}

bool IconGrid::IsUsers(int row) const { return row >= NumberOfStandardIcons; }

void IconGrid::keyPressEvent(QKeyEvent* event) {
  const int row = currentRow();
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      Choose(row);
      break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      if (IsUsers(row)) emit RemovalWanted(IconPair(choices_[static_cast<size_t>(row)].own));
      break;
    default:
      QListWidget::keyPressEvent(event);
  }
}

void IconGrid::contextMenuEvent(QContextMenuEvent* event) {
  const int row = indexAt(event->pos()).row();
  if (!IsUsers(row)) return;
  auto* menu = new QMenu(this);
  menu->setObjectName("iconActions");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction(
      "&Remove from the icons", this,
      [this, icon = choices_[static_cast<size_t>(row)].own] { emit RemovalWanted(icon); });
  menu->popup(event->globalPos());
}

QMimeData* IconGrid::mimeData(const QList<QListWidgetItem*>& items) const {
  const IconChoice& choice = choices_[static_cast<size_t>(row(items.front()))];
  const std::string bytes = choice.index == OwnIconNumber
                                ? choice.own.large + choice.own.mini
                                : std::string(1, static_cast<char>(choice.index));
  auto* dragged = new QMimeData;
  dragged->setData(DraggedIconType, QByteArray::fromStdString(bytes));
  return dragged;
}

}  // namespace kestrin
