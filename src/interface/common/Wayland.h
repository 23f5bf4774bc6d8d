// What differs where the compositor places and stacks the windows.
#pragma once

namespace kestrin {

bool IsOnWayland();

}  // namespace kestrin
