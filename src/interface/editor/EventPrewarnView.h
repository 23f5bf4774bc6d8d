// The page about the messages that come before an event.
#pragma once

#include "interface/editor/EditorPage.h"

class QCheckBox;

namespace kestrin {

class EventIntervalView;

class EventPrewarnView final : public EditorPage {
  Q_OBJECT

 public:
  explicit EventPrewarnView(Event& event);

  void ShowEvent() override;
  void CommitEdits() override { CommitFields(); }

 private:
  void BuildStart();
  void BuildRepeat();
  void BuildText();
  /// Only what has an effect can be changed.
  void CheckEnableStates();

  QCheckBox* apply_;
  QWidget* rest_;
  EventIntervalView* start_ = nullptr;
  QCheckBox* applyRepeat_ = nullptr;
  EventIntervalView* repeat_ = nullptr;
};

}  // namespace kestrin
