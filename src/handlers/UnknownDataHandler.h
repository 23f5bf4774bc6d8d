// Stands in for a handler that is not installed, and keeps its data.
#pragma once

#include <string>
#include <utility>

#include "core/events/HandlerTable.h"
#include "handlers/BuiltInData.h"

namespace kestrin {

class UnknownDataHandler final : public BuiltInData, public KeepsOriginalHandler {
 public:
  using BuiltInData::BuiltInData;

  void SetOriginalHandler(std::string name) override { originalHandler_ = std::move(name); }
  const std::string& GetOriginalHandler() const override { return originalHandler_; }

  bool ReadData(EndianIndependentFile& file);
  bool SaveData(EndianIndependentFile* file) override;
  void DealWithEvent(bool missed) override;
  bool NeedsScreen() const override { return true; }

 private:
  std::string originalHandler_ = "Unknown";
  std::string data_;
};

/// Null without a file: nobody can choose this handler.
EventAddOnData* DefHandUnknown_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok);

}  // namespace kestrin
