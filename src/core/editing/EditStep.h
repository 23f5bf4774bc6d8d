// One step of what a person did to a set, as it is taken back and done again.
#pragma once

#include <string>
#include <vector>

#include "core/editing/FieldChanges.h"
#include "core/events/EventList.h"

namespace kestrin {

enum class EditKind {
  Change,
  New,
  Paste,
  Duplicate,
  Delete,
  Cut,
  Activate,
  Deactivate,
};

/// Either some events changed, each a few fields, or some whole events came or went.
struct EditStep {
  struct Changed {
    uint64 event;
    std::vector<FieldChange> fields;
  };
  /// An event that is out of the set is kept here.
  struct Moved {
    uint64 event;
    EventList::Removed kept;
  };

  EditKind kind = EditKind::Change;
  std::string name;  ///< of the first event, when the step was made
  std::vector<Changed> changed;
  std::vector<Moved> moved;

  size_t Count() const { return changed.size() + moved.size(); }
  uint64 FirstEvent() const { return moved.empty() ? changed.front().event : moved.front().event; }
  bool Takes() const { return kind == EditKind::Delete || kind == EditKind::Cut; }
  bool IsMove() const { return !moved.empty(); }
};

}  // namespace kestrin
