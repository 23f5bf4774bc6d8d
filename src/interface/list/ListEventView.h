// The list of a set's events.
#pragma once

#include "core/settings/SetLayout.h"
#include "interface/list/ColumnListView.h"
#include "interface/list/EventListModel.h"
#include "interface/list/EventSetViewInterface.h"
#include "interface/list/ShownLayout.h"

namespace kestrin {

/// Opens as the set's layout says and writes what the person changes into it. What of the layout
/// could not be shown stays stored as it was until the person changes that very thing.
class ListEventView final : public ColumnListView, public EventSetViewInterface {
  Q_OBJECT

 public:
  explicit ListEventView(EventSet& set);

  void SetColumnShown(Columns column, bool shown) override;
  QWidget* GetBViewPart() override { return this; }
  void AddEvent(Event* event) override { model_.EventAdded(*event); }
  void RemoveEvent(Event* event) override { RemoveEvents({event}); }
  void RemoveEvents(const std::vector<Event*>& events);
  /// Applies now what was collected.
  void SortEvents() override { model_.Apply(); }
  /// The current one, if it is selected, else the first that is.
  Event* GetSelectedEvent() override;
  /// In the order of the rows.
  std::vector<Event*> GetSelectedEvents() const;
  void EventModified(Event* event) override { model_.EventModified(*event); }

  /// Selects the events' rows and scrolls to the first; those that have none are passed over.
  void SelectEvents(const std::vector<Event*>& events);
  /// In which no column is out of sight.
  int WidthOfColumns() const;
  /// Whether a window of that width was wide enough for them in a small font.
  bool ShowedAllColumns(float width) const;
  /// Shows nothing any more: the set is about to go.
  void Clear() { model_.Clear(); }

 signals:
  void EventInvoked(kestrin::Event* event);
  void SelectedEventChanged();

 protected:
  void DisplayOrderChanged() override;
  void ColumnWidthChanged(int column, int width) override;
  void SortingChanged() override;

 private:
  void AddColumnLabels();
  void SelectRow(int row);
  FittingWidths Fitting() const;

  EventListModel model_;
};

}  // namespace kestrin
