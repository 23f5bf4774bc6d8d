// The displays that a program started by the bus would be given.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// A variable of the environment, "DISPLAY=:0".
using Assignment = std::string;

/// Those of `lines` that name a display.
std::vector<Assignment> DisplaysAmong(const std::vector<std::string>& lines);

/// What stands in a file, cut at each `separator`; empty when it cannot be read.
std::vector<std::string> PartsOfFile(const std::string& path, char separator);

/// Whether somebody listens there. An X display of another machine is not tried and counts as
/// there.
bool IsReachable(const Assignment& display);

}  // namespace kestrin
