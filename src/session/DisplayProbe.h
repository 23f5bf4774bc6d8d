// Looking for a display before a toolkit is built, since the toolkit ends the process without one.
#pragma once

#include <optional>
#include <string>

namespace kestrin {

/// Nothing when a window could be opened, else the reason in one line. Follows QT_QPA_PLATFORM,
/// WAYLAND_DISPLAY and DISPLAY as the toolkit does, and connects to what they name.
std::optional<std::string> WhyNoDisplay();

}  // namespace kestrin
