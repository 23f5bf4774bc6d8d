// The events of a set as rows of a list, in a sorted order of its own.
#pragma once

#include <QAbstractTableModel>
#include <unordered_set>
#include <vector>

#include "interface/list/EventOrder.h"

namespace kestrin {

class EventSet;

/// A row is a place in the order; which event stands there is data. So sorting moves no rows:
/// dataChanged tells which places show other events, and persistent indexes follow their events.
/// Changes are collected and applied once, on the next turn of the event loop.
class EventListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit EventListModel(EventSet& set);

  Event* EventAt(int row) const;
  /// -1 when the event is not in the list. Applies what was collected.
  int RowOf(const Event* event);

  const std::vector<SortKey>& Keys() const { return order_.Keys(); }
  void SetKeys(std::vector<SortKey> keys);

  void EventAdded(Event& event);
  /// At once: the event is about to go.
  void EventRemoved(Event& event);
  void EventsRemoved(const std::vector<Event*>& events);
  void EventModified(Event& event);
  /// Applies what was collected now.
  void Apply();
  /// Shows nothing any more: the set is about to go.
  void Clear();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  /// Whether the row's event comes no more: it is finished or inactive.
  static constexpr int DimmedRole = Qt::UserRole;
  QVariant data(const QModelIndex& index, int role) const override;
  /// Only names: the person renames in place.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  void ApplyLater();
  void ApplyChanged();
  void ApplyAdded();
  /// `change` alters the order; persistent indexes go where their events go.
  template <typename Change>
  void Reorder(Change change);
  void TellRows(int first, int last);

  EventSet& set_;
  EventOrder order_;
  std::vector<Event*> added_;
  std::unordered_set<Event*> changed_;
  bool applyWaits_ = false;
};

}  // namespace kestrin
