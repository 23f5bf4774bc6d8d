// Reading and writing sets, in both byte orders, with handlers that are there and one that is not;
// saving them, where nothing is lost whatever fails or whoever else writes, and a downloaded file
// stays marked until the user saves it.
#include "core/files/EventSetFile.h"

#include "core/events/EventIdentity.h"
#include "core/events/EventProgress.h"
#include "harness/SetTestBase.h"
#include "support/Opened.h"

namespace kestrin {
namespace {

using SavedBy = EventSet::SavedBy;

constexpr const char* Path = "/sets/Work.kestrin";

constexpr const char* Beside = "/sets/Work (kept apart 2026-11-15 08.00.00).kestrin";
constexpr const char* Origin = "user.xdg.origin.url";

class EventSetFileTest : public SetTestBase {
 protected:
  /// What is written into a file that begins with `marker`, and so keeps that byte order.
  std::string Written(EventSet& set, char marker) {
    Disk.Put("/sets/written", std::string(1, marker));
    Opened<EndianIndependentFile> file(Disk, "/sets/written", OpenReadWrite, 512);
    std::string fault;
    EXPECT_TRUE(WriteSetFile(set, file, fault)) << fault;
    return *Disk.Bytes("/sets/written");
  }
  /// A set with an event of its own icon, one of a handler that is not there, and a plain one.
  std::unique_ptr<EventSet> FullSet() {
    auto set = kestrin::NewSet(World.Core, "full");
    EventRecord record = DailyAt(Sunday, "Tea \xff");
    record.Comment = record.NagMessage = record.PrewarnMessage = "Pour it.";
    Add(*set, record);
    record.IconNumber = -2;
    Add(*set, record)
        .AdoptIcon(std::make_unique<IconPair>(
            IconPair{std::string(LargeIconBytes, 'l'), std::string(MiniIconBytes, '\x7f')}));
    Event& foreign = Add(*set, record);
    auto data = std::make_unique<FakeUnknownData>(&foreign);
    data->Bytes = std::string("\0\1\xfe kept", 8);
    data->SetOriginalHandler("Not \xff installed");
    foreign.AdoptAddOnData(UnknownHandler, std::move(data));
    foreign.SetSelectedHandler(UnknownHandler);
    return set;
  }
};

TEST_F(EventSetFileTest, AFileCutAnywhereIsDamaged) {
  const auto full = FullSet();
  const std::string orders[] = {Written(*full, 0), Written(*full, 1)}, &whole = orders[1];
  for (const std::string& bytes : orders) {
    Disk.Put(Path, bytes);
    const auto set = Read(Path);
    EXPECT_EQ(Report.BigEndian, bytes == whole);
    for (const int to : {0, 1}) EXPECT_EQ(Written(*set, static_cast<char>(to)), orders[to]);
  }
  for (size_t length = 0; length < whole.size(); ++length) {
    Disk.Put(Path, whole.substr(0, length));
    Read(Path);
    ASSERT_EQ(Result, ConstructorResult::CouldNotRead) << length << " of " << whole.size();
    ASSERT_FALSE(Report.Fault.empty());
  }
}

TEST_F(EventSetFileTest, AnyByteButZeroMeansYes) {
  EventSet& set = NewSet(Path);
  Event& event = Add(set, DailyAt(Sunday));
  std::string yes = Written(set, 0);
  event.SetActive(false);
  const std::string no = Written(set, 0);
  *std::mismatch(yes.begin(), yes.end(), no.begin()).first = 2;
  Disk.Put(Path, yes);
  EXPECT_TRUE(Read(Path)->Events()[0]->GetActive());
}

TEST_F(EventSetFileTest, AnIconThatIsNotWholeIsLeftOut) {
  const std::string large(LargeIconBytes, 'l'), mini(MiniIconBytes, 'm');
  const std::pair<IconPair, int32> rows[] = {
      {{large, mini}, -2}, {{large.substr(1), mini}, -1}, {{large, mini + "m"}, -1}};
  for (const auto& [icon, saved] : rows) {
    EventSet& set = NewSet(Path);
    EventRecord record = DailyAt(Sunday);
    record.IconNumber = -2;
    Add(set, record).AdoptIcon(std::make_unique<IconPair>(icon));
    ASSERT_TRUE(set.SaveData());
    World.Open.Sets.clear();
    const auto again = Read(Path);
    ASSERT_TRUE(again) << Report.Fault;
    EXPECT_EQ(again->Events()[0]->Record().IconNumber, saved);
    EXPECT_EQ(again->Events()[0]->GetOwnIcon() != nullptr, saved == -2);
  }
}

class EventSetSaveTest : public SetTestBase {
 protected:
  /// A set of one event, in its file.
  EventSet& SavedSet() {
    EventSet& set = NewSet(Path);
    Add(set, DailyAt(Sunday + Day));
    Settle(set);
    return set;
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
        for (const std::string& leaf : Disk.List("/sets").value_or(std::vector<std::string>()))
          Disk.Remove("/sets/" + leaf);
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
          World.Open.Sets.clear();
          break;
        }
        SCOPED_TRACE("call " + std::to_string(n) + ", " + Door.Failed);
        EXPECT_EQ(set.HasBeenModified(), !saved);
        EXPECT_NE(set.WhyNotSaved(), "The file could not be written.") << "the disk said why";
        const std::string now = NameIn(Path);
        EXPECT_TRUE(now == "Toast" || (!saved && now == "Tea")) << now;

