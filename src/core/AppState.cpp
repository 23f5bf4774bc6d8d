#include "core/AppState.h"

#include "core/EventSet.h"
#include "core/HandlerTable.h"
#include "core/KestrinSettings.h"
#include "core/OpenSets.h"

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
