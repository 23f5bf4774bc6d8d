// The application-wide settings, guarded by Protect. Reading a single int32 or bool in the main
// thread needs no lock.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/settings/SetLayout.h"
#include "core/settings/WindowPositionSet.h"
#include "support/Bitmap.h"
#include "support/Locker.h"

namespace kestrin {

enum SetHandling : int32 { ShowAlways = 0, ShowIfNoneOpen = 1, ShowNever = 2 };
enum DeliverMode : int32 {
  DeliverShown = 0,
  DeliverShownOrRemembered = 1,
  DeliverRemembered = 2,
  DeliverRememberedNotShown = 3,
  DeliverNothing = 4,
};

enum WithoutSet : int32 { ShowLastUsed = 0, ShowNewSet = 1 };

enum ReminderFace : int32 { AsWindows = 0, AsNotifications = 1, AsBoth = 2 };
/// What the setting means; -1 is until a person has chosen. `keepsAbove`: windows can be kept above
/// others.
constexpr int32 FacesChosen(int32 setting, bool keepsAbove) {
  if (setting >= AsWindows && setting <= AsBoth) return setting;
  return keepsAbove ? AsWindows : AsBoth;
}

enum SoundKind : int32 { ThemeSound = 0, FileSound = 1, NoSound = 2 };

/// What is set, as at the very first start: `= {}` puts all of it back.
struct SettingsValues {
  std::vector<std::string> SetFileNames;  ///< remembered sets, canonical paths, in order
  std::vector<std::string> RecentSets;    ///< sets that were used, canonical paths, newest first
  int32 SelectedSetHandling = ShowIfNoneOpen;
  int32 WhenNoSetIsOpen = ShowLastUsed;  ///< what a start shows then
  int32 WhichEventsToDeliver = DeliverShownOrRemembered;
  bool Time24Hour = false;
  bool RememberWindowSetupAsDefault = true;
  /// Of new sets; but where their windows open, SetWindowPosition says.
  SetLayout Layout;
  WindowPositionSet SetWindowPosition{SetLayout().WindowFrame};
  WindowPositionSet EventWindowPosition{Rect{40, 60, 407, 450}};
  Point IconPanelLocation{100, 80};
  int32 NumberOfUserIcons = 0;
  std::vector<std::string> UserMiniIcons;   ///< MiniIconBytes each
  std::vector<std::string> UserLargeIcons;  ///< LargeIconBytes each, same index
  Rect SettingsWindowFrame{60, 50, 342, 350};
  std::string ZoneName;           ///< the system's zone when times were last computed; may be empty
  int32 ReminderBoxes = 3;        ///< reminders that stand as boxes; 0 = all, 1 = always the window
  int32 ShowRemindersAs = -1;     ///< see FacesChosen
  int32 EveningTime = 18 * 3600;  ///< of "This evening", seconds after midnight
  int32 MorningTime = 8 * 3600;
  int32 LastLater = -1;  ///< the LaterChoice that was taken last, or -1
  int32 ReminderSound = ThemeSound;
  std::string ReminderSoundFile;
  int32 ReminderVolume = 100;  ///< percent
  bool SoundUntilAnswered = false;
  bool NagSoundUntilAnswered = false;
};

class KestrinSettings : public SettingsValues {
 public:
  Locker Protect{"KestrinSettings", LockRank::Settings};

  /// Called, with Protect held, after each of the changes below and after Changed().
  std::function<void()> WhenChanged;
  void Changed();

  /// Callers hold Protect. Nothing happens when the path is there already, or is not.
  void RememberSet(const std::string& path);
  void ForgetSet(const std::string& path);
  bool IsFileRemembered(const std::string& path) const;

  /// A person has opened or saved the set: it stands first among the recent ones. Callers hold
  /// Protect.
  static constexpr size_t MostRecentSets = 10;
  void UsedSet(const std::string& path);

  /// The first user icon with these bytes, or -1.
  int32 WhichUserIcon(const IconPair& icon) const;
};

}  // namespace kestrin
