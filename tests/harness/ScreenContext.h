// Fakes of every port but the screen, which is the real one.
#pragma once

#include <QApplication>
#include <memory>
#include <string>
#include <utility>

#include "core/app/DocumentApp.h"
#include "core/events/AddOnServices.h"
#include "core/events/Context.h"
#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/events/OpenSets.h"
#include "core/files/StoredSetFile.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/settings/KestrinSettings.h"
#include "handlers/LoadEventHandlers.h"
#include "harness/FakeClock.h"
#include "harness/FakeDesktop.h"
#include "harness/FakeEventActions.h"
#include "harness/FakeWorkers.h"
#include "harness/MemoryFileDoor.h"
#include "interface/QtUserInterface.h"
#include "interface/editor/EventWindow.h"
#include "interface/list/ListEventView.h"
#include "interface/sets/EventSetWindow.h"

namespace kestrin {

class WindowHolder final : public DocumentApp {
 public:
  using DocumentApp::DocumentApp;

 protected:
  bool CloseWindows() override { return true; }
  void QuitAbandoned() override {}
};

struct ScreenContext {
  ScreenContext() {
    LoadBuiltInHandlers(Core);
    Ui.Connect(Core, Application);
  }
  ~ScreenContext() {
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (auto* window = qobject_cast<EventWindow*>(widget)) window->CloseNow();
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (auto* window = qobject_cast<EventSetWindow*>(widget)) window->CloseNow();
    Ui.CloseOtherWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Open.Sets.clear();
  }
  ScreenContext(const ScreenContext&) = delete;
  ScreenContext& operator=(const ScreenContext&) = delete;

  FakeClock Time;
  MemoryFileDoor Files;
  MessageQueue Queue;
  Holds Holding{Queue};
  int Bells = 0;
  QtUserInterface Ui{[this] { ++Bells; }};
  AlertDesk Alerts{Queue, Ui};
  Notices Notes{Alerts, Holding, Ui};
  FakeDesktop Machine;
  FakeWorkers Threads;
  FakeEventActions Actions;
  WindowHolder Application{Holding};
  KestrinSettings Settings;
  HandlerTable Handlers;
  OpenSets Open;
  Context Core{Time,    Files,   Queue, Holding,  Ui,       Alerts, Notes, Machine,
               Threads, Actions, Open,  Settings, Handlers, Zone(), 1};
  const ServesAddOns Serves{Core};

  /// What a test posted or a window asked for; alerts open on the way.
  std::vector<uint32> RunMessages() {
    std::vector<uint32> others;
    while (auto message = Queue.Take()) {
      if (message->what == ALERTS_WAITING)
        Alerts.OpenWaiting();
      else
        others.push_back(message->what);
    }
    return others;
  }

  EventSet& NewSet(const std::string& name = "/sets/Home.kestrin") {
    auto set = kestrin::NewSet(Core, name);
    return *Open.Sets.emplace_back(std::move(set));
  }
  EventSetWindow& OpenWindow(EventSet& set) {
    set.OpenWindow();
    return *dynamic_cast<EventSetWindow*>(set.GetWindow());
  }
};

/// An event that is in its set already, made without telling anybody.
inline Event& AppendEvent(EventSet& set, const std::string& name, int32 time = 0,
                          int32 status = WaitingForEvent) {
  EventRecord record;
  record.Name = name;
  record.ActualEventTime = record.NextEventTime = time;
  record.Status = status;
  set.AppendRead(std::make_unique<Event>(set, std::move(record)));
  return *set.Events().back();
}

}  // namespace kestrin
