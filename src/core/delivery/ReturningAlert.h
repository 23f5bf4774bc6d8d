// Alerts of an earlier moment or process, shown again with all that is known of their event now.
#pragma once

#include <string>

#include "core/events/Context.h"
#include "core/journal/JournalRecord.h"
#include "core/ports/Alert.h"

namespace kestrin {

class Event;
class EventSet;

struct FoundEvent {
  EventSet* set = nullptr;  ///< open
  Event* event = nullptr;
};

/// Among the open sets, by what its file calls it. The open sets are locked meanwhile.
FoundEvent FindEvent(const Context& context, const std::string& path, const EventName& name);

struct ReturningAlert {
  KeptAlert Alert;
  std::string EventName;
  int32 Occurrence = 0;
  std::string Record;     ///< of the journal; may be empty
  std::string KeptId;     ///< of the keeper of put-off alerts; may be empty
  std::string Run, Open;  ///< what a question carries out if its event has gone
};

/// Asks for the alert. Its first button acts where the event is found and stands at that
/// occurrence. Main thread, no set locked.
void ShowReturning(Context& context, const ReturningAlert& alert, const FoundEvent& found);

}  // namespace kestrin
