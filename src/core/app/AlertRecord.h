// An open alert written down, so that it can be shown again after a forced end.
#pragma once

#include "core/ports/Alert.h"
#include "support/Message.h"

namespace kestrin {

class Event;
class OpenSets;

/// Everything but the continuation; the event is named by its set's file, its name and occurrence.
Message RecordAlert(const AlertRequest& request, OpenSets& sets);

/// The request without its continuation, or nothing when the record is damaged.
std::optional<AlertRequest> AlertOfRecord(const Message& record);

/// The event a record speaks of, among the open sets; null when it is gone or has moved on. The
/// handler of a question asks again about the same event, whatever its next occurrence is.
Event* EventOfRecord(const Message& record, OpenSets& sets);

}  // namespace kestrin
