// Alerts as screen readers meet them.
#pragma once

namespace kestrin {

/// Screen readers learn that an AlertWindow is an alert, and so read it without its having the
/// focus. Call once; further calls change nothing.
void InstallAlertAccessibility();

}  // namespace kestrin
