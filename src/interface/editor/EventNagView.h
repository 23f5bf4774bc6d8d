// The page about the messages that come after an event.
#pragma once

#include "interface/editor/EditorPage.h"

class QCheckBox;

namespace kestrin {

class EventIntervalView;

class EventNagView final : public EditorPage {
  Q_OBJECT

 public:
  explicit EventNagView(Event& event);

  void ShowEvent() override;
  void CommitEdits() override { CommitFields(); }

 private:
  void BuildRepeat();
  void BuildText();
  void CheckEnableStates();

  QCheckBox* apply_;
  QWidget* rest_;
  EventIntervalView* repeat_ = nullptr;
};

}  // namespace kestrin
