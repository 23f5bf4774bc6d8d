// A caption, a number and a unit of time on one line.
#pragma once

#include <QWidget>
#include <functional>

#include "core/timing/EventTypes.h"
#include "interface/editor/EditorPage.h"

class QHBoxLayout;

namespace kestrin {

class ChoiceMenu;
class NumberField;
struct TimingRule;

/// Which two values of the rule a line edits, and how they are written.
struct IntervalParts {
  const char* numberName;  ///< object names of the two controls
  const char* unitName;
  QString spokenName;  ///< for screen readers: what the number counts
  uint32 least;        ///< the smallest number that makes sense
  uint32 TimingRule::*number;
  int32 TimingRule::*unit;
  void (Event::*setNumber)(uint32);
  void (Event::*setUnit)(TimeIntervalType);
  /// Puts the rule's switches so that the two values matter.
  std::function<void(TimingRule&)> use;
};

class EventIntervalView final : public QWidget {
  Q_OBJECT

 public:
  /// `caption`: a check box, or a label that becomes the number's own.
  EventIntervalView(QWidget* caption, IntervalParts parts, const QString& ending,
                    const Event& event, EditorPage::Writer write);

  NumberField* Field() const { return number_; }
  void ShowEvent();
  /// Of the two fields alone; the caption is left as it is.
  void SetFieldsEnabled(bool enabled);

 private:
  QString TakeNumber(uint32 number);

  const Event& event_;
  EditorPage::Writer write_;
  IntervalParts parts_;
  NumberField* number_;
  ChoiceMenu* unit_;
};

}  // namespace kestrin
