// Looking for a display before a toolkit is built, since the toolkit ends the process without one.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace kestrin {

/// Nothing when a window could be opened, else the reason in one line. Follows QT_QPA_PLATFORM,
/// WAYLAND_DISPLAY and DISPLAY as the toolkit does, and connects to what they name.
std::optional<std::string> WhyNoDisplay();

/// The variables that let another process of this session open its windows where this one can, and
/// look like the rest. Each display is tried first; empty when none can be reached.
std::map<std::string, std::string> DisplayEnvironment();

}  // namespace kestrin
