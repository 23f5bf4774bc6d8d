// What the bus was told of the display, kept where another process can read it: the bus gives
// nobody the variables that it starts programs with.
#pragma once

namespace kestrin {

/// Below the runtime folder; docs/bus.md has what stands in it.
inline constexpr char ToldDisplayFile[] = "/kestrin/display";
inline constexpr const char* DisplayVariables[] = {"DISPLAY", "WAYLAND_DISPLAY"};

}  // namespace kestrin
