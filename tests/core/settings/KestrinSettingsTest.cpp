#include "core/settings/KestrinSettings.h"

#include <cmath>
#include <limits>
#include <memory>

#include "core/settings/BuiltInPrefs.h"
#include "core/settings/SettingsFile.h"
#include "harness/FailingFileDoor.h"
#include "harness/MemoryFileDoor.h"
#include "harness/PageTable.h"
#include "harness/TestContext.h"

namespace kestrin {
namespace {

constexpr const char* File = "/c/Kestrin/KestrinSettings.json";
constexpr uint32 Long = FourCharCode("LONG"), Bool = FourCharCode("BOOL"),
                 Byte = FourCharCode("BYTE");

std::string BytesOf(int32 value) {
  return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

std::array<float, 4> Sides(Rect rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

struct KestrinSettingsTest : testing::Test {
  TestContext context;
  KestrinSettings& Settings = context.Settings;
  MemoryFileDoor disk;
  FailingFileDoor door{disk};
  std::unique_ptr<SettingsStore> store;

  KestrinSettingsTest() { Restart(); }

  /// As at the start of the program, with what was saved.
  void Restart() {
    static_cast<SettingsValues&>(Settings) = {};
    store = std::make_unique<SettingsStore>(MakeBuiltInPrefs(door, "/c"));
  }
  // Every member that a key may change, as one text.
  std::string Snapshot() const {
    return testing::PrintToString(std::tuple(
               Settings.SetFileNames, Settings.RecentSets, Settings.SelectedSetHandling,
               Settings.WhenNoSetIsOpen, Settings.WhichEventsToDeliver, Settings.Layout.ViewMode,
               Settings.Layout.NumberOfKeys, Settings.NumberOfUserIcons, Settings.Time24Hour,
               Settings.RememberWindowSetupAsDefault, Settings.UserMiniIcons,
               Settings.UserLargeIcons, Settings.ZoneName)) +
           testing::PrintToString(std::tuple(
               Sides(Settings.SetWindowPosition.DefaultFrame()),
               Sides(Settings.EventWindowPosition.DefaultFrame()),
               Sides(Settings.SettingsWindowFrame), Settings.Layout.ColumnOrder,
               Settings.Layout.ColumnShown, Settings.Layout.ColumnWidth, Settings.Layout.SortKeys,
               Settings.Layout.SortModes, Settings.IconPanelLocation.x,
               Settings.IconPanelLocation.y, Settings.ReminderBoxes, Settings.EveningTime,
               Settings.MorningTime, Settings.LastLater, Settings.ShowRemindersAs,
               Settings.ReminderSound, Settings.ReminderVolume, Settings.SoundUntilAnswered,
               Settings.NagSoundUntilAnswered));
  }
  void Init() { InitSettings(Settings, *store, context.Notes); }
  void Write() { WriteSettings(Settings, *store, context.Notes); }
};

TEST_F(KestrinSettingsTest, ListsAndTextsAreThereAgainAfterARestart) {
  Settings.SetFileNames = {"/home/u/a.kestrin", "/home/u/b \xff"};
  Settings.RecentSets = {"/home/u/b \xff", "/c"};
  Settings.Layout.ColumnShown = {false, true, false, true, false, true};
  Settings.Layout.ColumnWidth = {0.1f, 2, 3, 4, 5, 6};
  Settings.NumberOfUserIcons = 2;
  Settings.UserMiniIcons = {std::string(256, 'm'), std::string(256, 'n')};
  Settings.UserLargeIcons = {std::string(1024, 'x'), std::string(1024, 'y')};
  Settings.ZoneName = "Europe/Berlin";
  const std::string before = Snapshot();
  Write();
  Restart();
  Init();
  EXPECT_EQ(Snapshot(), before);
  for (const int32 mini : {0, 1})
    EXPECT_EQ(Settings.WhichUserIcon({.large = Settings.UserLargeIcons[1],
                                      .mini = Settings.UserMiniIcons[static_cast<size_t>(mini)]}),
              mini == 1 ? 1 : -1);
  const auto stamp = disk.Stamp(File);
  Write();
  EXPECT_EQ(disk.Stamp(File), stamp) << "nothing differs";
}

TEST_F(KestrinSettingsTest, EveryKeyOnThePageCountsOnlyWithItsTypeAndSize) {
  const std::string initial = Snapshot();
  int keys = 0;
  for (const auto& row : TableOfPage("settings.md", "| key | type |")) {
    const std::string key = row.at(0).substr(1, row[0].size() - 2), type = row.at(1).substr(1, 4);
    if (row[2].find_first_not_of("0123456789") != row[2].npos || key == "NumberOfSetsToUse")
      continue;
    SCOPED_TRACE(key);
    const size_t size = std::stoul(row[2]);
    const uint32 code = FourCharCode({type[0], type[1], type[2], type[3], '\0'});
    const auto after = [&](size_t bytes, char fill, uint32 as) {
      Restart();
      store->Set(key, std::string(bytes, fill), as);
      Init();
      return Snapshot();
    };
    bool counts = false;
    for (const char fill : {'\0', '\1', '\2', '\xff'}) {
      EXPECT_EQ(after(size - 1, fill, code), initial);
      EXPECT_EQ(after(size + 1, fill, code), initial);
      EXPECT_EQ(after(size, fill, code + 1), initial);
      const std::string changed = after(size, fill, code);
      counts |= changed != initial;
      Write();
      Restart();
      Init();
      EXPECT_EQ(Snapshot(), changed) << "and it is there again";
      disk.Remove(File);
    }
    EXPECT_TRUE(counts);
    ++keys;
  }
  EXPECT_EQ(keys, 26);
}

TEST_F(KestrinSettingsTest, TheCountSplitsTheNamesAndTheBytesBoundThem) {
  using namespace std::string_literals;
  const std::tuple<int32, std::string, std::vector<std::string>> cases[] = {
      {2, "/a\0/b\0"s, {"/a", "/b"}},        {1, "/a\0/b\0"s, {"/a"}}, {-1, "/a\0"s, {}},
      {2147483647, "/a\0/b"s, {"/a", "/b"}}, {3, "\0\0/c\0"s, {"/c"}},
  };
  for (const auto& [count, bytes, names] : cases) {
    Restart();
    store->Set("NumberOfSetsToUse", BytesOf(count), Long);
    store->Set("SetsToUse", bytes, Byte);
    Init();
    EXPECT_EQ(Settings.SetFileNames, names) << bytes;
  }
  Settings.SetFileNames.clear();
  Write();
  EXPECT_FALSE(store->Get("SetsToUse"));
  EXPECT_EQ(store->Get("NumberOfSetsToUse")->bytes, BytesOf(0));
}

TEST_F(KestrinSettingsTest, IconsOfTheWrongSizeAreNeitherReadNorLost) {
  for (const int32 count : {2, 4, -1, 2147483647}) {
    Restart();
    const std::string bytes(3 * 1280, 'i');
    store->Set("NumberOfUserIcons", BytesOf(count), Long);
    store->Set("UserIcons", bytes, Byte);
    Init();
    EXPECT_EQ(Settings.NumberOfUserIcons, count);
    EXPECT_THAT(Settings.UserMiniIcons, IsEmpty());
    Write();
    EXPECT_EQ(store->Get("UserIcons")->bytes, bytes);
    EXPECT_EQ(store->Get("NumberOfUserIcons")->bytes, BytesOf(count));
  }
  Settings.NumberOfUserIcons = 0;
  Write();
  EXPECT_FALSE(store->Get("UserIcons"));
}

TEST_F(KestrinSettingsTest, AFailureIsReportedOnceUntilASaveSucceedsAndADamagedFileAtOnce) {
  door.FailFromThen = true;
  for (const auto& [failAt, told] : {std::pair(1, 1), {1, 0}, {0, 0}, {1, 1}}) {
    door.FailAt = failAt;
    Settings.Layout.ViewMode += 1;
    Write();
    context.RunMessages();
    int alerts = 0;
    while (context.Ui.AnswerText("WriteSettings: Failed to save settings", 0)) ++alerts;
    EXPECT_EQ(alerts, told);
  }
  door.FailAt = 0;
  disk.Put(File, "{");
  Restart();
  Init();
  context.RunMessages();
  EXPECT_THAT(context.Ui.Texts(), ElementsAre(store->Complaint()));
}

TEST(WindowPositionSetTest, WindowsOpenInStepsAndStartAgain) {
  WindowPositionSet position({16, 33, 569, 357});
  for (int round = 0; round < 2; ++round)
    for (int step = 0; step <= WindowPositionSet::MaxSteps; ++step) {
      const float offset = static_cast<float>(step) * 20;
      EXPECT_EQ(position.NextFrame(), (Rect{16 + offset, 33 + offset, 569 + offset, 357 + offset}));
    }
  position.NextFrame();
  position.SetDefaultFrame({1, 2, 3, 4});
  for (int step = 0; step < WindowPositionSet::MaxSteps; ++step) position.NextFrame();
  EXPECT_EQ(position.NextFrame().left, 1 + 20.0F * WindowPositionSet::MaxSteps);
}

TEST(WindowPositionSetTest, AFrameIsMovedOntoTheScreen) {
  constexpr float Inf = std::numeric_limits<float>::infinity(), Nan = NAN, Max = 3e38f;
  constexpr Rect Screen{0, 0, 999, 599}, Fallback{10, 20, 109, 69};
  const std::pair<Rect, Rect> cases[] = {
      {{950, 590, 1049, 639}, {900, 550, 999, 599}},
      {{-100, 10, 2000, 20}, {0, 10, 999, 20}},
      {{-Max, -Max, Max, Max}, Screen},
      {{0, 0, 10, Nan}, Fallback},
      {{0, -Inf, 10, 10}, Fallback},
      {{-Inf, 0, 10, 10}, Fallback},
      {{0, 0, Inf, 10}, Fallback},
      {{10, 10, 20, 9}, Fallback},
  };
  for (const auto& [frame, expected] : cases)
    EXPECT_EQ(WindowPositionSet::MovedOntoScreen(frame, Screen, Fallback), expected);
  EXPECT_EQ(WindowPositionSet::MovedOntoScreen({0, 0, -1, -1}, Screen, {Nan, 0, 1, 1}), Screen);
}

}  // namespace
}  // namespace kestrin
