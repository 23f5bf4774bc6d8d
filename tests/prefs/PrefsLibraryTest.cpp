#include "core/settings/PrefsLibrary.h"

#include <dlfcn.h>
#include <gmock/gmock.h>

#include "core/settings/BuiltInPrefs.h"
#include "core/settings/SettingsStore.h"
#include "harness/MemoryFileDoor.h"
#include "support/Message.h"

namespace kestrin {
namespace {

constexpr uint32 Text = FourCharCode("CSTR");
const std::string Whole = KESTRIN_PREFS_WHOLE;      ///< folder of a whole library
const std::string Lacking = KESTRIN_PREFS_LACKING;  ///< of one without PREFListen

std::string ParentOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

TEST(PrefsLibraryTest, IsLookedForInTheFoldersOfTheSearchPath) {
  const std::string leaf = Whole.substr(Whole.rfind('/') + 1);
  const std::tuple<std::string, std::string, bool> cases[] = {
      {"/", "", false},
      {"/", "/nowhere::" + Whole, true},
      {ParentOf(Whole), "%A/" + leaf, true},
      {ParentOf(Whole), "/" + leaf + ":%A" + leaf, false},
      {Whole.substr(0, Whole.size() - 1), "%A" + Whole.substr(Whole.size() - 1), false},
      {"/", Lacking, false},
      {"/", Lacking + ":" + Whole, true}};
  for (const auto& [applicationFolder, libraryPath, found] : cases) {
    SCOPED_TRACE(applicationFolder + " " + libraryPath);
    MemoryFileDoor disk;
    EXPECT_EQ(FindPrefsLibrary(applicationFolder, libraryPath).has_value(), found);
    const PrefsLibrary library = OpenPrefs(disk, "/c", applicationFolder, libraryPath);
    EXPECT_STREQ(library.PREFVersion(),
                 found ? "fake libprefs 7" : "simple libprefs.so version 1.2.4");
  }
}

TEST(PrefsLibraryTest, TheStoreWorksWithIt) {
  const auto library = FindPrefsLibrary("/", Whole);
  ASSERT_TRUE(library);
  void* image = dlopen((Whole + "/libprefs.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(image, nullptr);
  const auto inUse = reinterpret_cast<int (*)()>(dlsym(image, "FakePrefsInUse"));
  {
    SettingsStore store(*library);
    EXPECT_EQ(inUse(), 11);
    EXPECT_EQ(store.LoadStatus(), StatusOk);
    EXPECT_EQ(store.Set("a", std::string("x\0y", 3), Text), StatusOk);
    EXPECT_EQ(store.Set("b", "", Text), StatusOk);
    const status_t refused = store.Set("refused", "x", Text);
    EXPECT_EQ(refused, 15);
    EXPECT_EQ(store.MessageOf(refused), "refused");
    EXPECT_EQ(store.Save(), StatusOk);
    store.Delete("a");
    EXPECT_FALSE(store.Get("a"));
  }
  EXPECT_EQ(inUse(), 0) << "the set and the library are released";
  SettingsStore store(*library);
  EXPECT_EQ(store.Get("a")->bytes, std::string("x\0y", 3));
  EXPECT_EQ(store.Get("a")->type, Text);
  EXPECT_EQ(store.Get("b")->bytes, "");
  EXPECT_FALSE(store.Get("refused"));
  dlclose(image);
}

}  // namespace
}  // namespace kestrin
