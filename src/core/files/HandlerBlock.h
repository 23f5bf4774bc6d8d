// The data of a handler as the bytes that it writes of itself.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "kestrin/EndianIndependentFile.h"

namespace kestrin {

class Event;
class EventAddOnData;

/// An empty file for a handler's block, known to nobody else.
struct BlockFile : EndianIndependentFile {
  BlockFile();
};

/// As far as a handler can read after a count of 0.
inline constexpr size_t ZerosWithoutData = size_t{64} << 10;

/// The whole block, its count included; nothing when the handler fails.
std::optional<std::string> HandlerBlockOf(EventAddOnData& data);

/// Data of the row's handler for the event, read from such a block; null when the handler fails.
std::unique_ptr<EventAddOnData> DataFromBlock(Event& event, int32 row, const std::string& block);

}  // namespace kestrin
