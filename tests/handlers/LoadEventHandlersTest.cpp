// Loading: real shared libraries in real folders.
#include <dlfcn.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "HandlerTestBase.h"
#include "core/files/StoredSetFile.h"
#include "core/settings/BuiltInPrefs.h"
#include "core/settings/SettingsStore.h"
#include "support/Opened.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

class LoadEventHandlersTest : public testing::Test {
 protected:
  LoadEventHandlersTest() {
    std::string pattern = fs::temp_directory_path() / "kestrin-handlers-XXXXXX";
    root_ = mkdtemp(pattern.data());
    fs::create_directories(root_ / "app/add-ons");
    fs::create_directories(root_ / "user");
  }
  ~LoadEventHandlersTest() override {
    Set.reset();
    fs::remove_all(root_);
  }

  /// Puts a test add-on into a folder ("app/add-ons" or "user") under a name there.
  void Put(const std::string& addOn, const std::string& place) {
    fs::create_symlink(fs::path(KESTRIN_TEST_ADD_ONS) / (addOn + ".so"), root_ / place);
  }
  /// What is built by itself, outside the tree.
  static fs::path Outside(const std::string& addOn) {
    return fs::path(KESTRIN_OUTSIDE) / addOn / "build" / (addOn + ".so");
  }
  std::string In(const std::string& place) const { return root_ / place; }
  void Load(SettingsStore* settings = nullptr) {
    LoadEventHandlers(World.Core, settings, In("app"), In("user"));
    World.RunMessages();
  }
  std::vector<std::string> Rows() const {
    std::vector<std::string> names;
    for (int32 row = NumberOfBuiltInHandlers; row < World.Handlers.NumberOfEventHandlers(); ++row)
      names.emplace_back(World.Handlers.NameOf(row));
    return names;
  }
  std::string Bytes(const std::string& place) const {
    std::ifstream file(root_ / place, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  Event& MakeEvent(const char* handler) {
    Set = kestrin::NewSet(World.Core, "Untitled event set 1");
    Event& event = *Set->AddEvent(nullptr);
    event.SetName("Tea");
    EXPECT_TRUE(event.SetSelectedHandler(World.Handlers.Find(handler)));
    return event;
  }

  fs::path root_;
  TestContext World;
  std::unique_ptr<EventSet> Set;
};

using Texts = std::vector<std::string>;
using namespace std::string_literals;

TEST_F(LoadEventHandlersTest, EveryWayToFailIsReportedAndLeavesNoRow) {
  char leaf = 'a';
  for (const char* addOn :
       {"NoFactory", "NoInitialize", "NullName", "EndlessName", "ThrowingName", "gone"})
    Put(addOn, std::string("user/") + leaf++);
  fs::create_directory(root_ / "user/g");
  ASSERT_EQ(mkfifo(In("user/h").c_str(), 0600), 0);
  std::ofstream(root_ / "user/i") << "no library at all, but long enough to hold a header of one, "
                                     "for the loader has another word for what is shorter";
  std::ofstream(root_ / "user/j");
  Put("Good", "user/k");
  Load();
  EXPECT_EQ(Rows(), Texts{"Good"});
  const std::string no = "LoadEventHandlers:  couldn't find ";
  const std::string refused = "LoadEventHandlers:  InitializeAddOn failed for ";
  const std::string failed = "LoadEventHandlers: load_add_on failed for ";
  EXPECT_EQ(
      World.Ui.Texts(),
      (Texts{no + "NewAddOnData for " + In("user/a"), no + "InitializeAddOn for " + In("user/b"),
             refused + In("user/c"), refused + In("user/d"), refused + In("user/e"),
             failed + In("user/f") + ": 0x00000002", failed + In("user/g") + ": 0x00000015",
             failed + In("user/h") + ": 0x00000008", failed + In("user/i") + ": 0x00000008",
             failed + In("user/j") + ": 0x00000008"}));
}

TEST_F(LoadEventHandlersTest, RowsFollowFoldersAndNamesAndTheFirstOfANameWins) {
  Put("Twin", "user/1");
  Put("LikeBuiltIn", "app/add-ons/z");
  Put("NullName", "app/add-ons/y");
  Put("Good", "app/add-ons/x");
  Put("ThrowingAction", "app/add-ons/w");
  Load();
  EXPECT_EQ(Rows(), (Texts{"Throwing action", "Good", "Message", "Good"}));
  EXPECT_EQ(World.Handlers.Find("Good"), 6);
  EXPECT_EQ(World.Handlers.Find("Message"), MessageHandler);
  EXPECT_EQ(World.Handlers.Find("good"), UnknownHandler);

  std::vector<const int*> cleanedUp;
  for (const HandlerTable::Row& row : World.Handlers.Rows())
    if (row.AddOnImage)
      cleanedUp.push_back(static_cast<const int*>(dlsym(row.AddOnImage, "CleanedUp")));
  EXPECT_THAT(cleanedUp, testing::SizeIs(4));
  UnloadEventHandlers(World.Core);
  for (const int* count : cleanedUp) EXPECT_EQ(*count, 1) << "also after one that throws";
  EXPECT_EQ(World.Handlers.NumberOfEventHandlers(), 0);
  fs::remove_all(root_ / "app");
  fs::remove_all(root_ / "user");
  Load();
  Texts builtIn;
  for (const HandlerTable::Row& row : World.Handlers.Rows()) builtIn.emplace_back(row.AddOnName);
  EXPECT_EQ(builtIn, (Texts{"Unknown", "Do nothing", "Message", "Command", "Act on file"}));
}

TEST_F(LoadEventHandlersTest, ThereIsRoomFor122AndTheRestIsNamed) {
  for (int i = 0; i < 150; ++i) Put("Good", "app/add-ons/" + std::to_string(100 + i));
  Load();
  EXPECT_EQ(Rows().size(), 122u);
  ASSERT_EQ(World.Ui.Texts().size(), 1u);
  const std::string text = World.Ui.Texts()[0];
  EXPECT_EQ(text.find(In("app/add-ons/221")), std::string::npos);
  EXPECT_NE(text.find(In("app/add-ons/222")), std::string::npos) << text;
  EXPECT_TRUE(text.ends_with("\nand 8 more")) << text;
}

TEST_F(LoadEventHandlersTest, WhatAnAddOnThrowsStopsAtTheBorder) {
  Put("ThrowingFactory", "user/a");
  Put("NullFactory", "user/b");
  Put("ThrowingAction", "user/c");
  Load();
  Event& event = MakeEvent("Throwing action");
  for (const char* handler : {"Throwing factory", "Null factory"}) {
    bool ok = false, threw = false;
    EXPECT_EQ(
        World.Handlers.MakeAddOnData(World.Handlers.Find(handler), &event, nullptr, &ok, &threw),
        nullptr);
    EXPECT_EQ(threw, handler == std::string("Throwing factory"));
  }
  HandlerActions().DeliverEvent(event, false);
  World.RunMessages();
  EXPECT_EQ(World.Ui.History.back().Text,
            "Kestrin: The handler \"Throwing action\" failed to deal with the event \"Tea\".");
  EXPECT_FALSE(event.GetOwner()->SaveAs(In("tea.kestrin"), false));
  EXPECT_EQ(event.GetOwner()->WhyNotSaved(),
            "The handler \"Throwing action\" failed to write its data of the event \"Tea\".");
}

TEST_F(LoadEventHandlersTest, EveryPromisedServiceIsThere) {
  SettingsStore settings(MakeBuiltInPrefs(World.SystemFiles, In("config")));
  Put("EveryService", "user/a");
  Load(&settings);
  ASSERT_EQ(Rows(), Texts{"Every service"});
  Event& event = MakeEvent("Every service");
  event.SetComment(", hot");
  event.SetEventTime(1794773322, true);
  Set->SetFileName(In("set"));
  ASSERT_TRUE(Set->SaveData());
  int saves = 0;
  World.Settings.WhenChanged = [&saves] { ++saves; };
  HandlerActions().DeliverEvent(event, false);
  HandlerActions().DeliverEvent(event, false);
  World.RunMessages();
  EXPECT_TRUE(Set->HasBeenModified());
  EXPECT_EQ(saves, 2);
  const std::string times = "1794773322/1794773322/1";
  const std::string first = "Kestrin event:  Tea\n\nTea, hot " + times + " end";
  const std::string second = "Kestrin event:  Tea\n\nnotified";
  EXPECT_EQ(World.Ui.Texts(),
            (Texts{first, second, "Kestrin event:  Tea calls 1 in " + In("set"), first, second,
                   "Kestrin event:  Tea calls 2 in " + In("set")}));
  EXPECT_EQ(World.Notified.Open.size(), 2u);
  while (World.Ui.CloseFirst()) World.RunMessages();
  EXPECT_EQ(World.Holding.Count(), 0);
}

/// The sample add-on, built by itself outside the tree.
class OutsideAddOnTest : public LoadEventHandlersTest {
 protected:
  OutsideAddOnTest() {
    fs::create_symlink(Outside("LogToFile"), root_ / "user/log");
    setenv("XDG_STATE_HOME", In("state").c_str(), 1);
    Load();
    Subject = &MakeEvent("Write to log");
  }
  /// Delivers and runs messages until the add-on's thread has given its hold back.
  void DeliverAndWait(bool missed) {
    HandlerActions().DeliverEvent(*Subject, missed);
    ASSERT_EQ(World.Holding.Count(), 1);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    for (; World.Holding.Count() > 0; World.RunMessages())
      ASSERT_LT(std::chrono::steady_clock::now(), end);
  }
  Event* Subject = nullptr;
};

TEST_F(OutsideAddOnTest, WritesALineADeliveryAndNeedsNoScreen) {
  World.Ui.Screen = false;
  EXPECT_TRUE(HandlerActions().CanDeliver(*Subject));
  DeliverAndWait(false);
  Subject->SetName("Two\nlines");
  DeliverAndWait(true);
  EXPECT_THAT(Bytes("state/kestrin/events.log"),
              testing::MatchesRegex("20[-0-9T:]+Z\tTea\n20[-0-9T:]+Z\tTwo lines\tmissed\n"));
}

/// The page's example and what is shipped.
TEST_F(LoadEventHandlersTest, WhatIsBuiltOutsideReadsItsDataAndActs) {
  const struct {
    const char* name;
    std::string payload, text;
    std::optional<NotificationUrgency> notify;
  } cases[] = {
      {"Quote", "\5Carpe", "\n\nCarpe", std::nullopt},
      {"Notification", std::string("\4\0Tea", 5), "\n\nTea", UrgencyLow},
      {"Notification", "\1\7", "", UrgencyCritical},
      {"Notification", std::string(1, '\0'), "", UrgencyNormal},
  };
  for (const char* name : {"Quote", "Notification"})
    fs::create_symlink(Outside(name), root_ / "user" / name);
  Load();
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name + each.text);
    const std::string payload = each.payload.substr(0, 1) + "\0\0\0"s + each.payload.substr(1);
    std::ofstream(root_ / "in", std::ios::binary) << "\0"s + payload;
    Opened<EndianIndependentFile> in(World.SystemFiles, In("in"), OpenReadOnly, 64);
    Opened<EndianIndependentFile> out(World.SystemFiles, In("out"),
                                      OpenWriteOnly | OpenCreate | OpenErase, 64);
    Event& event = MakeEvent(each.name);
    bool ok = false;
    const int32 row = World.Handlers.Find(each.name);
    auto data = World.Handlers.MakeAddOnData(row, &event, &in, &ok, nullptr);
    ASSERT_TRUE(ok && data->SaveData(&out));
    event.AdoptAddOnData(row, std::move(data));
    HandlerActions().DeliverEvent(event, false);
    World.RunMessages();
    ASSERT_EQ(World.Ui.Texts(), Texts{"Kestrin event:  Tea" + each.text});
    EXPECT_EQ(World.Ui.Alerts[0].Request.Notify, each.notify);
    EXPECT_EQ(World.Ui.Alerts[0].Place == NoPlace, each.notify.has_value());
    while (World.Ui.CloseFirst()) World.RunMessages();
    EXPECT_EQ(World.Holding.Count(), 0);
  }
}

TEST_F(LoadEventHandlersTest, AFolderThatIsBothPlacesIsReadOnce) {
  Put("Good", "app/add-ons/good");
  fs::create_directory_symlink(root_ / "app/add-ons", root_ / "same");
  LoadEventHandlers(World.Core, nullptr, In("app"), In("same"));
  World.RunMessages();
  EXPECT_THAT(Rows(), testing::ElementsAre("Good"));
}

}  // namespace
}  // namespace kestrin
