#include "handlers/UnknownDataHandler.h"

#include <memory>

#include "handlers/DeliveryAlert.h"
#include "handlers/PayloadBytes.h"

namespace kestrin {

bool UnknownDataHandler::ReadData(EndianIndependentFile& file) {
  uint32 count = 0;
  return ReadCount(file, count) && ReadBytes(file, count, data_);
}

bool UnknownDataHandler::SaveData(EndianIndependentFile* file) {
  return WriteCount(*file, data_.size()) && WriteBytes(*file, data_);
}

void UnknownDataHandler::DealWithEvent(bool missed) {
  TellOfDelivery(*GetAttachedTo(), missed,
                 {"\n\nThe event occurred, but the add-on event handler which owns it is not "
                  "loaded.  The handler is called \"",
                  originalHandler_.c_str(),
                  "\".  Add-on event handlers should be stored in "
                  "\"~/.local/lib/kestrin/add-ons\" or in the add-ons folder in the Kestrin "
                  "application folder."});
}

EventAddOnData* DefHandUnknown_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  *ok = true;
  if (!file) return nullptr;
  auto data = std::make_unique<UnknownDataHandler>(event);
  *ok = data->ReadData(*file);
  return data.release();
}

}  // namespace kestrin
