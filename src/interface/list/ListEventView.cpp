#include "interface/list/ListEventView.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QStyle>
#include <algorithm>

#include "core/events/EventSet.h"
#include "interface/list/EventRowDelegate.h"
#include "interface/list/ShownLayout.h"

namespace kestrin {

namespace {

// As other programs know the two kinds of column.
constexpr uint32 IconColumnFlags = 78, LabelColumnFlags = 3073;
constexpr int RoomAroundText = 6;
constexpr int SmallFont = 9;  // points

}  // namespace

ListEventView::ListEventView(EventSet& set) : EventSetViewInterface(set), model_(set) {
  setObjectName("events");
  setAccessibleName("Events");
  setItemDelegate(new EventRowDelegate(this));
  AddColumnLabels();
  connect(this, &ColumnListView::Invoked, this, [this](const QModelIndex& index) {
    if (Event* event = model_.EventAt(index.row())) emit EventInvoked(event);
  });
  connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &ListEventView::SelectedEventChanged);
}

/// The time of day must never be what is cut off.
FittingWidths ListEventView::Fitting() const {
  constexpr const char* longDate = "Wed, Nov 30 2026, 10:00:00 AM";
  constexpr std::array<const char*, NumberOfColumns> usual = {
      "", "An event with a name", longDate, longDate, "Notification", "Waiting for prewarning"};
  const int margins = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);
  const auto widthsIn = [&](const QFont& font, int room) {
    const QFontMetrics metrics(font);
    ColumnWidths widths{};
    for (size_t column = 0; column < widths.size(); ++column)
      widths[column] = metrics.horizontalAdvance(usual[column]) + room;
    return widths;
  };
  QFont small = font();
  small.setPointSize(SmallFont);
  return {widthsIn(font(), margins + RoomAroundText), widthsIn(small, margins)};
}

int ListEventView::WidthOfColumns() const {
  return header()->length() + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
}

bool ListEventView::ShowedAllColumns(float width) const {
  const FittingWidths fitting = Fitting();
  const ShownLayout layout = ShownLayoutOf(GetEventSet().Layout(), {fitting.small, fitting.small});
  int needed = 0;
  for (size_t column = 0; column < layout.width.size(); ++column)
    if (layout.shown[column]) needed += layout.width[column];
  return width >= static_cast<float>(needed);
}

void ListEventView::AddColumnLabels() {
  const ShownLayout layout = ShownLayoutOf(GetEventSet().Layout(), Fitting());
  std::vector<CLVColumn> columns;
  for (size_t column = 0; column < layout.width.size(); ++column) {
    const uint32 flags = column == IconColumn ? IconColumnFlags : LabelColumnFlags;
    columns.push_back(
        {layout.width[column], layout.shown[column] ? flags : flags | CLVColumn::Hidden});
  }
  model_.SetKeys(layout.keys);
  Build(model_, columns, {layout.order.begin(), layout.order.end()}, layout.keys);
}

void ListEventView::SetColumnShown(Columns column, bool shown) {
  AutoLock lock(GetEventSet());
  SetLayout& layout = GetEventSet().Layout();
  layout.ColumnShown[column] = shown;
  const auto all = ShownLayoutOf(layout, {}).shown;
  for (size_t each = 0; each < all.size(); ++each) ShowColumn(static_cast<int>(each), all[each]);
}

/// One row stays selected, so that the next key works on something one can see.
void ListEventView::RemoveEvents(const std::vector<Event*>& events) {
  const QPersistentModelIndex current = currentIndex();
  const int row = current.row();
  model_.EventsRemoved(events);
  if (selectionModel()->hasSelection()) return;
  SelectRow(current.isValid() ? current.row() : std::min(row, model_.rowCount() - 1));
}

Event* ListEventView::GetSelectedEvent() {
  const QModelIndex current = currentIndex();
  if (current.isValid() && selectionModel()->isSelected(current))
    return model_.EventAt(current.row());
  const QItemSelection& selection = selectionModel()->selection();
  return selection.isEmpty() ? nullptr : model_.EventAt(selection.first().top());
}

std::vector<Event*> ListEventView::GetSelectedEvents() const {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  std::vector<Event*> events;
  for (const int row : rows) events.push_back(model_.EventAt(row));
  return events;
}

/// Whatever keys are held just now: the toolkit's own way of it looks at them.
void ListEventView::SelectRow(int row) {
  if (row < 0) {
    emit SelectedEventChanged();
    return;
  }
  const QModelIndex index = model_.index(row, NameColumn);
  selectionModel()->setCurrentIndex(
      index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  scrollTo(index);
}

void ListEventView::SelectEvents(const std::vector<Event*>& events) {
  model_.Apply();
  std::vector<int> rows;
  for (const Event* const event : events) rows.push_back(model_.RowOf(event));
  std::sort(rows.begin(), rows.end());
  std::erase(rows, -1);
  if (rows.empty()) return;
  SelectRow(rows.front());
  QItemSelection selection;
  for (size_t i = 0; i < rows.size();) {
    size_t end = i + 1;
    while (end < rows.size() && rows[end] == rows[end - 1] + 1) ++end;
    selection.append(QItemSelectionRange(model_.index(rows[i], 0),
                                         model_.index(rows[end - 1], NumberOfColumns - 1)));
    i = end;
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void ListEventView::DisplayOrderChanged() {
  const std::vector<int> order = DisplayOrder();
  AutoLock lock(GetEventSet());
  std::copy(order.begin(), order.end(), GetEventSet().Layout().ColumnOrder.begin());
}

void ListEventView::ColumnWidthChanged(int column, int width) {
  AutoLock lock(GetEventSet());
  GetEventSet().Layout().ColumnWidth[static_cast<size_t>(column)] = static_cast<float>(width);
}

void ListEventView::SortingChanged() {
  model_.SetKeys(SortKeys());
  if (currentIndex().isValid()) scrollTo(currentIndex());
  AutoLock lock(GetEventSet());
  StoreSorting(SortKeys(), GetEventSet().Layout());
}

}  // namespace kestrin
