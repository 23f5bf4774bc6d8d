// What the data of all built-in handlers has in common.
#pragma once

#include "kestrin/EventAddOnData.h"

namespace kestrin {

class BuiltInData : public EventAddOnData, public ActsWithoutScreen {
 public:
  using EventAddOnData::EventAddOnData;
  QWidget* CreateEditView(Rect frame) override;

 protected:
  /// Marks the event modified, under its lock.
  void Changed();
};

}  // namespace kestrin
