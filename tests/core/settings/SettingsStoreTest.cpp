// The built-in store under the settings: its file's text, and what becomes of damaged files.
#include "core/settings/SettingsStore.h"

#include <errno.h>
#include <gmock/gmock.h>

#include "core/settings/BuiltInPrefs.h"
#include "core/settings/SettingsText.h"
#include "harness/FailingFileDoor.h"
#include "harness/MemoryFileDoor.h"

namespace kestrin {
namespace {

using testing::HasSubstr, testing::IsEmpty;
using namespace std::string_literals;

constexpr const char* Folder = "/home/u/.config";
const std::string File = "/home/u/.config/Kestrin/KestrinSettings.json";
constexpr uint32 Text = FourCharCode("CSTR");

TEST(SettingsTextTest, AnUnreadableEntryCostsOnlyItself) {
  for (const char* entry :
       {"5", "[]", "{}", R"({"type":"LONG","value":7})", R"({"type":"LONG","value":[1.5]})",
        R"({"type":"LONG","value":[18446744073709551615]})", R"({"type":"BOOL","value":[256]})",
        R"({"type":"FLOT","value":[1e39]})", R"({"type":"CSTR","hex":"0g"})",
        R"({"type":"CSTR","texts":[1]})", R"({"type":"0x1234567g","hex":""})",
        R"({"type":7,"hex":""})"}) {
    const auto read = ReadSettingsText(std::string(R"({"a":{"type":"BOOL","value":[true]},"b":)") +
                                       entry + R"(,"c":{"type":"LONG","value":[1]}})");
    EXPECT_TRUE(read.isObject) << entry;
    EXPECT_THAT(read.unreadable, testing::ElementsAre("b")) << entry;
    EXPECT_EQ(read.settings.size(), 2u) << entry;
    EXPECT_EQ(read.settings.at("a").bytes, "\1") << entry;
  }
}

TEST(SettingsStoreTest, ValuesLastOnceSavedAndUnknownOnesAreKept) {
  MemoryFileDoor disk;
  disk.Put(File, R"({"Foreign":{"type":"ABCD","hex":"00"}})");
  {
    SettingsStore store(MakeBuiltInPrefs(disk, Folder));
    for (const char* key : {"a", "b"}) store.Set(key, "one", Text);
    const char* stays = store.Get("a")->bytes.data();
    for (int i = 0; i < 100; ++i) store.Set("c" + std::to_string(i), "x", Text);
    EXPECT_EQ(store.Get("a")->bytes.data(), stays) << "a caller may still be looking at it";
    store.Delete("b");
    store.Set("c1", "x", 7);
    EXPECT_EQ(store.Save(), StatusOk);
    store.Set("a", "not saved", Text);
  }
  SettingsStore store(MakeBuiltInPrefs(disk, Folder));
  EXPECT_EQ(store.Get("a")->bytes, "one");
  EXPECT_EQ(store.Get("c1")->type, 7u) << "of the same bytes";
  EXPECT_FALSE(store.Get("b"));
  EXPECT_EQ(store.Get("Foreign")->bytes, "\0"s);
}

struct TwoSessionsTest : testing::Test {
  static std::string List(std::initializer_list<const char*> names) {
    std::string bytes;
    for (const char* const name : names) bytes.append(name).push_back('\0');
    return bytes;
  }
  static void SetSets(SettingsStore& store, std::initializer_list<const char*> names) {
    const auto count = static_cast<int32>(names.size());
    store.Set("NumberOfSetsToUse", {reinterpret_cast<const char*>(&count), sizeof count},
              FourCharCode("LONG"));
    if (count > 0)
      store.Set("SetsToUse", List(names), FourCharCode("BYTE"));
    else
      store.Delete("SetsToUse");
  }
  static std::string Shown(const SettingsStore& store) {
    int32 count = -1;
    store.Get("NumberOfSetsToUse")->bytes.copy(reinterpret_cast<char*>(&count), sizeof count);
    const auto names = store.Get("SetsToUse");
    return std::to_string(count) + ":" + std::string(names ? names->bytes : "");
  }
  MemoryFileDoor Disk;
  FailingFileDoor Door{Disk};
  SettingsStore Open() { return SettingsStore(MakeBuiltInPrefs(Door, Folder)); }
};

TEST_F(TwoSessionsTest, EachChangesOnlyWhatItHasChangedItself) {
  {
    SettingsStore first = Open();
    for (const char* key : {"both", "one", "other", "gone"}) first.Set(key, "old", Text);
    SetSets(first, {"/a", "/b"});
    ASSERT_EQ(first.Save(), StatusOk);
  }
  SettingsStore one = Open(), other = Open();
  Disk.Locked = {File + ".lock"};  // by a third one that hangs
  for (SettingsStore* const store : {&one, &other}) {
    const std::string name = store == &one ? "one" : "other";
    store->Set(name, "new", Text);
    store->Set("both", name, Text);
    if (store == &one) store->Delete("gone");
    ASSERT_EQ(store->Save(), StatusOk);
  }
  SetSets(one, {"/b", "/c"});
  SetSets(other, {"/a", "/b", "/c", "/d"});
  EXPECT_EQ(one.Save(), StatusOk);
  EXPECT_EQ(other.Save(), StatusOk);
  const SettingsStore now = Open();
  for (const auto& [key, value] : {std::pair("one", "new"), {"other", "new"}, {"both", "other"}})
    EXPECT_EQ(now.Get(key)->bytes, value);
  EXPECT_FALSE(now.Get("gone"));
  EXPECT_EQ(Shown(now), "3:" + List({"/b", "/c", "/d"}));
  one.Set("both", "one again", Text);
  SetSets(one, {});
  EXPECT_EQ(one.Save(), StatusOk);
  EXPECT_EQ(Shown(Open()), "1:" + List({"/d"})) << "what one has never seen stays";
  SettingsStore last = Open();
  SetSets(last, {});
  EXPECT_EQ(last.Save(), StatusOk);
  EXPECT_EQ(Shown(Open()), "0:");
  EXPECT_EQ(Open().Get("other")->bytes, "new");
}

TEST_F(TwoSessionsTest, IconsAndTheirNumberStayTogetherAndADamagedFileIsKept) {
  SettingsStore one = Open(), other = Open();
  Door.OnRename = [this](const std::string&) { EXPECT_TRUE(Disk.Locked.contains(File + ".lock")); };
  for (SettingsStore* const store : {&one, &other}) {
    store->Set("NumberOfUserIcons", store == &one ? "1" : "2", Text);
    store->Set("UserIcons", store == &one ? "A" : "BB", Text);
    ASSERT_EQ(store->Save(), StatusOk);
  }
  one.Set("UserIcons", "C", Text);
  ASSERT_EQ(one.Save(), StatusOk);
  EXPECT_EQ(Open().Get("NumberOfUserIcons")->bytes, "1") << "of the same session as the icons";
  Disk.Put(File, "torn by a synchroniser");
  one.Set("a", "1", Text);
  ASSERT_EQ(one.Save(), StatusOk);
  EXPECT_EQ(Disk.Bytes(File + ".damaged"), "torn by a synchroniser");
  EXPECT_EQ(Open().Get("UserIcons")->bytes, "C") << "written anew as this session has it";
}

TEST(SettingsStoreTest, WhatCouldNotBeReadBackIsRefused) {
  MemoryFileDoor disk;
  PrefsLibrary table = MakeBuiltInPrefs(disk, Folder);
  void* set = nullptr;
  EXPECT_NE(table.PREFLoadSet(nullptr, "../x", 1, &set), StatusOk);
  ASSERT_EQ(table.PREFLoadSet(nullptr, "Other", 1, &set), StatusOk);
  EXPECT_EQ(table.PREFSetData(set, "a", "x", -1, Text), -EINVAL);
  EXPECT_EQ(table.PREFSetData(set, "\xff", "x", 1, Text), -EINVAL) << "no JSON could hold it";
  const std::string large(static_cast<size_t>(PrefsValueLimit) + 1, 'x');
  EXPECT_EQ(table.PREFSetData(set, "a", large.data(), PrefsValueLimit + 1, Text), -EFBIG);
  table.PREFDisposeSet(&set);
}

TEST(DamagedSettingsTest, TheFileIsMovedAsideBeforeTheFirstSave) {
  const std::string good = R"("kept":{"type":"CSTR","texts":["x"]})";
  for (const std::string& bytes : {""s, "[]"s, "{" + good, std::string(100000, '['),
                                   "{" + good + R"(,"bad":{"type":"LONG","value":"x"}})"}) {
    SCOPED_TRACE(bytes.substr(0, 40));
    MemoryFileDoor disk;
    disk.Put(File, bytes);
    disk.Put(File + ".damaged", "of last year");
    SettingsStore store(MakeBuiltInPrefs(disk, Folder));
    EXPECT_EQ(store.LoadStatus(), StatusOk);
    EXPECT_THAT(store.Complaint(), HasSubstr(File));
    EXPECT_EQ(store.Get("kept").has_value(), bytes.ends_with("}}")) << "what can be read counts";
    EXPECT_EQ(disk.Bytes(File), bytes) << "reading moves nothing";
    for (const char* value : {"1", "2"}) {
      store.Set("a", value, Text);
      ASSERT_EQ(store.Save(), StatusOk);
    }
    EXPECT_EQ(disk.Bytes(File + ".damaged"), "of last year");
    EXPECT_EQ(disk.Bytes(File + ".damaged.2"), bytes);
    EXPECT_FALSE(disk.Bytes(File + ".damaged.3"));
    EXPECT_EQ(SettingsStore(MakeBuiltInPrefs(disk, Folder)).Complaint(), "");
  }
}

TEST(DamagedSettingsTest, AFileThatMayNotBeReadIsNotWrittenOver) {
  MemoryFileDoor disk;
  disk.Put(File, "{}", 0200);
  SettingsStore store(MakeBuiltInPrefs(disk, Folder));
  EXPECT_THAT(store.Complaint(), HasSubstr("Permission denied"));
  store.Set("a", "1", Text);
  EXPECT_EQ(store.Save(), StatusOk);
  EXPECT_EQ(disk.Bytes(File + ".damaged"), "{}");
}

TEST(DamagedSettingsTest, ASaveThatFailsAnywhereLosesNothing) {
  for (const std::string& before : {std::string("{}\n"), std::string("damaged")})
    for (int failAt = 1;; ++failAt) {
      MemoryFileDoor disk;
      disk.Put(File, before);
      FailingFileDoor door(disk);
      SettingsStore store(MakeBuiltInPrefs(door, Folder));
      store.Set("a", "1", Text);
      door.Count = 0;
      door.FailAt = failAt;
      const status_t status = store.Save();
      if (!door.HasFailed()) break;
      SCOPED_TRACE(before + " " + door.Failed + " " + std::to_string(failAt));
      const auto now = disk.Bytes(File);
      const bool isNew = now && ReadSettingsText(*now).settings.contains("a");
      const bool isAside = disk.Bytes(File + ".damaged") == before;
      EXPECT_TRUE(now == before || (before == "damaged" ? isAside : isNew));
      EXPECT_TRUE(isNew || status != StatusOk);
      door.FailAt = 0;
      EXPECT_EQ(store.Save(), StatusOk) << "the next attempt writes it after all";
      EXPECT_TRUE(ReadSettingsText(*disk.Bytes(File)).settings.contains("a"));
    }
}

}  // namespace
}  // namespace kestrin
