// The argument that says: a start at login. The next time is handed over, nothing is shown.
#pragma once

namespace kestrin {

inline constexpr char BackgroundArgument[] = "-background";

}  // namespace kestrin
