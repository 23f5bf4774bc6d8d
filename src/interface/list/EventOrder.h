// The order in which a list shows its events: sorted by up to five columns, kept sorted change by
// change.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "core/settings/SetLayout.h"
#include "kestrin/Types.h"

namespace kestrin {

class Event;
class HandlerTable;

/// Numbers of the list's columns. They stand in set files.
enum Columns : int32 {
  IconColumn = 0,
  NameColumn = 1,
  EventTimeColumn = 2,
  NextTimeColumn = 3,
  HandlerColumn = 4,
  StatusColumn = 5,
};

struct SortKey {
  int32 column;
  bool descending;
  bool operator==(const SortKey&) const = default;
};

/// Events that compare equal keep the order they had: that of arrival at first, later the one they
/// were shown in when the keys changed. What an event is sorted by is remembered, so that a changed
/// event is found where it stood until Resort moves it.
class EventOrder {
 public:
  explicit EventOrder(const HandlerTable& handlers);
  EventOrder(const EventOrder&) = delete;
  EventOrder& operator=(const EventOrder&) = delete;

  int32 Count() const { return static_cast<int32>(places_.size()); }
  Event* At(int32 row) const { return places_[static_cast<size_t>(row)].row->event; }
  /// -1 when the event is not in the order.
  int32 RowOf(const Event* event) const;

  const std::vector<SortKey>& Keys() const { return keys_; }
  void SetKeys(std::vector<SortKey> keys);

  /// Many at once, in their order of arrival; one sort.
  void Add(const std::vector<Event*>& events);
  /// Where the event now stands.
  int32 Add(Event* event);
  /// Where the event stood.
  int32 Remove(const Event* event);
  void Remove(const std::vector<Event*>& events);
  void Clear();

  /// The event has changed: moves it and returns where it stands now.
  int32 Resort(const Event* event);
  /// The same for many at once; rows may change anywhere.
  void Resort(const std::vector<Event*>& events);

 private:
  struct Row {
    Event* event = nullptr;
    uint64 arrival = 0;
    std::string name;                ///< folded
    int32 numbers[NumberOfColumns];  ///< by column; what NameColumn and IconColumn hold is 0
  };
  /// As much of the keys as fits, so that few comparisons have to look at the row.
  struct Head {
    uint64 high = 0, low = 0;
    auto operator<=>(const Head&) const = default;
  };
  class HeadPacker;
  /// With the row's arrival beside it: most of what is sorted is told apart without a look at rows,
  /// which lie all over the heap.
  struct Place {
    Head head;
    uint64 arrival = 0;
    Row* row = nullptr;
  };
  using Places = std::vector<Place>;

  /// By arrival, which are theirs.
  std::vector<bool> Marked(const std::vector<Event*>& events) const;
  Place PlaceOf(Row& row) const;
  int Compare(const Row& a, const Row& b) const;
  bool Before(const Place& a, const Place& b) const;
  void TakeValues(Row& row) const;
  Head HeadOf(const Row& row) const;
  Row& NewRow(Event* event);
  int32 Find(const Row& row) const;
  int32 Insert(Row& row);
  void Sort(Places::iterator first, Places::iterator last) const;
  void Merge(size_t sorted);
  int32 HandlerRank(int32 handler) const;

  std::vector<SortKey> keys_;
  Places places_;
  std::unordered_map<const Event*, Row> rows_;
  uint64 nextArrival_ = 0;
  std::vector<int32> handlerRanks_;
};

}  // namespace kestrin
