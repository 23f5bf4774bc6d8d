// The user's own icons, which the settings keep. No set may be locked.
#pragma once

#include <vector>

#include "support/Bitmap.h"

namespace kestrin {

class KestrinSettings;

std::vector<IconPair> UserIcons(KestrinSettings& settings);
/// Nothing happens when the icon is there already, or is not.
void AddUserIcon(KestrinSettings& settings, const IconPair& icon);
void RemoveUserIcon(KestrinSettings& settings, const IconPair& icon);

}  // namespace kestrin
