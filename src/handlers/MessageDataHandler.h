// Shows a message when the event comes due.
#pragma once

#include "handlers/BuiltInData.h"
#include "handlers/PayloadBytes.h"

namespace kestrin {

class MessageDataHandler final : public BuiltInData {
 public:
  using BuiltInData::BuiltInData;

  /// Never null.
  const char* GetMessage() const { return message_.Get(); }
  void SetMessage(const char* message);

  bool ReadData(EndianIndependentFile& file);
  bool SaveData(EndianIndependentFile* file) override;
  void DealWithEvent(bool missed) override;
  bool NeedsScreen() const override { return true; }

 private:
  PayloadText message_;
};

EventAddOnData* DefHandMessage_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok);

}  // namespace kestrin
