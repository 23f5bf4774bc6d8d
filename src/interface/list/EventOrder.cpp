#include "interface/list/EventOrder.h"

#include <algorithm>
#include <utility>

#include "core/events/Event.h"
#include "core/events/HandlerTable.h"
#include "interface/common/FoldedText.h"

namespace kestrin {

namespace {

constexpr int32 InactiveStatus = 4;

/// Row of the handler table -> place of its name among all names, equal names sharing one.
std::vector<int32> RankHandlers(const HandlerTable& handlers) {
  std::vector<std::string> names;
  for (const HandlerTable::Row& row : handlers.Rows()) names.push_back(FoldedText(row.AddOnName));
  std::vector<std::string> sorted = names;
  std::sort(sorted.begin(), sorted.end());
  std::vector<int32> ranks;
  for (const std::string& name : names)
    ranks.push_back(
        static_cast<int32>(std::lower_bound(sorted.begin(), sorted.end(), name) - sorted.begin()));
  return ranks;
}

}  // namespace

EventOrder::EventOrder(const HandlerTable& handlers) : handlerRanks_(RankHandlers(handlers)) {}

int32 EventOrder::HandlerRank(int32 handler) const {
  const auto row = static_cast<size_t>(handler);
  return handler >= 0 && row < handlerRanks_.size() ? handlerRanks_[row] : -1;
}

void EventOrder::TakeValues(Row& row) const {
  const Event& event = *row.event;
  row.name = FoldedText(event.GetName());
  row.numbers[EventTimeColumn] = event.GetActualEventTime();
  row.numbers[NextTimeColumn] = event.GetNextEventTime();
  row.numbers[HandlerColumn] = HandlerRank(event.GetSelectedHandler());
  row.numbers[StatusColumn] = event.GetActive() ? event.GetStatus() : InactiveStatus;
}

/// Fills a head from its highest bit down; what does not fit any more is dropped.
class EventOrder::HeadPacker {
 public:
  bool IsFull() const { return left_ == 0; }
  /// Nothing that follows may count.
  void Close() { left_ = 0; }
  void Add(uint64 value, int bits, bool inverted) {
    if (inverted) value = ~value & ((uint64{1} << bits) - 1);
    if (bits > left_) value >>= bits - left_;
    bits = std::min(bits, left_);
    left_ -= bits;
    if (left_ >= 64) {
      head_.high |= value << (left_ - 64);
      return;
    }
    head_.low |= value << left_;
    if (left_ + bits > 64) head_.high |= value >> (64 - left_);
  }
  void AddName(const std::string& name, bool inverted) {
    for (size_t i = 0; !IsFull(); ++i)
      Add(i < name.size() ? static_cast<unsigned char>(name[i]) : 0u, 8, inverted);
  }
  Head Packed() const { return head_; }

