#include "core/settings/KestrinSettings.h"

#include <algorithm>

namespace kestrin {

void KestrinSettings::Changed() {
  if (WhenChanged) WhenChanged();
}

void KestrinSettings::RememberSet(const std::string& path) {
  if (IsFileRemembered(path)) return;
  SetFileNames.push_back(path);
  Changed();
}

void KestrinSettings::ForgetSet(const std::string& path) {
  const auto found = std::find(SetFileNames.begin(), SetFileNames.end(), path);
  if (found == SetFileNames.end()) return;
  SetFileNames.erase(found);
  Changed();
}

bool KestrinSettings::IsFileRemembered(const std::string& path) const {
  return std::find(SetFileNames.begin(), SetFileNames.end(), path) != SetFileNames.end();
}

void KestrinSettings::UsedSet(const std::string& path) {
  if (!RecentSets.empty() && RecentSets.front() == path) return;
  std::erase(RecentSets, path);
  RecentSets.insert(RecentSets.begin(), path);
  if (RecentSets.size() > MostRecentSets) RecentSets.resize(MostRecentSets);
  Changed();
}

int32 KestrinSettings::WhichUserIcon(const IconPair& icon) const {
  const size_t count = std::min(UserMiniIcons.size(), UserLargeIcons.size());
  for (size_t i = 0; i < count; ++i)
    if (UserMiniIcons[i] == icon.mini && UserLargeIcons[i] == icon.large)
      return static_cast<int32>(i);
  return -1;
}

}  // namespace kestrin
