// How the events of a set that was read are brought up to date.
#include <algorithm>
#include <numeric>
#include <span>
#include <utility>

#include "core/journal/EventStateText.h"
#include "core/journal/Journal.h"
#include "core/journal/RecordLine.h"

namespace kestrin {

namespace {

/// What of a record it takes to follow it.
struct Link {
  explicit Link(const RecordFields& fields)
      : Place(static_cast<int32>(fields.Number("place").value_or(0))),
        Rule(static_cast<uint32>(fields.Number("rule").value_or(0))),
        Trial(fields.Is("trial", "1")),
        From(EventStateOf(fields.Text("from"))),
        To(EventStateOf(fields.Text("to"))) {}

  bool GoesBack() const { return From && To && !To->Gone && To->Actual < From->Actual; }

  int32 Place;
  uint32 Rule;
  bool Trial;
  std::optional<EventState> From, To;
};

/// Follows records through the states of one event, each once.
class Chain {
 public:
  explicit Chain(std::vector<Link> records)
      : records_(std::move(records)), used_(records_.size()), inOrder_(records_.size()) {
    std::iota(inOrder_.begin(), inOrder_.end(), size_t{0});
    byPlace_ = inOrder_;
    std::ranges::stable_sort(byPlace_, {}, [this](size_t i) { return records_[i].Place; });
  }

  std::optional<EventState> FromState(const StoredEvent& event, bool samePlace) {
    std::optional<EventState> reached;
    EventState state = event.State;
    const Places places = samePlace ? At(event.Name.Place) : inOrder_;
    while (!state.Gone) {
      const size_t next = Next(state, places, event, samePlace);
      if (next == places.size()) break;
      used_[places[next]] = true;
      state = *records_[places[next]].To;
      reached = state;
    }
    return reached;
  }

  /// The file is older than the last record: it was put back.
  std::optional<EventState> FromOlder(const StoredEvent& event) const {
    const Link* last = nullptr;
    for (const size_t i : At(event.Name.Place))
      if (Fits(records_[i], event, true)) last = &records_[i];
    if (!last || last->Rule == 0 || last->Rule != event.Rule || *last->To == event.State ||
        last->From->Actual < event.State.Actual)
      return std::nullopt;
    return last->To;
  }

  /// The records of that place are about the event that stands there.
  void Take(int32 place) {
    for (const size_t i : At(place)) used_[i] = true;
  }

  /// The file has what the records say of it.
  bool LeadsTo(const StoredEvent& event) const {
    return std::ranges::any_of(At(event.Name.Place),
                               [&](size_t i) { return records_[i].To == event.State; });
  }

 private:
  using Places = std::span<const size_t>;  ///< of records, in their order

  Places At(int32 place) const {
    const auto placeOf = [this](size_t i) { return records_[i].Place; };
    const auto first = std::ranges::lower_bound(byPlace_, place, {}, placeOf);
    return {first, std::ranges::upper_bound(first, byPlace_.end(), place, {}, placeOf)};
  }

  /// The latest of those places that leads on: a clock that was wrong leads back to a state, and on
  /// once more. What led on before another had led back and the state was reached once more, leads
  /// on no longer. Without that, the other session may have written in another order.
  size_t Next(const EventState& state, Places places, const StoredEvent& event,
              bool samePlace) const {
    bool isReachedLater = false;
    for (size_t i = places.size(); i-- > 0;) {
      const Link& record = records_[places[i]];
      if (!Fits(record, event, samePlace)) continue;
      if (isReachedLater && record.GoesBack()) break;
      if (record.From == state && !used_[places[i]]) return i;
      isReachedLater = isReachedLater || record.To == state;
      if (isReachedLater && record.GoesBack()) break;
    }
    return places.size();
  }

  static bool Fits(const Link& record, const StoredEvent& event, bool samePlace) {
    if (!record.From || !record.To || record.Trial) return false;
    const bool isAt = record.Place == event.Name.Place;
    if (samePlace)
      return isAt && (record.Rule == 0 || event.Rule == 0 || record.Rule == event.Rule);
    return !isAt && record.Rule == event.Rule;
  }

  std::vector<Link> records_;
  std::vector<bool> used_;
  std::vector<size_t> inOrder_, byPlace_;
};

}  // namespace

std::vector<std::optional<EventState>> Journal::Follow(
    const std::string& set, const std::vector<StoredEvent>& events) const {
  std::vector<std::optional<EventState>> states(events.size());
  std::unordered_map<std::string, Chain> chains;
  std::vector<Chain*> chainOf(events.size());
  for (size_t i = 0; i < events.size(); ++i) {
    const std::string key = EventKey(set, events[i].Name.Name, events[i].Name.Handler);
    const auto places = byEvent_.find(key);
    if (places == byEvent_.end()) continue;
    auto chain = chains.find(key);
    if (chain == chains.end()) {
      std::vector<Link> records;
      for (const RecordLog::Place place : places->second)
        records.emplace_back(log_.All().at(place).Fields);
      chain = chains.emplace(key, Chain(std::move(records))).first;
    }
    chainOf[i] = &chain->second;
    states[i] = chain->second.FromState(events[i], true);
    if (states[i] || chain->second.LeadsTo(events[i])) chain->second.Take(events[i].Name.Place);
  }
  for (size_t i = 0; i < events.size(); ++i) {
    if (!chainOf[i] || states[i]) continue;
    states[i] = chainOf[i]->FromOlder(events[i]);
    if (!states[i] && !chainOf[i]->LeadsTo(events[i]))
      states[i] = chainOf[i]->FromState(events[i], false);
  }
  return states;
}

}  // namespace kestrin
