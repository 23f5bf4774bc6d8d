// Who notes down what a person changes in a set.
#pragma once

#include <optional>

#include "core/timing/EventRecord.h"
#include "support/Bitmap.h"

namespace kestrin {

class Event;

/// What an edit may change of an event, but for its handler's data.
struct EditedState {
  EventRecord record;
  std::optional<IconPair> ownIcon;
  int32 handler = 0;  ///< row of the handler table
};

/// A set has one while its window is open. Main thread, with the set locked or not.
class EditRecorder {
 public:
  virtual ~EditRecorder() = default;
  /// The event is no longer what it was before the edit.
  virtual void Edited(Event& event, const EditedState& before) = 0;
  /// The data of the event's handler is about to be edited: this is what it was before.
  virtual void HandlerShown(Event& event) = 0;
  /// The data may be other data now, by the person's hand or by the handler's own action.
  virtual void HandlerChanged(Event& event) = 0;
  /// The set was modified in a way that nobody noted.
  virtual void ChangedUnseen() = 0;
  /// The set's file holds everything now.
  virtual void Saved() = 0;
};

}  // namespace kestrin
