// Between the settings and their store.
#pragma once

#include "core/loop/Notices.h"
#include "core/settings/KestrinSettings.h"
#include "core/settings/SettingsStore.h"

namespace kestrin {

/// Gives every value whose key exists with the right type and size its stored value; the others
/// keep theirs. Ends the program when the store could not be opened, and tells the user when it was
/// found damaged. Main thread; takes the lock of the settings.
void InitSettings(KestrinSettings& settings, SettingsStore& store, Notices& notices);

/// Stores every value and saves, if anything differs from what is stored. May be called as often
/// as settings change; of several failures in a row only the first is reported. Main thread; takes
/// the lock of the settings.
void WriteSettings(KestrinSettings& settings, SettingsStore& store, Notices& notices);

}  // namespace kestrin
