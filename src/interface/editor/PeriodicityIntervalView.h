// The number and unit of "every so many": years, months, weeks, days, hours or minutes.
#pragma once

#include <QWidget>

#include "interface/editor/EditorPage.h"
#include "kestrin/Types.h"

class QLabel;

namespace kestrin {

class ChoiceMenu;
class NumberField;

class PeriodicityIntervalView final : public QWidget {
  Q_OBJECT

 public:
  PeriodicityIntervalView(const Event& event, EditorPage::Writer write);

  NumberField* Field() const { return number_; }
  /// Brings all but what is being typed in step with the event.
  void ShowEvent();

 private:
  /// The unit is a word that follows the period type, or, for SubDaily, a menu.
  void SetPeriodType(int32 periodType);
  QString TakeMultiple(uint32 multiple);

  const Event& event_;
  EditorPage::Writer write_;
  NumberField* number_;
  QLabel* unit_;
  ChoiceMenu* unitMenu_;
};

}  // namespace kestrin
