// The ports and services that sets, events and handlers work with. Built by main, or by a test with
// fakes; outlives every set.
#pragma once

#include "core/ports/Clock.h"
#include "support/FileDoor.h"
#include "support/LocalTime.h"

namespace kestrin {

class ActionWatch;
class AlertDesk;
class BackgroundWork;
class CommandQueue;
class Desktop;
class DesktopFilePanels;
class EventActions;
class HandlerTable;
class Holds;
class Journal;
class KestrinSettings;
class MessageQueue;
class Notices;
class OpenSets;
class OwnSets;
class ReminderCheck;
class Timers;
class UserInterface;
class Workers;

struct Context {
  Clock& clock;
  FileDoor& files;
  MessageQueue& queue;
  Holds& holds;
  UserInterface& ui;
  AlertDesk& alerts;
  Notices& notices;
  Desktop& desktop;
  Workers& workers;
  EventActions& actions;
  OpenSets& openSets;
  KestrinSettings& settings;
  HandlerTable& handlers;
  Zone zone;                                ///< the system's zone; changed only between messages
  uint64 nextHandle = 1;                    ///< handles of sets and events; never reused
  DesktopFilePanels* filePanels = nullptr;  ///< null: the program shows panels of its own
  ActionWatch* watch = nullptr;             ///< null: an action may take as long as it likes
  Journal* journal = nullptr;               ///< null: nothing is written down (a virtual engine)
  ReminderCheck* reminderCheck = nullptr;   ///< null: nobody can be asked
  Timers* timers = nullptr;                 ///< null: nothing is done later (a virtual engine)
  BackgroundWork* work = nullptr;           ///< null: no handler acts (a virtual engine); this too
  CommandQueue* commands = nullptr;
  OwnSets* ownSets = nullptr;  ///< null: nobody asks whose a set is
};

}  // namespace kestrin
