#include "handlers/DoNothingDataHandler.h"

#include "handlers/PayloadBytes.h"

namespace kestrin {

bool DoNothingDataHandler::SaveData(EndianIndependentFile* file) { return WriteCount(*file, 0); }

EventAddOnData* DefHandDoNothing_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  uint32 ignored = 0;
  *ok = !file || ReadCount(*file, ignored);
  return new DoNothingDataHandler(event);
}

}  // namespace kestrin
