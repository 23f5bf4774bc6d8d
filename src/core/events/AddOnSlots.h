// The data of every handler that an event has ever selected.
#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "core/events/HandlerTable.h"
#include "kestrin/EventAddOnData.h"

namespace kestrin {

/// Rows are those of the handler table. Data of handlers that are no longer selected stays.
class AddOnSlots {
 public:
  int32 SelectedRow() const { return row_; }
  EventAddOnData* Selected() const { return selected_.get(); }
  /// Null when the row has never been selected.
  EventAddOnData* Of(int32 row) const {
    if (row == row_) return selected_.get();
    const auto found = Find(row);
    return found == others_.end() ? nullptr : found->data.get();
  }
  /// Of a row that is not selected: out of its slot, or null.
  std::unique_ptr<EventAddOnData> Take(int32 row) {
    const auto found = Find(row);
    if (found == others_.end()) return nullptr;
    std::unique_ptr<EventAddOnData> data = std::move(others_[Index(found)].data);
    others_.erase(found);
    return data;
  }
  /// Selects the row with this data; what was selected goes into its slot.
  void Select(int32 row, std::unique_ptr<EventAddOnData> data) {
    if (selected_) others_.push_back({row_, std::move(selected_)});
    Replace(row, std::move(data));
  }
  /// The same, but what was selected goes.
  void Replace(int32 row, std::unique_ptr<EventAddOnData> data) {
    selected_ = std::move(data);
    row_ = row;
  }

 private:
  struct Slot {
    int32 row;
    std::unique_ptr<EventAddOnData> data;
  };
  std::vector<Slot>::const_iterator Find(int32 row) const {
    return std::find_if(others_.begin(), others_.end(),
                        [row](const Slot& slot) { return slot.row == row; });
  }
  size_t Index(std::vector<Slot>::const_iterator slot) const {
    return static_cast<size_t>(slot - others_.begin());
  }

  int32 row_ = UnknownHandler;
  std::unique_ptr<EventAddOnData> selected_;
  std::vector<Slot> others_;
};

}  // namespace kestrin
