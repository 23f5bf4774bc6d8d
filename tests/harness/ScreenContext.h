// Fakes of every port but the screen, which is the real one.
#pragma once

#include <QApplication>
#include <memory>
#include <string>
#include <utility>

#include "core/app/DocumentApp.h"
#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/files/StoredSetFile.h"
#include "handlers/LoadEventHandlers.h"
#include "harness/MemoryFileDoor.h"
#include "harness/TestContext.h"
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

struct InMemory {
  MemoryFileDoor Files;
  int Bells = 0;
};

/// On the real screen, over files in memory.
struct ScreenContext : InMemory, World<QtUserInterface> {
  ScreenContext() : World({&Files}, [this] { ++Bells; }) {
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

  WindowHolder Application{Holding};

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
