// The states of an event as a record tells them: "1794733200,1794733200,1", or "gone".
#pragma once

#include <optional>
#include <string>

#include "core/journal/JournalRecord.h"

namespace kestrin {

/// Nothing when it is no state.
std::optional<EventState> EventStateOf(const std::string& text);

}  // namespace kestrin