        set.Events()[0]->SetName("Butter");
        Door.FailAt = Door.Count + 4;
        Door.FailFromThen = true;
        EXPECT_FALSE(set.SaveData());
        Door.FailAt = 0;
        EXPECT_TRUE(set.SaveData()) << "a later attempt works";
        EXPECT_EQ(NameIn(Path), "Butter");
        EXPECT_EQ(set.GetFileName(), Path);
        EXPECT_THAT(Notices(), IsEmpty()) << "nobody else has written";
        World.Open.Sets.clear();
      }
}

TEST_F(EventSetSaveTest, WhichEditorsStandOpenIsKeptWithoutAWindowAndSavedWithOne) {
  EventSet& set = SavedSet();
  const auto savedOpen = [&] {
    EXPECT_TRUE(set.SaveData());
    return Read(Path)->Events()[0]->GetShouldWindowOpen();
  };
  set.Events()[0]->SetShouldWindowOpen(true);
  EXPECT_TRUE(savedOpen()) << "the set is not shown";
  set.OpenWindow();
  EXPECT_TRUE(savedOpen());
  World.Ui.EditorWindows.back()->CloseNow();
  EXPECT_FALSE(savedOpen());
}

TEST_F(EventSetSaveTest, AFileThatOthersHaveChangedIsLeftAlone) {
  for (const bool remembered : {true, false}) {
    EventSet& set = SavedSet();
    if (!remembered) World.Settings.ForgetSet(Path);
    const std::string theirs = "somebody else's bytes";
    Disk.Put(Path, theirs);
    Disk.SetAttribute(Path, "user.access", "as theirs");
    set.Events()[0]->SetName("Toast");
    // As the application does it: with the list locked.
    const AutoLock settings(World.Settings.Protect);
    const AutoLock open(World.Open.Protect);
    ASSERT_TRUE(set.SaveData(SavedBy::Itself));
    EXPECT_EQ(Disk.Bytes(Path), theirs);
    EXPECT_EQ(set.GetFileName(), Beside);
    EXPECT_EQ(NameIn(Beside), "Toast");
    EXPECT_EQ(Disk.GetAttribute(Beside, "user.access"), "as theirs");
    EXPECT_EQ(World.Settings.IsFileRemembered(Beside), remembered);
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
    World.Open.Sets.clear();
    World.Settings.SetFileNames.clear();
  }
}

TEST_F(EventSetSaveTest, WhatTheJournalKnowsFollowsASaveThatFailsAndAFileThatIsReadAgain) {
  EventSet& set = SavedSet();
  Event& tea = *set.Events()[0];
  const std::string before = *Disk.Bytes(Path);
  JournalRecord record;
  record.Set = Path;
  record.Event = {"Tea", "Message", 0};
  record.From = StateOf(tea.Record());
  record.To = EventState{Sunday + 2 * Day, Sunday + 2 * Day, WaitingForEvent, false};
  World.Record.Begin(record);
  EXPECT_FALSE(set.SaveAs("/gone/Other.kestrin", true));
  EXPECT_TRUE(World.Record.Knows(Path));
  const EventSet::DeliveryChange byDelivery(set);
  AssignState(tea, *record.To);
  Disk.Put(Path, before);
  ASSERT_TRUE(set.SaveData(SavedBy::Itself));
  EXPECT_NE(Disk.Bytes(Path), before) << "a file that was put back is brought up to date";
  EXPECT_EQ(set.GetFileName(), Path);
}

TEST_F(EventSetSaveTest, ADownloadedSetStaysMarkedUntilTheUserSavesIt) {
  SavedSet();
  World.Open.Sets.clear();
  Disk.SetAttribute(Path, Origin, "https://example.org/set");
  const auto IsMarked = [this](const char* path) {
    return Disk.GetAttribute(path, Origin).has_value();
  };
  auto set = Read(Path);
  ASSERT_TRUE(set->SaveData(SavedBy::Itself));
  EXPECT_TRUE(IsMarked(Path));
  Disk.Remove(Path);
  ASSERT_TRUE(set->SaveData(SavedBy::Itself));
  EXPECT_TRUE(IsMarked(Path)) << "written anew";
  Disk.Put(Path, "theirs");
  ASSERT_TRUE(set->SaveData(SavedBy::Itself));
  EXPECT_TRUE(IsMarked(Beside)) << "saved beside";
  ASSERT_TRUE(set->SaveCopy("/sets/copy"));
  EXPECT_TRUE(IsMarked("/sets/copy"));
  ASSERT_TRUE(set->SaveData(SavedBy::User));
  Disk.Remove(Beside);
  ASSERT_TRUE(set->SaveData(SavedBy::Itself));
  EXPECT_FALSE(IsMarked(Beside)) << "for good";
  EXPECT_EQ(Disk.GetAttribute(Beside, "user.mime_type"), "application/x-vnd.ZR-KestrinEventSet");
}

}  // namespace
}  // namespace kestrin
