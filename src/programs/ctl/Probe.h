// The helper program through which kestrinctl asks the session bus.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace kestrin {

/// What KestrinProbe of that folder says, by the keys of docs/bus.md. Nothing when it cannot be
/// started or fails. It ends within some seconds, whatever the bus does.
std::optional<std::map<std::string, std::string>> AskProbe(const std::string& folder);

}  // namespace kestrin
