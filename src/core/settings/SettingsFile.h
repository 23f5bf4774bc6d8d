// Between the members of KestrinSettings and the settings store.
#pragma once

#include "core/loop/Notices.h"
#include "core/settings/SettingsStore.h"

namespace kestrin {

/// Gives every member whose key exists with the right type and size its stored value; the others
/// keep theirs. Ends the program when the store could not be opened, and tells the user when it was
/// found damaged. Main thread; takes KestrinSettings::Protect.
void InitSettings(SettingsStore& store, Notices& notices);

/// Stores every member and saves, if anything differs from what is stored. May be called as often
/// as settings change; of several failures in a row only the first is reported. Main thread; takes
/// KestrinSettings::Protect.
void WriteSettings(SettingsStore& store, Notices& notices);

}  // namespace kestrin
