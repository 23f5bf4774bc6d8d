#include "interface/icons/UserIcons.h"

#include <algorithm>

#include "core/settings/KestrinSettings.h"

namespace kestrin {

namespace {

/// With Protect held. A stored count may promise more icons than there are.
void Tell(KestrinSettings& settings) {
  settings.NumberOfUserIcons = static_cast<int32>(settings.UserMiniIcons.size());
  settings.Changed();
}

}  // namespace

std::vector<IconPair> UserIcons(KestrinSettings& settings) {
  const AutoLock lock(settings.Protect);
  const auto& large = settings.UserLargeIcons;
  const auto& mini = settings.UserMiniIcons;
  std::vector<IconPair> icons;
  for (size_t i = 0; i < std::min(large.size(), mini.size()); ++i)
    icons.push_back({large[i], mini[i]});
  return icons;
}

void AddUserIcon(KestrinSettings& settings, const IconPair& icon) {
  const AutoLock lock(settings.Protect);
  if (settings.WhichUserIcon(icon) >= 0) return;
  settings.UserMiniIcons.push_back(icon.mini);
  settings.UserLargeIcons.push_back(icon.large);
  Tell(settings);
}

void RemoveUserIcon(KestrinSettings& settings, const IconPair& icon) {
  const AutoLock lock(settings.Protect);
  const int32 at = settings.WhichUserIcon(icon);
  if (at < 0) return;
  settings.UserMiniIcons.erase(settings.UserMiniIcons.begin() + at);
  settings.UserLargeIcons.erase(settings.UserLargeIcons.begin() + at);
  Tell(settings);
}

}  // namespace kestrin
