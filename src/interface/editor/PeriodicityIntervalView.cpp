#include "interface/editor/PeriodicityIntervalView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <utility>

#include "core/events/Event.h"
#include "core/timing/EventRuleCheck.h"
#include "core/timing/EventTypes.h"
#include "interface/editor/WhenLabels.h"
#include "interface/fields/ChoiceMenu.h"
#include "interface/fields/NumberField.h"

namespace kestrin {

PeriodicityIntervalView::PeriodicityIntervalView(const Event& event, EditorPage::Writer write)
    : event_(event),
      write_(std::move(write)),
      number_(new NumberField(
          "interval", 1, [this] { return event_.Record().Multiple; },
          [this](uint32 number) { return TakeMultiple(number); })),
      unit_(new QLabel),
      unitMenu_(new ChoiceMenu("intervalUnit", "Unit of the interval", [this](int32 unit) {
        write_([unit](Event& it) { it.SetSubIntType(static_cast<TimeIntervalType>(unit)); });
      })) {
  number_->setAccessibleName("Every");
  unit_->setObjectName("intervalUnitLabel");
  for (const int32 unit : {Hours, Minutes}) unitMenu_->Add(unit, IntervalTypeLabel(unit));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(number_);
  row->addWidget(unit_);
  row->addWidget(unitMenu_);
  row->addStretch(1);
}

QString PeriodicityIntervalView::TakeMultiple(uint32 multiple) {
  const WhyNot why =
      WhyChangeRefused(event_.Record(), [multiple](TimingRule& rule) { rule.Multiple = multiple; });
  if (!why) write_([multiple](Event& event) { event.SetMultiple(multiple); });
  return why ? QString::fromStdString(std::string(*why)) : QString();
}

void PeriodicityIntervalView::ShowEvent() {
  SetPeriodType(event_.Record().PeriodType);
  const int32 unit = event_.Record().SubIntType;
  unitMenu_->ShowValue(unit, IntervalTypeLabel(unit));
}

void PeriodicityIntervalView::SetPeriodType(int32 periodType) {
  unit_->setText(IntervalUnitLabel(periodType));
  unit_->setVisible(periodType != SubDaily);
  unitMenu_->setVisible(periodType == SubDaily);
}

}  // namespace kestrin
