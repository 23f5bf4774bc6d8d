// What of the person who runs kestrinctl the engine does not know by itself.
#pragma once

#include <string>

#include "core/delivery/VirtualEngine.h"

namespace kestrin {

/// Reads the person's settings into the engine's. False, with `complaint`, when they cannot be
/// read; the settings then have their initial values. Nothing is written.
bool ReadPersonalSettings(VirtualEngine& engine, std::string* complaint = nullptr);

/// Where the journal of deliveries stands.
std::string JournalFolder();

}  // namespace kestrin
