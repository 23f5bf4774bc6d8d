// What main hands the application over besides the context.
#pragma once

#include <functional>
#include <string>

#include "core/ports/BackgroundMessenger.h"
#include "core/ports/BusPresence.h"
#include "core/ports/FileWatcher.h"
#include "core/ports/Processes.h"
#include "core/settings/SettingsStore.h"
#include "support/LocalTime.h"

namespace kestrin {

class EventSet;

/// All outlive the application.
struct AppParts {
  BackgroundMessenger& background;
  BusPresence& bus;
  SettingsStore& settings;
  const Processes& processes;
  std::string KestrinDir;   ///< folder of the real executable
  std::string stateFolder;  ///< $XDG_STATE_HOME/kestrin
  std::function<void()> loadHandlers;
  std::function<void()> unloadHandlers;
  std::function<Zone()> systemZone;
  std::function<void()> endLoop;  ///< called when the program is to end
  std::string mark = "0";         ///< tells this process's records from those of all others
  /// Adds the sample's events to a set that nobody knows of yet.
  std::function<void(EventSet& set)> addSampleEvents = [](EventSet&) {};
  /// Whether the region counts 24 hours, for the very first start; null: as the settings' default.
  std::function<bool()> usesClock24 = nullptr;
  FileWatcher* watcher = nullptr;  ///< of the sets' files; may be null
};

}  // namespace kestrin
