#include "core/settings/KestrinSettings.h"

#include <algorithm>

namespace kestrin {

namespace {

constexpr Rect InitialEventWindow{40, 60, 407, 450};
constexpr Rect InitialSettingsWindow{60, 50, 342, 350};
constexpr Point InitialIconPanel{100, 80};
constexpr std::array<int32, NumberOfColumns> InitialOrder = {0, 1, 2, 3, 4, 5};
constexpr std::array<bool, NumberOfColumns> InitialShown = {true, true, true, false, true, true};
constexpr std::array<float, NumberOfColumns> InitialWidth = {35, 190, 150, 150, 60, 115};
constexpr std::array<int32, MaxSortKeys> InitialSortKeys = {2, 0, 0, 0, 0};
constexpr std::array<int32, MaxSortKeys> InitialSortModes = {0, 2, 2, 2, 2};

}  // namespace

Locker KestrinSettings::Protect("KestrinSettings", LockRank::Settings);
std::vector<std::string> KestrinSettings::SetFileNames;
int32 KestrinSettings::SelectedSetHandling = ShowIfNoneOpen;
int32 KestrinSettings::WhichEventsToDeliver = DeliverShownOrRemembered;
bool KestrinSettings::Time24Hour = false;
bool KestrinSettings::RememberWindowSetupAsDefault = true;
WindowPositionSet KestrinSettings::SetWindowPosition(InitialSetWindow);
WindowPositionSet KestrinSettings::EventWindowPosition(InitialEventWindow);
std::array<int32, NumberOfColumns> KestrinSettings::ColumnOrder = InitialOrder;
std::array<bool, NumberOfColumns> KestrinSettings::ColumnShown = InitialShown;
std::array<float, NumberOfColumns> KestrinSettings::ColumnWidth = InitialWidth;
int32 KestrinSettings::ViewMode = 0;
int32 KestrinSettings::NumberOfKeys = 1;
std::array<int32, MaxSortKeys> KestrinSettings::SortKeys = InitialSortKeys;
std::array<int32, MaxSortKeys> KestrinSettings::SortModes = InitialSortModes;
Point KestrinSettings::IconPanelLocation = InitialIconPanel;
int32 KestrinSettings::OpenIconPanel = 0;
int32 KestrinSettings::NumberOfUserIcons = 0;
std::vector<std::string> KestrinSettings::UserMiniIcons;
std::vector<std::string> KestrinSettings::UserLargeIcons;
Rect KestrinSettings::SettingsWindowFrame = InitialSettingsWindow;
std::string KestrinSettings::ZoneName;
std::function<void()> KestrinSettings::WhenChanged;

void KestrinSettings::Reset() {
  SetFileNames.clear();
  SelectedSetHandling = ShowIfNoneOpen;
  WhichEventsToDeliver = DeliverShownOrRemembered;
  Time24Hour = false;
  RememberWindowSetupAsDefault = true;
  SetWindowPosition = WindowPositionSet(InitialSetWindow);
  EventWindowPosition = WindowPositionSet(InitialEventWindow);
  ColumnOrder = InitialOrder;
  ColumnShown = InitialShown;
  ColumnWidth = InitialWidth;
  ViewMode = 0;
  NumberOfKeys = 1;
  SortKeys = InitialSortKeys;
  SortModes = InitialSortModes;
  IconPanelLocation = InitialIconPanel;
  OpenIconPanel = 0;
  NumberOfUserIcons = 0;
  UserMiniIcons.clear();
  UserLargeIcons.clear();
  SettingsWindowFrame = InitialSettingsWindow;
  ZoneName.clear();
  WhenChanged = nullptr;
}

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

bool KestrinSettings::IsFileRemembered(const std::string& path) {
  return std::find(SetFileNames.begin(), SetFileNames.end(), path) != SetFileNames.end();
}

int32 KestrinSettings::WhichUserIcon(const IconPair& icon) {
  const size_t count = std::min(UserMiniIcons.size(), UserLargeIcons.size());
  for (size_t i = 0; i < count; ++i)
    if (UserMiniIcons[i] == icon.mini && UserLargeIcons[i] == icon.large)
      return static_cast<int32>(i);
  return -1;
}

}  // namespace kestrin
