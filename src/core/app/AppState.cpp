#include "core/app/AppState.h"

#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/events/OpenSets.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

bool BackgroundOnlyStartup = false;
bool DeliverOnly = false;
bool AlreadyToldUser = false;
bool FullQuitProcess = false;
bool QuitProcess = false;
std::string KestrinDir;

void ResetProcessState() {
  BackgroundOnlyStartup = DeliverOnly = AlreadyToldUser = false;
  FullQuitProcess = QuitProcess = false;
  KestrinDir.clear();
  OpenSets::Sets.clear();
  ResetHandlerTable();
  KestrinSettings::Reset();
}

}  // namespace kestrin
