// Copies of what was not saved: when they are made, when they go, and as what they open again.
#include "core/app/UnsavedEdits.h"

#include "harness/AppTestBase.h"

namespace kestrin {
namespace {

class UnsavedEditsTest : public AppTestBase {
 protected:
  static constexpr const char* WorkCopy = "/state/recovered/Work.kestrin";

  /// An editor of one set, in which a name was changed; no copy yet.
  void StartEditing() {
    StartWith({DailyAt(Sunday + Day)});
    Rename("typed");
  }
  void Rename(const std::string& name) {
    FirstEvent(Work).SetName(name);
    Run();
  }
  void WaitForCopy() {
    It->World.Ticks.RunOut();
    Run();
  }
  std::vector<std::string> Copies() { return Disk.List("/state/recovered").value(); }
  std::string NameInFile(const std::string& path) {
    TestContext world(&Disk);
    LoadHandlers(world.Core);
    const auto set = ReadSet(world.Core, path).Set;
    return set ? set->Events().at(0)->GetName() : "";
  }
};

TEST_F(UnsavedEditsTest, EditsOpenAgainAsTheSetTheyWereMadeIn) {
  StartEditing();
  ASSERT_THAT(It->World.Ticks.Waiting, testing::SizeIs(1)) << "one wait for all that is typed";
  EXPECT_LE(It->World.Ticks.Waiting[0].first + 2000, 5000) << "with the time a text may be typed";
  Post(Message(NEW_EVENT_SET));
  It->World.Open.Sets.back()->AddEvent(nullptr)->SetName("of no file");
  Run();
  WaitForCopy();
  EXPECT_TRUE(It->World.Ticks.Waiting.empty()) << "nothing is new";
  Rename("typed again");
  WaitForCopy();
  EXPECT_EQ(NameInFile(WorkCopy), "typed again");
  EXPECT_EQ(NameInFile(Work), "Tea");
  Disk.CutPower(false);
  for (const bool byName : {false, true}) {
    Wake();
    EXPECT_TRUE(It->Ended);
    EXPECT_EQ(NameInFile(Work), "Tea") << "who only delivers saves nobody's edits";
    Start(std::vector<std::string>(byName ? 1 : 0, Work));
    EXPECT_THAT(Shown(), ElementsAre(Work, "Untitled event set 1"));
    EXPECT_THAT(Open(), testing::UnorderedElementsAreArray(Shown()));
    EXPECT_EQ(FirstEvent(Work).GetName(), "typed again");
    EXPECT_TRUE(Set(Work)->HasBeenModified());
    EXPECT_FALSE(Set(Work)->IsUntitled());
    EXPECT_TRUE(Set("Untitled event set 1")->IsUntitled());
    EXPECT_EQ(FirstEvent("Untitled event set 1").GetName(), "of no file");
  }
  ASSERT_TRUE(Set(Work)->SaveData());
  Set("Untitled event set 1")->GetWindow()->CloseNow();
  Run();
  EXPECT_THAT(Copies(), IsEmpty()) << "the one saved, the other thrown away";
  EXPECT_EQ(NameInFile(Work), "typed again");
  EXPECT_THAT(Disk.List("/sets"), testing::Optional(ElementsAre("Work.kestrin")));
}

TEST_F(UnsavedEditsTest, AFileThatHasChangedSinceKeepsItsOwnEvents) {
  StartEditing();
  WaitForCopy();
  const std::string copy = *Disk.Bytes(WorkCopy);
  Crash();
  Disk.Put(Work, copy);
  Start();
  EXPECT_FALSE(Set(Work)->HasBeenModified());
  EXPECT_THAT(Copies(), IsEmpty()) << "the file has it all";

  Rename("typed");
  WaitForCopy();
  WriteSet(Work, {DailyAt(Sunday + Day, "by a synchroniser")});
  Start();
  EXPECT_EQ(FirstEvent(Work).GetName(), "typed");
  ASSERT_TRUE(Set(Work)->SaveData());
  EXPECT_EQ(NameInFile(Work), "by a synchroniser");
  EXPECT_EQ(Disk.List("/sets")->size(), 2u) << "kept apart";

  Start();
  Rename("of a set without its file");
  WaitForCopy();
  Disk.Remove(Work);
  Start();
  EXPECT_EQ(FirstEvent("Untitled event set 1").GetName(), "of a set without its file");
}

TEST_F(UnsavedEditsTest, ASlowDiskGetsOneCopyAfterTheOther) {
  StartEditing();
  It->World.Threads.How = FakeWorkers::Mode::Refuse;
  WaitForCopy();
  It->World.Threads.How = FakeWorkers::Mode::Deferred;
  WaitForCopy();
  Rename("second");
  WaitForCopy();
  EXPECT_THAT(It->World.Threads.Started, testing::Contains("Recovery copy").Times(1));
  It->World.Threads.RunPending();
  EXPECT_EQ(NameInFile(WorkCopy), "typed");
  WaitForCopy();
  ASSERT_TRUE(Set(Work)->SaveData());
  Run();
  It->World.Threads.RunPending();
  EXPECT_THAT(Copies(), IsEmpty()) << "the worker takes back what came too late";
}

TEST_F(UnsavedEditsTest, WhatALivingProcessWorksWithIsLeftAlone) {
  StartEditing();
  WaitForCopy();
  It.reset();  // it lives on, in another session
  Start();
  EXPECT_EQ(FirstEvent(Work).GetName(), "Tea");
  Rename("here");
  WaitForCopy();
  EXPECT_EQ(Copies().size(), 4u) << "a copy and its note for each";
  EXPECT_EQ(NameInFile(WorkCopy), "typed");
  Crash();
  Dead.insert(Starts - 1);
  Disk.Put(std::string(WorkCopy) + ".of", "{");
  Start();
  EXPECT_EQ(FirstEvent(Work).GetName(), "here");
  EXPECT_EQ(FirstEvent("Untitled event set 1").GetName(), "typed") << "nobody knows of what it is";
  ASSERT_TRUE(Set("Untitled event set 1")->SaveAs(WorkCopy, false));
  Run();
  EXPECT_EQ(NameInFile(WorkCopy), "typed") << "where its copy was, its file is now";
}

}  // namespace
}  // namespace kestrin
