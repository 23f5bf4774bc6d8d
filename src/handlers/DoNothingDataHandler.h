// An event that only stands in the list.
#pragma once

#include "handlers/BuiltInData.h"

namespace kestrin {

class DoNothingDataHandler final : public BuiltInData {
 public:
  using BuiltInData::BuiltInData;

  QWidget* CreateEditView(Rect) override { return nullptr; }
  bool SaveData(EndianIndependentFile* file) override;
  void DealWithEvent(bool) override {}
  bool NeedsScreen() const override { return false; }
};

EventAddOnData* DefHandDoNothing_NewAddOnData(Event* event, EndianIndependentFile* file, bool* ok);

}  // namespace kestrin
