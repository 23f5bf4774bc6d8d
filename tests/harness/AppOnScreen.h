// The whole application with its windows and true deliveries, over files in a temporary folder.
#pragma once

#include <gmock/gmock.h>

#include <QAction>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest/QTest>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "core/app/KestrinApp.h"
#include "core/events/HandlerTable.h"
#include "core/files/StoredSetFile.h"
#include "core/settings/BuiltInPrefs.h"
#include "core/settings/SettingsFile.h"
#include "handlers/HandlerActions.h"
#include "handlers/SampleEvents.h"
#include "harness/FakeSession.h"
#include "harness/ScreenContext.h"
#include "interface/sets/StatusLine.h"

namespace kestrin {

class AppOnScreen : public testing::Test {
 protected:
  static constexpr int32 Sunday = 1794700800, Hour = 3600, Day = 86400;

  AppOnScreen() {
    QDir(Folder.path()).mkdir("sets");
    Start();
  }
  ~AppOnScreen() override { End(); }

  static inline Zone SystemZone;
  /// Adds rows to those of the built-in handlers, before a set is read; may be null.
  static inline void (*MoreHandlers)(HandlerTable& handlers) = nullptr;

  struct Process : World<QtUserInterface> {
    explicit Process(const std::string& folder)
        : World({nullptr, &Carried}, [] {}),
          Store(MakeBuiltInPrefs(SystemFiles, folder + "/config")),
          App(Core,
              {Background, Bus, Store, Who, folder, folder + "/state",
               [this] {
                 LoadBuiltInHandlers(Core);
                 if (MoreHandlers) MoreHandlers(Handlers);
               },
               [this] { Handlers.Clear(); }, [] { return SystemZone; }, [this] { Ended = true; },
               "0", [](EventSet& set) { SampleEvents(set).AddSample(60); }}) {
      Ui.Connect(Core, App.Ending());
    }
    HandlerActions Carried;  ///< carries out what the fakes only write down
    FakeBackground Background;
    FakeBus Bus;
    SettingsStore Store;
    KestrinApp App;
    bool Ended = false;
  };

  int64 Now = Sunday + 8 * Hour;  ///< when the next process starts

  /// Another process of the application; what was not saved is lost.
  void Start() {
    End();
    It = std::make_unique<Process>(Folder.path().toStdString());
    It->Time.JumpTo(Now);
    It->App.Construct();
    It->App.ReadyToRun();
    Run();
  }
  void End() {
    if (!It) return;
    for (EventSet* set : AllSets())
      if (set->GetWindow()) set->GetWindow()->CloseNow();
    Settle();
    It->Open.Sets.clear();
    It.reset();
    SystemZone = Zone();
  }
  std::vector<EventSet*> AllSets() const {
    std::vector<EventSet*> sets;
    for (const auto& set : It->Open.Sets) sets.push_back(set.get());
    return sets;
  }
  static void Settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  void Run() {
    do {
      while (auto message = It->Queue.Take()) It->App.MessageReceived(*message);
      Settle();
    } while (!It->Queue.Empty());
  }
  void Post(Message message) {
    It->Queue.Post(std::move(message));
    Run();
  }

  std::string Path(const std::string& leaf) const {
    return QDir(Folder.filePath("sets")).canonicalPath().toStdString() + "/" + leaf;
  }
  static std::string Bytes(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
  }
  static bool Exists(const std::string& path) {
    return QFileInfo::exists(QString::fromStdString(path));
  }

  /// An event whose editor does not open by itself.
  static Event& Add(EventSet& set, const std::string& name, int32 next, EventRecord record = {}) {
    record.Name = name;
    record.NextEventTime = next;
    if (record.ActualEventTime == 0) record.ActualEventTime = next;
    record.ShouldWindowOpen = false;
    Event& added = *set.AddEvent(std::make_unique<Event>(set, std::move(record)));
    added.SetSelectedHandler(MessageHandler);
    return added;
  }
  /// One that comes every day at 9:00.
  static Event& AddTea(EventSet& set) {
    EventRecord record;
    record.PeriodType = Daily;
    record.ApplyTime = true;
    record.TimeToApply = 9 * Hour;
    return Add(set, "Tea", Sunday + 9 * Hour, record);
  }
  static std::vector<std::string> Names(const EventSet& set) {
    std::vector<std::string> names;
    for (const auto& event : set.Events()) names.push_back(event->GetName());
    return names;
  }
  /// A set in a file, its window open, with one event that comes every day at 9:00.
  EventSet& OpenSet(const std::string& leaf = "Work.kestrin", bool remembered = false) {
    {
      const auto owned = kestrin::NewSet(It->Core, Path(leaf));
      AddTea(*owned);
      EXPECT_TRUE(owned->SaveCopy(Path(leaf)));
    }
    if (remembered) It->Settings.RememberSet(Path(leaf));
    return OpenFile(leaf);
  }
  EventSet& OpenFile(const std::string& leaf) {
    Message open(OPEN_FILES);
    open.Set("0", Path(leaf));
    Post(open);
    return *Set(leaf);
  }
  EventSet& NewSet() {
    Post(Message(NEW_EVENT_SET));
    return *It->Open.Sets.back();
  }
  EventSet* Set(const std::string& leaf) const { return It->Open.FindFile(Path(leaf)); }
  static EventSetWindow& WindowOf(EventSet& set) {
    return *dynamic_cast<EventSetWindow*>(set.GetWindow());
  }

  /// The menu item whose text, without its mnemonic, is that.
  static QAction* Item(EventSetWindow& window, const QString& text) {
    for (QAction* action : window.findChildren<QAction*>())
      if (action->text().remove('&') == text) return action;
    return nullptr;
  }
  void Choose(EventSetWindow& window, const QString& text) {
    QAction* const item = Item(window, text);
    ASSERT_TRUE(item && item->isEnabled()) << text.toStdString();
    item->trigger();
    Run();
  }
  template <typename T>
  static T* Find(const char* name) {
    for (QWidget* top : QApplication::topLevelWidgets()) {
      if (!top->isVisible()) continue;
      if (top->objectName() == name) return qobject_cast<T*>(top);
      if (T* found = top->findChild<T*>(name)) return found;
    }
    return nullptr;
  }
  static std::vector<std::string> AlertTexts() {
    std::vector<std::string> texts;
    for (QWidget* top : QApplication::topLevelWidgets())
      if (top->isVisible() && top->objectName() == "alert")
        texts.push_back(top->accessibleDescription().toStdString());
    return texts;
  }
  /// Presses a button of the alert whose text holds that.
  bool Answer(const QString& text, const QString& button) {
    for (QWidget* top : QApplication::topLevelWidgets()) {
      if (!top->isVisible() || !top->accessibleDescription().contains(text)) continue;
      for (QPushButton* each : top->findChildren<QPushButton*>())
        if (each->text().remove('&') == button) {
          each->click();
          Run();
          return true;
        }
    }
    return false;
  }

  QTemporaryDir Folder;
  std::unique_ptr<Process> It;
};

}  // namespace kestrin
