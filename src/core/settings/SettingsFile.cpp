#include "core/settings/SettingsFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>

#include "support/Message.h"

namespace kestrin {

namespace {

constexpr uint32 LongType = FourCharCode("LONG"), BoolType = FourCharCode("BOOL"),
                 FloatType = FourCharCode("FLOT"), RectType = FourCharCode("RECT"),
                 PointType = FourCharCode("BPNT"), ByteType = FourCharCode("BYTE"),
                 TextType = FourCharCode("CSTR");
constexpr int64 IconBytes = MiniIconBytes + LargeIconBytes;

template <typename T>
std::span<T> One(T& value) {
  return std::span(&value, 1);
}

// The three things that are done with a key. Each answers whether it has changed `values`.

struct Reader {
  const SettingsStore& store;

  template <typename T, size_t Count>
  bool operator()(const char* key, uint32 type, std::span<T, Count> values) {
    const auto stored = store.Get(key);
    if (!stored || stored->type != type || stored->bytes.size() != values.size_bytes())
      return false;
    if constexpr (std::is_same_v<T, bool>)
      std::transform(stored->bytes.begin(), stored->bytes.end(), values.begin(),
                     [](char byte) { return byte != 0; });
    else
      std::memcpy(values.data(), stored->bytes.data(), values.size_bytes());
    return true;
  }
};

struct Writer {
  SettingsStore& store;
  status_t status = StatusOk;  ///< the last failure

  void Bytes(const char* key, uint32 type, std::string_view bytes) {
    const status_t result = store.Set(key, bytes, type);
    if (result != StatusOk) status = result;
  }
  template <typename T, size_t Count>
  bool operator()(const char* key, uint32 type, std::span<T, Count> values) {
    std::string bytes(values.size_bytes(), '\0');
    std::memcpy(bytes.data(), values.data(), bytes.size());
    Bytes(key, type, bytes);
    return false;
  }
};

struct Eraser {
  SettingsStore& store;

