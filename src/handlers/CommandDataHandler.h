// Runs a shell command when the event comes due.
#pragma once

#include "handlers/BuiltInData.h"
#include "handlers/PayloadBytes.h"

namespace kestrin {

class CommandDataHandler final : public BuiltInData {
 public:
  using BuiltInData::BuiltInData;

  /// Never null.
  const char* GetCommand() const { return content_.Text.Get(); }
  void SetCommand(const char* command);
  /// Whether the user is asked first. Setting it does not mark the event modified.
  bool GetVerify() const { return content_.Flag; }
  void SetVerify(bool verify) { content_.Flag = verify; }

  bool ReadData(EndianIndependentFile& file) { return content_.Read(file); }
  bool SaveData(EndianIndependentFile* file) override { return content_.Write(*file); }
  void DealWithEvent(bool missed) override;
  bool NeedsScreen() const override;

 private:
  bool MustAsk() const;

  FlaggedText content_;
};

EventAddOnData* DefHandCommand_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok);

}  // namespace kestrin
