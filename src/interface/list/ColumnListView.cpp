#include "interface/list/ColumnListView.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <algorithm>

#include "interface/list/ShownLayout.h"

namespace kestrin {

ColumnListView::ColumnListView(QWidget* parent) : QTreeView(parent), header_(new SortHeader(this)) {
  header_->setObjectName("columns");
  header_->setAccessibleName("Columns");
  header_->setMinimumSectionSize(MinimumColumnWidth);
  setHeader(header_);
  // A tree takes these from its header.
  header_->setSectionsClickable(true);
  header_->setFirstSectionMovable(true);
  header_->setFocusProxy(nullptr);
  BuildList();
}

void ColumnListView::BuildList() {
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setAlternatingRowColors(true);
  setSelectionMode(ExtendedSelection);
  setSelectionBehavior(SelectRows);
  setEditTriggers(NoEditTriggers);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollMode(ScrollPerPixel);
  setTextElideMode(Qt::ElideRight);
  connect(this, &QAbstractItemView::doubleClicked, this, &ColumnListView::Invoked);
}

void ColumnListView::Build(QAbstractItemModel& model, const std::vector<CLVColumn>& columns,
                           const std::vector<int>& order, std::vector<SortKey> keys) {
  setModel(&model);
  columns_ = columns;
  for (int column = 0; column < static_cast<int>(columns.size()); ++column) {
    const CLVColumn& made = columns[static_cast<size_t>(column)];
    header_->resizeSection(column, made.width);
    header_->setSectionHidden(column, (made.flags & CLVColumn::Hidden) != 0);
    if (made.flags & CLVColumn::Sortable)
      header_->SetSortable(column);
    else
      header_->setSectionResizeMode(column, QHeaderView::Fixed);
  }
  for (int place = 0; place < static_cast<int>(order.size()); ++place)
    header_->moveSection(header_->visualIndex(order[static_cast<size_t>(place)]), place);
  header_->SetKeys(std::move(keys));
  WatchHeader();
}

void ColumnListView::WatchHeader() {
  connect(header_, &QHeaderView::sectionMoved, this, [this] { DisplayOrderChanged(); });
  connect(header_, &SortHeader::SortingChanged, this, [this] { SortingChanged(); });
  connect(header_, &SortHeader::ColumnReached, this, &ColumnListView::ScrollToColumn);
  connect(header_, &QHeaderView::sectionResized, this, [this](int column, int before, int now) {
    // Hiding and showing come as a width of 0.
    if (before > 0 && now > 0) ColumnWidthChanged(column, now);
  });
}

void ColumnListView::ScrollToColumn(int column) {
  const int left = header_->sectionPosition(column), width = header_->sectionSize(column);
  QScrollBar& bar = *horizontalScrollBar();
  bar.setValue(std::min(left, std::max(bar.value(), left + width - viewport()->width())));
}

std::vector<int> ColumnListView::DisplayOrder() const {
  std::vector<int> order;
  for (int place = 0; place < header_->count(); ++place)
    order.push_back(header_->logicalIndex(place));
  return order;
}

void ColumnListView::ShowColumn(int column, bool shown) { setColumnHidden(column, !shown); }

void ColumnListView::dataChanged(const QModelIndex& first, const QModelIndex& last,
                                 const QList<int>&) {
  // A tree looks at each of the rows, for new heights and children; here there are none.
  viewport()->update();
  updateEditorGeometries();
  if (!QAccessible::isActive()) return;
  QAccessibleTableModelChangeEvent event(this, QAccessibleTableModelChangeEvent::DataChanged);
  event.setFirstRow(first.row());
  event.setFirstColumn(first.column());
  event.setLastRow(last.row());
  event.setLastColumn(last.column());
  QAccessible::updateAccessibility(&event);
}

void ColumnListView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return;  // a cell's text is nobody's event
  if (state() == EditingState) return;             // what its field leaves over is for nobody
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (currentIndex().isValid()) emit Invoked(currentIndex());
      return;
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
      emit DeleteRequested();
      return;
    case Qt::Key_Space:
      if (event->modifiers() != Qt::NoModifier)
        QTreeView::keyPressEvent(event);
      else if (IsSearching())
        keyboardSearch(event->text());
      else
        emit ToggleRequested();
      return;
    default:
      QTreeView::keyPressEvent(event);
  }
}

bool ColumnListView::IsSearching() const {
  return searched_.isValid() && searched_.elapsed() < QApplication::keyboardInputInterval();
}

void ColumnListView::scrollTo(const QModelIndex& index, ScrollHint hint) {
  const int sideways = horizontalScrollBar()->value();
  QTreeView::scrollTo(index, hint);
  horizontalScrollBar()->setValue(sideways);
}

void ColumnListView::Rename() {
  if (!currentIndex().isValid() || isColumnHidden(NameColumn)) return;
  ScrollToColumn(NameColumn);
  edit(currentIndex().siblingAtColumn(NameColumn));
}

void ColumnListView::CommitRename() {
  if (auto* const name = viewport()->findChild<QLineEdit*>("rename")) commitData(name);
}

/// The toolkit makes the first row current without selecting it.
void ColumnListView::focusInEvent(QFocusEvent* event) {
  const bool hadCurrent = currentIndex().isValid();
  QTreeView::focusInEvent(event);
  if (hadCurrent || !currentIndex().isValid()) return;
  selectionModel()->select(currentIndex(),
                           QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ColumnListView::keyboardSearch(const QString& search) {
  searched_.start();
  // The search looks into the current column, and texts are looked for by name.
  const QModelIndex current = currentIndex();
  const QModelIndex from = model()->index(current.isValid() ? current.row() : 0, NameColumn);
  if (from.isValid() && from != current)
    selectionModel()->setCurrentIndex(from, QItemSelectionModel::NoUpdate);
  QTreeView::keyboardSearch(search);
}

}  // namespace kestrin
