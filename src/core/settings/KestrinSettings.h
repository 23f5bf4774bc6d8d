// The application-wide settings: static members only, guarded by Protect. Reading a single int32 or
// bool in the main thread needs no lock.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "core/settings/WindowPositionSet.h"
#include "support/Bitmap.h"
#include "support/Locker.h"

namespace kestrin {

inline constexpr int32 NumberOfColumns = 6;
inline constexpr int32 MaxSortKeys = 5;
inline constexpr Rect InitialSetWindow{16, 33, 569, 357};

enum SetHandling : int32 { ShowAlways = 0, ShowIfNoneOpen = 1, ShowNever = 2 };
enum DeliverMode : int32 {
  DeliverShown = 0,
  DeliverShownOrRemembered = 1,
  DeliverRemembered = 2,
  DeliverRememberedNotShown = 3,
  DeliverNothing = 4,
};

class KestrinSettings {
 public:
  static Locker Protect;

  static std::vector<std::string> SetFileNames;  ///< remembered sets, canonical paths, in order
  static int32 SelectedSetHandling;
  static int32 WhichEventsToDeliver;
  static bool Time24Hour;
  static bool RememberWindowSetupAsDefault;
  static WindowPositionSet SetWindowPosition;
  static WindowPositionSet EventWindowPosition;
  static std::array<int32, NumberOfColumns> ColumnOrder;
  static std::array<bool, NumberOfColumns> ColumnShown;
  static std::array<float, NumberOfColumns> ColumnWidth;
  static int32 ViewMode;
  static int32 NumberOfKeys;
  static std::array<int32, MaxSortKeys> SortKeys;
  static std::array<int32, MaxSortKeys> SortModes;
  static Point IconPanelLocation;
  static int32 OpenIconPanel;
  static int32 NumberOfUserIcons;
  static std::vector<std::string> UserMiniIcons;   ///< MiniIconBytes each
  static std::vector<std::string> UserLargeIcons;  ///< LargeIconBytes each, same index
  static Rect SettingsWindowFrame;
  static std::string ZoneName;  ///< the system's zone when times were last computed; may be empty

  /// Called, with Protect held, after each of the changes below and after Changed().
  static std::function<void()> WhenChanged;
  static void Changed();

  /// Callers hold Protect. Nothing happens when the path is there already, or is not.
  static void RememberSet(const std::string& path);
  static void ForgetSet(const std::string& path);
  static bool IsFileRemembered(const std::string& path);

  /// The first user icon with these bytes, or -1.
  static int32 WhichUserIcon(const IconPair& icon);

  /// All members at their initial values; for tests.
  static void Reset();
};

}  // namespace kestrin
