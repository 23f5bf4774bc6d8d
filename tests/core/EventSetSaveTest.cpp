// Saving a set: nothing is lost whatever fails or whoever else writes, and a downloaded file stays
// marked until the user saves it.
#include "core/EventSet.h"
#include "core/EventSetFile.h"
#include "fakes/SetTestBase.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using SavedBy = EventSet::SavedBy;

constexpr const char* Path = "/sets/Work.kestrin";
constexpr const char* Beside = "/sets/Work (kept apart 2026-11-15 08.00.00).kestrin";
constexpr const char* Origin = "user.xdg.origin.url";

class EventSetSaveTest : public SetTestBase {
 protected:
  /// A set of one event, in its file.
  EventSet& SavedSet() {
    EventSet& set = NewSet(Path);
    Add(set, DailyAt(Sunday + Day));
    Settle(set);
    return set;
  }
  /// The set as a process that starts now would read it.
  std::unique_ptr<EventSet> Read(const std::string& path) {
    ConstructorResult result = ConstructorResult::Success;
    bool versionOK = true;
    SetFileReport report;
    auto set = std::make_unique<EventSet>(World.Core, path, &result, &versionOK, &report);
    return result == ConstructorResult::Success && versionOK ? std::move(set) : nullptr;
  }
  /// The name of the file's first event; "" when the file is damaged.
  std::string NameIn(const std::string& path) {
    const auto set = Read(path);
    return set && set->CountEvents() > 0 ? set->Events()[0]->GetName() : "";
  }
  std::vector<std::string> Notices() {
    World.RunMessages();
    return World.Ui.Texts();
  }
};

TEST_F(EventSetSaveTest, AFailureAnywhereLosesNeitherTheFileNorTheChanges) {
  for (const bool shortWrite : {false, true})
    for (const bool fromThen : {false, true})
      for (int n = 1;; ++n) {
        Disk.Remove(Path);
        EventSet& set = SavedSet();
        set.Events()[0]->SetName("Toast");
        Door.FailAt = Door.Count + n;
        Door.ShortWrite = shortWrite;
        Door.FailFromThen = fromThen;
        Door.Failed.clear();
        const bool saved = set.SaveData();
        Door.FailAt = 0;
        if (!Door.HasFailed()) {
          ASSERT_GT(n, 8) << "too few calls for a whole replacement";
          OpenSets::Sets.clear();
          break;
        }
        SCOPED_TRACE("call " + std::to_string(n) + ", " + Door.Failed);
        EXPECT_EQ(set.HasBeenModified(), !saved);
        const std::string now = NameIn(Path);
        EXPECT_TRUE(now == "Toast" || (!saved && now == "Tea")) << now;

        set.Events()[0]->SetName("Butter");
        Door.FailAt = Door.Count + 4;
        EXPECT_FALSE(set.SaveData());
        Door.FailAt = 0;
        EXPECT_TRUE(set.SaveData()) << "a later attempt works";
        EXPECT_EQ(NameIn(Path), "Butter");
        EXPECT_EQ(set.GetFileName(), Path);
        EXPECT_THAT(Notices(), IsEmpty()) << "nobody else has written";
        OpenSets::Sets.clear();
      }
}

TEST_F(EventSetSaveTest, AFileThatOthersHaveChangedIsLeftAlone) {
  for (const bool remembered : {true, false}) {
    EventSet& set = SavedSet();
    if (!remembered) KestrinSettings::ForgetSet(Path);
    const std::string theirs = "somebody else's bytes";
    Disk.Put(Path, theirs);
    set.Events()[0]->SetName("Toast");
    // As the application does it: with the list locked.
    const AutoLock settings(KestrinSettings::Protect);
    const AutoLock open(OpenSets::Protect);
    ASSERT_TRUE(set.SaveData(SavedBy::Itself));
    EXPECT_EQ(Disk.Bytes(Path), theirs);
    EXPECT_EQ(set.GetFileName(), Beside);
    EXPECT_EQ(NameIn(Beside), "Toast");
    EXPECT_EQ(KestrinSettings::IsFileRemembered(Beside), remembered);
    EXPECT_THAT(Notices(),
                ElementsAre("The event set \"Work.kestrin\" was changed by another program since "
                            "Kestrin read it.  Your events were saved beside it as \"Work (kept "
                            "apart 2026-11-15 08.00.00).kestrin\", and the set now goes by that "
                            "name."));
    World.Ui.CloseFirst();
    ASSERT_TRUE(set.SaveData());
    EXPECT_THAT(Notices(), IsEmpty()) << "it stays with that name";
    Disk.Remove(Beside);
    Disk.Remove(Path);
    OpenSets::Sets.clear();
    KestrinSettings::SetFileNames.clear();
  }
}

TEST_F(EventSetSaveTest, ADownloadedSetStaysMarkedUntilTheUserSavesIt) {
  SavedSet();
  OpenSets::Sets.clear();
  Disk.SetAttribute(Path, Origin, "https://example.org/set");
  auto set = Read(Path);
  ASSERT_TRUE(set->IsDownloaded());
  ASSERT_TRUE(set->SaveData(SavedBy::Itself));
  EXPECT_TRUE(Read(Path)->IsDownloaded());
  Disk.Remove(Path);
  ASSERT_TRUE(set->SaveData(SavedBy::Itself));
  EXPECT_TRUE(Read(Path)->IsDownloaded()) << "written anew";
  Disk.Put(Path, "theirs");
  ASSERT_TRUE(set->SaveData(SavedBy::Itself));
  EXPECT_TRUE(Read(Beside)->IsDownloaded()) << "saved beside";
  ASSERT_TRUE(set->SaveCopy("/sets/copy"));
  EXPECT_TRUE(Read("/sets/copy")->IsDownloaded());
  ASSERT_TRUE(set->SaveData(SavedBy::User));
  EXPECT_FALSE(set->IsDownloaded());
  EXPECT_FALSE(Read(Beside)->IsDownloaded());
}

}  // namespace
}  // namespace kestrin