  template <typename T, size_t Count>
  bool operator()(const char* key, uint32, std::span<T, Count>) {
    store.Delete(key);
    return false;
  }
};

template <typename Visitor>
void VisitChoices(Visitor& visit, SettingsValues& settings) {
  visit("SelectedSetHandling", LongType, One(settings.SelectedSetHandling));
  visit("WithoutSet", LongType, One(settings.WhenNoSetIsOpen));
  visit("WhichEventsToDeliver", LongType, One(settings.WhichEventsToDeliver));
  visit("Time24Hour", BoolType, One(settings.Time24Hour));
  visit("RememberWindowSetupAsDefault", BoolType, One(settings.RememberWindowSetupAsDefault));
  visit("ReminderBoxes", LongType, One(settings.ReminderBoxes));
  visit("ShowRemindersAs", LongType, One(settings.ShowRemindersAs));
  visit("EveningTime", LongType, One(settings.EveningTime));
  visit("MorningTime", LongType, One(settings.MorningTime));
  visit("LastLater", LongType, One(settings.LastLater));
  visit("ReminderSound", LongType, One(settings.ReminderSound));
  visit("ReminderVolume", LongType, One(settings.ReminderVolume));
  visit("SoundUntilAnswered", BoolType, One(settings.SoundUntilAnswered));
  visit("NagSoundUntilAnswered", BoolType, One(settings.NagSoundUntilAnswered));
}

template <typename Visitor>
void VisitFrame(Visitor& visit, const char* key, WindowPositionSet& position) {
  Rect frame = position.DefaultFrame();
  if (visit(key, RectType, One(frame))) position.SetDefaultFrame(frame);
}

template <typename Visitor>
void VisitLayout(Visitor& visit, SettingsValues& settings) {
  VisitFrame(visit, "SetWindowFrame", settings.SetWindowPosition);
  visit("ColumnOrder", LongType, std::span(settings.Layout.ColumnOrder));
  visit("ColumnShown", BoolType, std::span(settings.Layout.ColumnShown));
  visit("ColumnWidth", FloatType, std::span(settings.Layout.ColumnWidth));
  visit("ViewMode", LongType, One(settings.Layout.ViewMode));
  visit("NumberOfKeys", LongType, One(settings.Layout.NumberOfKeys));
  visit("SortKeys", LongType, std::span(settings.Layout.SortKeys));
  visit("SortModes", LongType, std::span(settings.Layout.SortModes));
  VisitFrame(visit, "EventWindowFrame", settings.EventWindowPosition);
}

template <typename Visitor>
void VisitSettingsWindow(Visitor& visit, SettingsValues& settings) {
  visit("SettingsWindowFrame", RectType, One(settings.SettingsWindowFrame));
}

template <typename Visitor>
void VisitIconNumbers(Visitor& visit, SettingsValues& settings) {
  visit("IconPanelLocation", PointType, One(settings.IconPanelLocation));
  visit("NumberOfUserIcons", LongType, One(settings.NumberOfUserIcons));
}

/// Up to `most` paths, each ended by a zero byte; `names` stay as they are when nothing is stored.
void ReadPaths(const SettingsStore& store, const char* key, size_t most,
               std::vector<std::string>& names) {
  const auto stored = store.Get(key);
  if (!stored || stored->type != ByteType) return;
  names.clear();
  std::string_view rest = stored->bytes;
  for (; most > 0 && !rest.empty(); --most) {
    const std::string_view name = rest.substr(0, rest.find('\0'));
    if (!name.empty()) names.emplace_back(name);
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
  }
}

// The count decides how many names there are, the bytes bound them.
void ReadSetNames(Reader& read, SettingsValues& settings) {
  int32 count = 0;
  read("NumberOfSetsToUse", LongType, One(count));
  if (count > 0)
    ReadPaths(read.store, "SetsToUse", static_cast<size_t>(count), settings.SetFileNames);
  ReadPaths(read.store, "RecentSets", KestrinSettings::MostRecentSets, settings.RecentSets);
}

void ReadIcons(const SettingsStore& store, SettingsValues& settings) {
  const auto stored = store.Get("UserIcons");
  if (settings.NumberOfUserIcons <= 0 || !stored || stored->type != ByteType ||
      static_cast<int64>(stored->bytes.size()) != IconBytes * settings.NumberOfUserIcons)
    return;
  settings.UserMiniIcons.clear();
  settings.UserLargeIcons.clear();
  for (std::string_view rest = stored->bytes; !rest.empty(); rest.remove_prefix(IconBytes)) {
    settings.UserMiniIcons.emplace_back(rest.substr(0, MiniIconBytes));
    settings.UserLargeIcons.emplace_back(rest.substr(MiniIconBytes, LargeIconBytes));
  }
}

void ReadText(const SettingsStore& store, const char* key, std::string& text) {
  const auto stored = store.Get(key);
  if (stored && stored->type == TextType) text = stored->bytes.substr(0, stored->bytes.find('\0'));
}

void WritePaths(Writer& write, const char* key, const std::vector<std::string>& names) {
  std::string bytes;
  for (const std::string& name : names) bytes.append(name).push_back('\0');
  if (bytes.empty())
    write.store.Delete(key);
  else
    write.Bytes(key, ByteType, bytes);
}

void WriteSetNames(Writer& write, const SettingsValues& settings) {
  auto count = static_cast<int32>(settings.SetFileNames.size());
  write("NumberOfSetsToUse", LongType, One(count));
  WritePaths(write, "SetsToUse", settings.SetFileNames);
  WritePaths(write, "RecentSets", settings.RecentSets);
}

void WriteIcons(Writer& write, const SettingsValues& settings) {
  std::string icons;
  const size_t count = std::min(settings.UserMiniIcons.size(), settings.UserLargeIcons.size());
  for (size_t i = 0; i < count; ++i) {
    std::string mini = settings.UserMiniIcons[i], large = settings.UserLargeIcons[i];
    mini.resize(MiniIconBytes);
    large.resize(LargeIconBytes);
    icons += mini + large;
  }
  if (!icons.empty())
    write.Bytes("UserIcons", ByteType, icons);
  else if (settings.NumberOfUserIcons == 0)
    write.store.Delete("UserIcons");
  // Else icons are there that could not be read: they stay as they are.
}

}  // namespace

void InitSettings(KestrinSettings& settings, SettingsStore& store, Notices& notices) {
  if (store.InitStatus() != StatusOk)
    notices.HandleErrorAndExit("InitSettings: Libprefs failed to initialize");
  if (store.LoadStatus() != StatusOk)
    notices.HandleErrorAndExit("InitSettings: Libprefs failed to initialize settings");
  const AutoLock lock(settings.Protect);
  Reader read{store};
  ReadSetNames(read, settings);
  VisitChoices(read, settings);
  if (settings.RememberWindowSetupAsDefault) VisitLayout(read, settings);
  VisitSettingsWindow(read, settings);
  VisitIconNumbers(read, settings);
  ReadIcons(store, settings);
  ReadText(store, "ZoneName", settings.ZoneName);
  ReadText(store, "ReminderSoundFile", settings.ReminderSoundFile);
  if (const std::string complaint = store.Complaint(); !complaint.empty())
    notices.ReportError(complaint);
}

void WriteSettings(KestrinSettings& settings, SettingsStore& store, Notices& notices) {
  const AutoLock lock(settings.Protect);
  Writer write{store};
  WriteSetNames(write, settings);
  VisitChoices(write, settings);
  if (settings.RememberWindowSetupAsDefault) {
    VisitLayout(write, settings);
    VisitSettingsWindow(write, settings);
  } else {
    Eraser erase{store};
    VisitLayout(erase, settings);
    VisitSettingsWindow(erase, settings);
    // Of an earlier layout; nothing reads them any more.
    store.Delete("GroupActiveEventsFirst");
    store.Delete("AscendingOrder");
  }
  VisitIconNumbers(write, settings);
  WriteIcons(write, settings);
  write.Bytes("ZoneName", TextType, settings.ZoneName + '\0');
  write.Bytes("ReminderSoundFile", TextType, settings.ReminderSoundFile + '\0');
  const status_t saved = store.Save();
  if (saved != StatusOk) write.status = saved;
  const bool failed = write.status != StatusOk;
  if (failed && !store.UserKnowsOfFailure) {
    std::fprintf(stderr, "Settings: %s\n", store.MessageOf(write.status).c_str());
    notices.ReportError("WriteSettings: Failed to save settings");
  }
  store.UserKnowsOfFailure = failed;
}

}  // namespace kestrin
