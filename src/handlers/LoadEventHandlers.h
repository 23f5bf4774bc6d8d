// Fills the handler table: the built-in handlers, then the add-ons of two folders.
#pragma once

#include <string>

#include "kestrin/Types.h"

namespace kestrin {

struct Context;
class SettingsStore;

inline constexpr const char* DefHandUnknownName = "Unknown";
inline constexpr const char* DefHandDoNothingName = "Do nothing";
inline constexpr const char* DefHandMessageName = "Message";
inline constexpr const char* DefHandCommandName = "Command";
inline constexpr const char* DefHandActOnFileName = "Act on file";

/// What the signed 8-bit count of rows leaves for add-ons.
inline constexpr int32 MaxAddOns = 122;

/// The five built-in rows alone.
void LoadBuiltInHandlers(Context& context);

/// Main thread, once, before any set is read. Add-ons come from "add-ons" in `kestrinDir`, then
/// from `userAddOnFolder`; what fails is reported and left out. `settings` (may be null) serves
/// ReadAddOnSetting and WriteAddOnSetting; it and the context outlive the table.
void LoadEventHandlers(Context& context, SettingsStore* settings, const std::string& kestrinDir,
                       const std::string& userAddOnFolder);

/// Main thread, once, after all sets are gone: lets every add-on clean up, empties the table and
/// ends what the services of the public headers do.
void UnloadEventHandlers(Context& context);

}  // namespace kestrin
