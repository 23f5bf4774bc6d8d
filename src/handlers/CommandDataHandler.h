// Runs a shell command when the event comes due.
#pragma once

#include "handlers/StartingData.h"
#include "kestrin/EventAddOnData.h"

namespace kestrin {

class CommandDataHandler final : public StartingData {
 public:
  using StartingData::StartingData;

  /// Never null.
  const char* GetCommand() const { return Text(); }
  void SetCommand(const char* command) { SetText(command); }

  void DealWithEvent(bool missed) override;
};

EventAddOnData* DefHandCommand_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok);

}  // namespace kestrin
