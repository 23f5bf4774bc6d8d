#include "interface/icons/UserIcons.h"

#include <algorithm>

#include "core/settings/KestrinSettings.h"

namespace kestrin {

namespace {

/// With Protect held. A stored count may promise more icons than there are.
void Tell() {
  KestrinSettings::NumberOfUserIcons = static_cast<int32>(KestrinSettings::UserMiniIcons.size());
  KestrinSettings::Changed();
}

}  // namespace

std::vector<IconPair> UserIcons() {
  const AutoLock settings(KestrinSettings::Protect);
  const auto& large = KestrinSettings::UserLargeIcons;
  const auto& mini = KestrinSettings::UserMiniIcons;
  std::vector<IconPair> icons;
  for (size_t i = 0; i < std::min(large.size(), mini.size()); ++i)
    icons.push_back({large[i], mini[i]});
  return icons;
}

void AddUserIcon(const IconPair& icon) {
  const AutoLock settings(KestrinSettings::Protect);
  if (KestrinSettings::WhichUserIcon(icon) >= 0) return;
  KestrinSettings::UserMiniIcons.push_back(icon.mini);
  KestrinSettings::UserLargeIcons.push_back(icon.large);
  Tell();
}

void RemoveUserIcon(const IconPair& icon) {
  const AutoLock settings(KestrinSettings::Protect);
  const int32 at = KestrinSettings::WhichUserIcon(icon);
  if (at < 0) return;
  KestrinSettings::UserMiniIcons.erase(KestrinSettings::UserMiniIcons.begin() + at);
  KestrinSettings::UserLargeIcons.erase(KestrinSettings::UserLargeIcons.begin() + at);
  Tell();
}

}  // namespace kestrin
