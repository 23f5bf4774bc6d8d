// What two sessions of one home have changed in the same settings, as one.
#pragma once

#include "core/settings/SettingsText.h"

namespace kestrin {

/// `theirs` with what has changed from `before` to `ours`. Values that only mean something together
/// are taken together; of the remembered sets, what was added and taken away is.
SettingsMap JoinSettings(const SettingsMap& before, const SettingsMap& ours, SettingsMap theirs);

}  // namespace kestrin
