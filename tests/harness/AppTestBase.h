// Whole processes of the application, one after another, over the same files in memory.
#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/app/KestrinApp.h"
#include "core/files/OwnSets.h"
#include "core/files/StoredSetFile.h"
#include "core/loop/AppMessages.h"
#include "core/settings/BuiltInPrefs.h"
#include "core/settings/SettingsFile.h"
#include "harness/FakeSession.h"
#include "harness/SetTestBase.h"

namespace kestrin {

class AppTestBase : public testing::Test {
 protected:
  static constexpr const char* Work = "/sets/Work.kestrin";
  static constexpr const char* Home = "/sets/Home.kestrin";
  static constexpr const char* Recovered = "/state/recovered/Untitled event set 1.kestrin";
  static constexpr const char* JournalFile = "/state/journal";

  /// One process; gone without an end when it is destroyed.
  struct Process {
    explicit Process(AppTestBase& test)
        : World({&test.Door, test.OwnActions, ++test.Starts, &test.Dead}),
          Store(MakeBuiltInPrefs(test.Door, "/config")),
          App(World.Core, {Background, Bus, Store, World.Who, "/opt", "/state",
                           [this, &test] { test.LoadHandlers(World.Core); },
                           [this] {
                             if (Unloading) Unloading();
                             World.Handlers.Clear();
                           },
                           [&test] { return test.SystemZone; }, [this] { Ended = true; },
                           std::to_string(test.Starts)}) {
      World.Core.ownSets = &Own;
      World.Ui.App = &App.Ending();
      Background.Queue = &World.Queue;
      World.Core.zone = test.SystemZone;
      World.Time.JumpTo(test.Now);
    }
    ~Process() { World.Ui.App = nullptr; }  // its windows outlive the application
    TestContext World;
    OwnSets Own{World.Core.files, "/state",
                [this](const std::string& words) { World.Queue.Post(ErrorFound(words)); }};
    FakeBackground Background;
    FakeBus Bus;
    SettingsStore Store;
    KestrinApp App;
    std::function<void()> Unloading;  ///< may be null: an add-on does that as it goes
    bool Ended = false;
  };

  AppTestBase() { Disk.PutFolder("/sets"), Disk.PutFolder("/opt"); }
  ~AppTestBase() override { Crash(); }

  virtual void LoadHandlers(Context& context) { LoadFakeHandlers(context); }

  /// Writes the settings that the next process reads.
  void Configure(const std::function<void(KestrinSettings& settings)>& change) {
    Crash();
    TestContext world;
    SettingsStore store(MakeBuiltInPrefs(Disk, "/config"));
    InitSettings(world.Settings, store, world.Notes);
    change(world.Settings);
    WriteSettings(world.Settings, store, world.Notes);
  }
  void Remember(std::vector<std::string> paths) {
    Configure([&paths](KestrinSettings& settings) { settings.SetFileNames = std::move(paths); });
  }
  void WriteSet(const std::string& path, const std::vector<EventRecord>& records) {
    Crash();
    TestContext world(WorldParts{&Disk, OwnActions});
    LoadHandlers(world.Core);
    const auto owned = kestrin::NewSet(world.Core, path);
    EventSet& set = *owned;
    for (const EventRecord& record : records)
      set.AddEvent(std::make_unique<Event>(set, record))->SetSelectedHandler(MessageHandler);
    EXPECT_TRUE(set.SaveData());
  }

  /// A start with these arguments; `waiting` is what the bus held when the process came up.
  void Start(const std::vector<std::string>& arguments = {},
             const std::vector<Message>& waiting = {}, bool screen = true) {
    Crash();
    It = std::make_unique<Process>(*this);
    It->World.Ui.Screen = screen;
    for (const Message& message : waiting) It->World.Queue.Post(message);
    It->App.Construct();
    It->App.ArgvReceived(arguments);
    Run();
    if (!It->App.Ending().HasQuit()) It->App.ReadyToRun();
    Run();
  }
  /// A start that remembers one set, of these events.
  void StartWith(const std::vector<EventRecord>& records,
                 const std::vector<std::string>& arguments = {}) {
    Crash();
    Disk.Remove(JournalFile);
    WriteSet(Work, records);
    Remember({Work});
    Start(arguments);
  }
  void DeliverAt(int64 time) {
    It->World.Time.JumpTo(time);
    Post(Message(DELIVER_EVENTS));
  }
  void Wake(bool screen = true) { Start({}, {Message(DELIVER_EVENTS)}, screen); }
  /// The process goes: nothing is saved, nobody is told.
  void Crash() {
    if (It) Dead.insert(It->World.Who.Self().Process);
    It.reset();
  }
  void Run() {
    for (int turns = 0; auto message = It->World.Queue.Take(); ++turns) {
      ASSERT_LT(turns, 1000) << "the queue never comes to rest";
      It->App.MessageReceived(*message);
    }
  }
  void Post(Message message) {
    It->World.Queue.Post(std::move(message));
    Run();
  }

  FakeUserInterface& Ui() { return It->World.Ui; }
  EventSet* Set(const std::string& path) { return It->World.Open.FindFile(path); }
  Event& FirstEvent(const std::string& path) { return *Set(path)->Events().at(0); }
  std::vector<std::string> Shown() {
    std::vector<std::string> names;
    for (const auto* window : Ui().SetWindows) names.push_back(window->Set()->GetFileName());
    return names;
  }
  std::vector<std::string> Open() {
    std::vector<std::string> names;
    for (const auto& set : It->World.Open.Sets) names.push_back(set->GetFileName());
    return names;
  }
  std::vector<std::string> Alerts() { return Ui().Texts(); }
  void CloseWindow(size_t which = 0) {
    Ui().SetWindows.at(which)->CloseNow();
    Run();
  }
  bool Answer(int which) {
    const bool found = Ui().AnswerFirst(which);
    Run();
    return found;
  }
  std::vector<std::string> Delivered() { return It->World.Actions.TakeNames(); }

  int64 Now = Sunday + 8 * Hour;  ///< when the next process starts
  Zone SystemZone;
  int Starts = 0;                      ///< so many processes; the last one's number
  std::set<int64> Dead;                ///< their numbers
  EventActions* OwnActions = nullptr;  ///< instead of those that only write down
  MemoryFileDoor Disk;
  FailingFileDoor Door{Disk};
  std::unique_ptr<Process> It;
};

}  // namespace kestrin
