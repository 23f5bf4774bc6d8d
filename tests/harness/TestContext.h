// A whole context of fakes around the real queue, holds, alerts and notices.
#pragma once

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/delivery/CommandQueue.h"
#include "core/delivery/ReminderFaces.h"
#include "core/events/AddOnServices.h"
#include "core/events/Context.h"
#include "core/events/HandlerTable.h"
#include "core/events/OpenSets.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/BackgroundWork.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/settings/KestrinSettings.h"
#include "harness/FakeClock.h"
#include "harness/FakeDesktop.h"
#include "harness/FakeEventActions.h"
#include "harness/FakeNotifications.h"
#include "harness/FakeProcesses.h"
#include "harness/FakeTimers.h"
#include "harness/FakeUserInterface.h"
#include "harness/FakeWorkers.h"
#include "harness/MemoryFileDoor.h"

namespace kestrin {

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;

/// What a world may be given instead of its own.
struct WorldParts {
  FileDoor* Files = nullptr;  ///< else the system's own; the journal lies in memory then
  EventActions* Actions = nullptr;
  int64 Process = 1;
  const std::set<int64>* Dead = nullptr;  ///< processes
};

/// Everything that a context is made of, on fakes of the ports but the screen, which is `Screen`.
/// Files are the system's own and actions are written down only, unless others are handed in; the
/// zone is UTC.
template <typename Screen>
struct World {
  template <typename... ScreenParts>
  World(const WorldParts& parts, ScreenParts&&... ofScreen)
      : Ui(std::forward<ScreenParts>(ofScreen)...),
        Core{Time,     parts.Files ? *parts.Files : SystemFiles,
             Queue,    Holding,
             Ui,       Alerts,
             Notes,    Machine,
             Threads,  parts.Actions ? *parts.Actions : Actions,
             Open,     Settings,
             Handlers, Zone(),
             1},
        Who(parts.Process, parts.Dead),
        Record(parts.Files ? *parts.Files : StateFiles, Who, Time, "/state",
               [this](const std::string& words) { Queue.Post(ErrorFound(words)); }) {
    Core.journal = &Record;
    Core.timers = &Ticks;
    Core.work = &Work;
    Core.commands = &Commands;
    Faces.Connect(Core);
  }
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  FakeClock Time;
  SystemFileDoor SystemFiles;
  MessageQueue Queue;
  Holds Holding{Queue};
  Screen Ui;
  FakeNotifications Notified;
  ReminderFaces Faces{Ui, Notified};
  AlertDesk Alerts{Queue, Faces};
  Notices Notes{Alerts, Holding, Ui};
  FakeDesktop Machine;
  FakeWorkers Threads;
  FakeTimers Ticks{Queue};
  BackgroundWork Work{Threads, Queue};
  FakeEventActions Actions;
  KestrinSettings Settings;
  HandlerTable Handlers;
  Context Core;
  CommandQueue Commands{Core};
  const ServesAddOns Serves{Core};
  MemoryFileDoor StateFiles;  ///< where the journal lies beside the system's files
  FakeProcesses Who;
  Journal Record;
  OpenSets Open;
};

/// Without a screen.
struct TestContext : World<FakeUserInterface> {
  explicit TestContext(FileDoor* files = nullptr) : TestContext(WorldParts{files}) {}
  explicit TestContext(const WorldParts& parts) : World(parts) { Ui.Desk = &Alerts; }

  /// Gets every message that the context itself has no answer to; may be null.
  std::function<void(const Message&)> OnMessage;
  /// Those messages, in order, the handled ones too.
  std::vector<Message> Messages;

  /// Runs the queue until it is empty, as the application's loop does.
  void RunMessages() {
    while (auto message = Queue.Take()) Dispatch(*message);
  }

  /// How many of Messages have that code.
  int CountMessages(uint32 code) const {
    return static_cast<int>(
        std::count_if(Messages.begin(), Messages.end(),
                      [code](const Message& each) { return each.what == code; }));
  }

 private:
  void Dispatch(const Message& message) {
    if (message.what == ALERTS_WAITING) {
      Alerts.OpenWaiting();
    } else if (message.what == PROCESS_HOLD_DONE) {
      Holding.ProcessDone();
    } else if (message.what == WORK_DONE) {
      Work.Done(message);
    } else if (message.what == START_COMMANDS) {
      Commands.GoOn();
    } else {
      Messages.push_back(message);
      if (OnMessage) OnMessage(message);
    }
  }
};

}  // namespace kestrin
