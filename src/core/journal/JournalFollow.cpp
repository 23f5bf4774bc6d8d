// How the events of a set that was read are brought up to date.
#include <algorithm>
#include <utility>

#include "core/journal/Journal.h"

namespace kestrin {

namespace {

/// Follows records through the states of one event, each once.
class Chain {
 public:
  explicit Chain(std::vector<JournalRecord> records) : records_(std::move(records)) {
    used_.resize(records_.size());
  }

  std::optional<EventState> FromState(const StoredEvent& event, bool samePlace) {
    std::optional<EventState> reached;
    EventState state = event.State;
    for (size_t i = 0; i < records_.size() && !state.Gone;) {
      const JournalRecord& record = records_[i];
      const bool leadsOn = !used_[i] && record.From == state && Fits(record, event, samePlace);
      if (leadsOn) {
        used_[i] = true;
        state = *record.To;
        reached = state;
      }
      i = leadsOn ? 0 : i + 1;  // an earlier state may have been met again
    }
    return reached;
  }

  /// The file is older than the last record: it was put back.
  std::optional<EventState> FromOlder(const StoredEvent& event) const {
    const JournalRecord* last = nullptr;
    for (const JournalRecord& record : records_)
      if (Fits(record, event, true)) last = &record;
    if (!last || last->Rule == 0 || last->Rule != event.Rule || *last->To == event.State ||
        last->From->Actual < event.State.Actual)
      return std::nullopt;
    return last->To;
  }

  /// The records of that place are about the event that stands there.
  void Take(int32 place) {
    for (size_t i = 0; i < records_.size(); ++i)
      if (records_[i].Event.Place == place) used_[i] = true;
  }

  /// The file has what the records say of it.
  bool LeadsTo(const StoredEvent& event) const {
    return std::any_of(records_.begin(), records_.end(), [&event](const JournalRecord& record) {
      return record.Event.Place == event.Name.Place && record.To == event.State;
    });
  }

 private:
  static bool Fits(const JournalRecord& record, const StoredEvent& event, bool samePlace) {
    if (!record.From || !record.To || record.Trial) return false;
    const bool isAt = record.Event.Place == event.Name.Place;
    if (samePlace)
      return isAt && (record.Rule == 0 || event.Rule == 0 || record.Rule == event.Rule);
    return !isAt && record.Rule == event.Rule;
  }

  std::vector<JournalRecord> records_;
  std::vector<bool> used_;
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
      std::vector<JournalRecord> records;
      for (const RecordLog::Place place : places->second) records.push_back(At(place));
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
