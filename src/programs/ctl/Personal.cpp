#include "programs/ctl/Personal.h"

#include <cstdlib>

#include "core/settings/BuiltInPrefs.h"
#include "core/settings/SettingsFile.h"
#include "session/ProcessInfo.h"

namespace kestrin {

bool ReadPersonalSettings(VirtualEngine& engine, std::string* complaint) {
  const char* const library = std::getenv("LIBRARY_PATH");
  SettingsStore store(
      OpenPrefs(engine.files, ConfigFolder(), ExecutableFolder(), library ? library : ""));
  const bool opened = store.InitStatus() == StatusOk && store.LoadStatus() == StatusOk;
  if (opened) InitSettings(engine.settings, store, engine.notices);
  if (complaint) *complaint = store.Complaint();
  return opened && store.Complaint().empty();
}

std::string JournalFolder() { return StateFolder() + "/kestrin"; }

}  // namespace kestrin