 private:
  Head head_;
  int left_ = 128;
};

EventOrder::Head EventOrder::HeadOf(const Row& row) const {
  HeadPacker packer;
  for (const SortKey& key : keys_) {
    const int32 number = row.numbers[key.column];
    if (key.column == NameColumn) {
      packer.AddName(row.name, key.descending);
    } else if (key.column == HandlerColumn) {
      packer.Add(static_cast<uint32>(number) + 1u, 8, key.descending);
    } else if (key.column == StatusColumn) {
      // Numbers outside the table share a code on either side of it.
      const int32 known = std::clamp(number, -1, InactiveStatus + 1);
      packer.Add(static_cast<uint32>(known) + 1u, 4, key.descending);
      if (number < 0 || number > InactiveStatus) packer.Close();
    } else {
      packer.Add(static_cast<uint32>(number) ^ 0x80000000u, 32, key.descending);
    }
    if (packer.IsFull()) break;
  }
  return packer.Packed();
}

EventOrder::Place EventOrder::PlaceOf(Row& row) const { return {HeadOf(row), row.arrival, &row}; }

/// By the keys alone.
int EventOrder::Compare(const Row& a, const Row& b) const {
  for (const SortKey& key : keys_) {
    const Row& first = key.descending ? b : a;
    const Row& second = key.descending ? a : b;
    if (key.column == NameColumn) {
      if (const int order = first.name.compare(second.name)) return order;
    } else if (first.numbers[key.column] != second.numbers[key.column]) {
      return first.numbers[key.column] < second.numbers[key.column] ? -1 : 1;
    }
  }
  return 0;
}

bool EventOrder::Before(const Place& a, const Place& b) const {
  if (a.head != b.head) return a.head < b.head;
  if (const int order = Compare(*a.row, *b.row)) return order < 0;
  return a.arrival < b.arrival;
}

EventOrder::Row& EventOrder::NewRow(Event* event) {
  Row& row = rows_[event];
  row.event = event;
  row.arrival = nextArrival_++;
  std::fill(std::begin(row.numbers), std::end(row.numbers), 0);
  TakeValues(row);
  return row;
}

int32 EventOrder::Find(const Row& row) const {
  const Place wanted = PlaceOf(const_cast<Row&>(row));
  const auto found =
      std::lower_bound(places_.begin(), places_.end(), wanted,
                       [this](const Place& a, const Place& b) { return Before(a, b); });
  return static_cast<int32>(found - places_.begin());
}

int32 EventOrder::RowOf(const Event* event) const {
  const auto found = rows_.find(event);
  return found == rows_.end() ? -1 : Find(found->second);
}

int32 EventOrder::Insert(Row& row) {
  const int32 at = Find(row);
  places_.insert(places_.begin() + at, PlaceOf(row));
  return at;
}

int32 EventOrder::Add(Event* event) { return Insert(NewRow(event)); }

void EventOrder::Add(const std::vector<Event*>& events) {
  const size_t sorted = places_.size();
  rows_.reserve(sorted + events.size());
  places_.reserve(sorted + events.size());
  for (Event* event : events) places_.push_back(PlaceOf(NewRow(event)));
  Merge(sorted);
}

int32 EventOrder::Remove(const Event* event) {
  const auto found = rows_.find(event);
  if (found == rows_.end()) return -1;
  const int32 at = Find(found->second);
  places_.erase(places_.begin() + at);
  rows_.erase(found);
  return at;
}

std::vector<bool> EventOrder::Marked(const std::vector<Event*>& events) const {
  std::vector<bool> marks(nextArrival_);
  for (const Event* event : events) {
    const auto found = rows_.find(event);
    if (found != rows_.end()) marks[found->second.arrival] = true;
  }
  return marks;
}

void EventOrder::Remove(const std::vector<Event*>& events) {
  const std::vector<bool> gone = Marked(events);
  std::erase_if(places_, [&gone](const Place& place) { return gone[place.arrival]; });
  for (const Event* event : events) rows_.erase(event);
}

void EventOrder::Clear() {
  places_.clear();
  rows_.clear();
}

int32 EventOrder::Resort(const Event* event) {
  const auto found = rows_.find(event);
  if (found == rows_.end()) return -1;
  Row& row = found->second;
  const auto from = places_.begin() + Find(row);
  TakeValues(row);
  const Place changed = PlaceOf(row);
  const auto before = [this](const Place& a, const Place& b) { return Before(a, b); };
  // All but the changed one are in order, on either side of it.
  auto to = std::lower_bound(places_.begin(), from, changed, before);
  if (to == from) {
    to = std::lower_bound(from + 1, places_.end(), changed, before) - 1;
    std::rotate(from, from + 1, to + 1);
  } else {
    std::rotate(to, from, from + 1);
  }
  *to = changed;
  return static_cast<int32>(to - places_.begin());
}

void EventOrder::Resort(const std::vector<Event*>& events) {
  const std::vector<bool> moves = Marked(events);
  const auto moving =
      std::stable_partition(places_.begin(), places_.end(),
                            [&moves](const Place& place) { return !moves[place.arrival]; });
  for (auto place = moving; place != places_.end(); ++place) {
    TakeValues(*place->row);
    place->head = HeadOf(*place->row);
  }
  Merge(static_cast<size_t>(moving - places_.begin()));
}

/// By what the places hold; then those whose heads are alike, where their rows differ.
void EventOrder::Sort(Places::iterator first, Places::iterator last) const {
  std::sort(first, last, [](const Place& a, const Place& b) {
    return a.head != b.head ? a.head < b.head : a.arrival < b.arrival;
  });
  while (first != last) {
    const auto differs = [&first](const Place& place) { return place.head != first->head; };
    const auto end = std::find_if(first, last, differs);
    const auto isAlike = [&](const Place& place) { return Compare(*place.row, *first->row) == 0; };
    if (!std::all_of(first + 1, end, isAlike))
      std::sort(first, end, [this](const Place& a, const Place& b) { return Before(a, b); });
    first = end;
  }
}

void EventOrder::Merge(size_t sorted) {
  const auto before = [this](const Place& a, const Place& b) { return Before(a, b); };
  const auto middle = places_.begin() + static_cast<std::ptrdiff_t>(sorted);
  Sort(middle, places_.end());
  std::inplace_merge(places_.begin(), middle, places_.end(), before);
}

void EventOrder::SetKeys(std::vector<SortKey> keys) {
  keys_ = std::move(keys);
  nextArrival_ = 0;
  for (Place& place : places_) {
    place.row->arrival = nextArrival_++;
    place = PlaceOf(*place.row);
  }
  Merge(0);
}

}  // namespace kestrin
