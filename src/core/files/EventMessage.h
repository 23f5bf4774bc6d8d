// Events as messages, and back; docs/event-message.md has the table.
#pragma once

#include <memory>
#include <string>

#include "core/events/Event.h"
#include "support/Message.h"

namespace kestrin {

/// Adds the event's fields and its handler's data to an empty message. False, with the message of
/// no use, when the handler fails or the event lacks the icon that its number promises.
bool GenerateMessageForEvent(const Event& event, Message* message);

struct EventFromMessageResult {
  /// Not yet in the set; null when the message is no whole event.
  std::unique_ptr<Event> NewEvent;
  std::string TextsCut;   ///< what to tell the user of texts that were too long; may be empty
  std::string Complaint;  ///< what to tell the user of a handler that failed; may be empty
};

/// Builds an event for `owner`, its times worked out as at now. Takes any message.
EventFromMessageResult EventFromMessage(EventSet& owner, const Message& message);

}  // namespace kestrin
