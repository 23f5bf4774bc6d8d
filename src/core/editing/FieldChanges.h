// What an edit changed of an event, field by field.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "core/events/EditRecorder.h"

namespace kestrin {

struct FieldChange {
  using Value = std::variant<int64, std::string>;

  int32 field;
  Value before, after;
};

/// Never the times and the status, which follow from the rest and from what was delivered, nor the
/// state of the editor's window.
std::vector<FieldChange> ChangesBetween(const EditedState& before, const EditedState& after);

/// Whether an edit of one follows on the other in the same field.
bool TouchSameField(const std::vector<FieldChange>& a, const std::vector<FieldChange>& b);

/// `first` becomes both; what ends as it began is left out.
void JoinChanges(std::vector<FieldChange>& first, const std::vector<FieldChange>& then);

/// The handler's data, as the block that it writes.
FieldChange HandlerDataChange(std::string before, std::string after);

/// Puts the values before or after the changes into the event, and has its times computed if its
/// rule is another one then. Returns whether it is.
bool PutIntoEvent(const std::vector<FieldChange>& changes, bool before, Event& event);

}  // namespace kestrin
