// Events from messages; Event::GenerateMessageForEvent is the way there. docs/event-message.md.
#pragma once

#include <memory>
#include <string>

#include "core/events/Event.h"
#include "support/Message.h"

namespace kestrin {

struct EventFromMessageResult {
  /// Not yet in the set; null when the message is no whole event.
  std::unique_ptr<Event> NewEvent;
  std::string TextsCut;   ///< what to tell the user of texts that were too long; may be empty
  std::string Complaint;  ///< what to tell the user of a handler that failed; may be empty
};

/// Builds an event for `owner`, its times reckoned as at now. Takes any message.
EventFromMessageResult EventFromMessage(EventSet& owner, const Message& message);

}  // namespace kestrin
