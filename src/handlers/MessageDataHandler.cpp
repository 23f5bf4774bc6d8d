#include "handlers/MessageDataHandler.h"

#include <memory>

#include "handlers/DeliveryAlert.h"

namespace kestrin {

void MessageDataHandler::SetMessage(const char* message) {
  message_.Set(message);
  Changed();
}

bool MessageDataHandler::ReadData(EndianIndependentFile& file) {
  uint32 count = 0;
  return ReadCount(file, count) && ReadBytes(file, count, message_.Bytes);
}

bool MessageDataHandler::SaveData(EndianIndependentFile* file) {
  return WriteCount(*file, message_.Bytes.size()) && WriteBytes(*file, message_.Bytes);
}

void MessageDataHandler::DealWithEvent(bool missed) {
  TellOfDelivery(*GetAttachedTo(), missed, {"\n\n", GetMessage()});
}

EventAddOnData* DefHandMessage_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok) {
  auto data = std::make_unique<MessageDataHandler>(event);
  *ok = !file || data->ReadData(*file);
  return data.release();
}

}  // namespace kestrin
