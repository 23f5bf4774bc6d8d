// How a set's file knows the set's events, whatever they are called and wherever they stand since.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/journal/JournalRecord.h"

namespace kestrin {

class Event;
class EventSet;

/// Callers hold the set, or are the main thread. Nothing is worked out until somebody asks or
/// changes something: reading a set costs nothing here.
class NamesInFile {
 public:
  /// Before the event gets another name or handler.
  void BeforeChange(const Event& event);
  /// Before an event leaves the set or joins it.
  void BeforeMove(const EventSet& set) { Keep(set); }
  void Removed(const Event& event);

  /// An event that is not in the file has a place that no file knows.
  EventName Of(const EventSet& set, const Event& event);

  /// The file has everything as it stands now. What the events were called in it, and what they are
  /// called from now on; an event that has gone from it has the place -1.
  using Renaming = std::pair<EventName, EventName>;
  std::vector<Renaming> Saved(const EventSet& set);

 private:
  using Places = std::vector<std::pair<uint64, int32>>;  ///< of a handle; in the order of handles

  void Keep(const EventSet& set);
  Places::const_iterator PlaceOf(uint64 handle) const;
  bool HasPlace(uint64 handle) const { return PlaceOf(handle) != places_.end(); }

  bool kept_ = false;
  uint64 firstNew_ = 1;                            ///< handles from here on are not in the file
  Places places_;                                  ///< those other than 0
  std::unordered_map<uint64, EventName> changed_;  ///< the name and handler in the file
  std::unordered_map<uint64, EventName> added_;    ///< as they were first called here
  std::unordered_map<uint64, EventName> removed_;
};

}  // namespace kestrin
