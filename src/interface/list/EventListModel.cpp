#include "interface/list/EventListModel.h"

#include <QTimer>
#include <algorithm>
#include <utility>

#include "core/events/Event.h"
#include "core/events/EventEdit.h"
#include "core/events/EventSet.h"
#include "core/timing/EventTypes.h"
#include "interface/common/ShownText.h"
#include "interface/icons/StandardIcons.h"
#include "interface/list/EventCells.h"

namespace kestrin {

namespace {

/// Up to this many changed events are moved one by one.
constexpr size_t FewEvents = 8;

QVariant IconCell(const Event& event, int role) {
  if (role == Qt::DecorationRole) return EventIcon(event);
  if (role == Qt::AccessibleTextRole) return IconName(event.Record().IconNumber);
  return {};
}

}  // namespace

EventListModel::EventListModel(EventSet& set) : set_(set), order_(set.GetContext().handlers) {
  std::vector<Event*> events;
  events.reserve(set.Events().size());
  for (const auto& event : set.Events()) events.push_back(event.get());
  order_.Add(events);
}

Event* EventListModel::EventAt(int row) const {
  return row >= 0 && row < order_.Count() ? order_.At(row) : nullptr;
}

int EventListModel::RowOf(const Event* event) {
  Apply();
  return order_.RowOf(event);
}

template <typename Change>
void EventListModel::Reorder(Change change) {
  const QModelIndexList before = persistentIndexList();
  std::vector<const Event*> events;
  for (const QModelIndex& each : before) events.push_back(order_.At(each.row()));
  change();
  QModelIndexList after;
  for (qsizetype i = 0; i < before.size(); ++i)
    after.push_back(index(order_.RowOf(events[static_cast<size_t>(i)]), before[i].column()));
  changePersistentIndexList(before, after);
}

void EventListModel::TellRows(int first, int last) {
  if (first <= last) emit dataChanged(index(first, 0), index(last, NumberOfColumns - 1));
}

void EventListModel::SetKeys(std::vector<SortKey> keys) {
  Apply();
  Reorder([&] { order_.SetKeys(std::move(keys)); });
  TellRows(0, order_.Count() - 1);
}

void EventListModel::ApplyLater() {
  if (std::exchange(applyWaits_, true)) return;
  QTimer::singleShot(0, this, &EventListModel::Apply);
}

void EventListModel::EventAdded(Event& event) {
  added_.push_back(&event);
  ApplyLater();
}

void EventListModel::EventModified(Event& event) {
  changed_.insert(&event);
  ApplyLater();
}

void EventListModel::EventRemoved(Event& event) {
  changed_.erase(&event);
  const int row = order_.RowOf(&event);
  if (row < 0) {
    std::erase(added_, &event);
    return;
  }
  beginRemoveRows({}, row, row);
  order_.Remove(&event);
  endRemoveRows();
}

void EventListModel::EventsRemoved(const std::vector<Event*>& events) {
  if (events.size() <= FewEvents) {
    for (Event* const event : events) EventRemoved(*event);
    return;
  }
  Apply();
  beginResetModel();
  order_.Remove(events);
  endResetModel();
}

void EventListModel::Apply() {
  applyWaits_ = false;
  if (!changed_.empty()) ApplyChanged();
  if (!added_.empty()) ApplyAdded();
}

void EventListModel::ApplyChanged() {
  const auto changed = std::exchange(changed_, {});
  if (changed.size() > FewEvents) {
    Reorder([&] { order_.Resort(std::vector<Event*>(changed.begin(), changed.end())); });
    TellRows(0, order_.Count() - 1);
    return;
  }
  for (const Event* event : changed) {
    const int from = order_.RowOf(event);
    if (from < 0) continue;
    int to = from;
    Reorder([&] { to = order_.Resort(event); });
    TellRows(std::min(from, to), std::max(from, to));
  }
}

void EventListModel::ApplyAdded() {
  const auto added = std::exchange(added_, {});
  const int count = order_.Count();
  // The rows are new at the end; the events may stand anywhere.
  beginInsertRows({}, count, count + static_cast<int>(added.size()) - 1);
  Reorder([&] { order_.Add(added); });
  endInsertRows();
  TellRows(0, order_.Count() - 1);
}

void EventListModel::Clear() {
  beginResetModel();
  order_.Clear();
  added_.clear();
  changed_.clear();
  endResetModel();
}

int EventListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : order_.Count();
}

int EventListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : NumberOfColumns;
}

QVariant EventListModel::data(const QModelIndex& index, int role) const {
  const Event* event = EventAt(index.row());
  if (!event) return {};
  if (role == DimmedRole) return !event->GetActive() || event->GetStatus() == DoneWithEvent;
  if (index.column() == IconColumn) return IconCell(*event, role);
  if (role == Qt::EditRole) return ShownText(event->GetName());
  if (role == Qt::ToolTipRole) return TipText(*event, index.column());
  const bool isText = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
  return isText ? CellText(*event, index.column()) : QVariant();
}

bool EventListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  Event* const event = EventAt(index.row());
  const QString name = value.toString();
  if (!event || role != Qt::EditRole || index.column() != NameColumn) return false;
  if (name == ShownText(event->GetName())) return true;
  const EventEdit edit(*event);
  edit->SetName(name.toStdString());
  return true;
}

QVariant EventListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::DisplayRole) return ColumnLabel(section);
  if (role == Qt::AccessibleTextRole)
    return section == IconColumn ? QStringLiteral("Icon") : ColumnLabel(section);
  return {};
}

Qt::ItemFlags EventListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  return index.column() == NameColumn ? flags | Qt::ItemIsEditable : flags;
}

}  // namespace kestrin
