// The user's own icons, which the settings keep. No set may be locked.
#pragma once

#include <vector>

#include "support/Bitmap.h"

namespace kestrin {

std::vector<IconPair> UserIcons();
/// Nothing happens when the icon is there already, or is not.
void AddUserIcon(const IconPair& icon);
void RemoveUserIcon(const IconPair& icon);

}  // namespace kestrin
