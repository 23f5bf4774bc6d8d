#include "interface/editor/EventIntervalView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <utility>

#include "core/events/Event.h"
#include "core/timing/EventRuleCheck.h"
#include "interface/editor/WhenLabels.h"
#include "interface/fields/ChoiceMenu.h"
#include "interface/fields/NumberField.h"

namespace kestrin {

EventIntervalView::EventIntervalView(QWidget* caption, IntervalParts parts, const QString& ending,
                                     const Event& event, EditorPage::Writer write)
    : event_(event),
      write_(std::move(write)),
      parts_(std::move(parts)),
      number_(new NumberField(
          parts_.numberName, parts_.least, [this] { return event_.Record().*parts_.number; },
          [this](uint32 number) { return TakeNumber(number); })),
      unit_(new ChoiceMenu(parts_.unitName, "Unit of " + parts_.spokenName, [this](int32 unit) {
        write_(
            [this, unit](Event& it) { (it.*parts_.setUnit)(static_cast<TimeIntervalType>(unit)); });
      })) {
  number_->setAccessibleName(parts_.spokenName);
  if (auto* label = qobject_cast<QLabel*>(caption)) label->setBuddy(number_);
  for (int32 unit = 0; unit < NumberOfIntervalTypes; ++unit)
    unit_->Add(unit, IntervalTypeLabel(unit));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(caption);
  row->addWidget(number_);
  row->addWidget(unit_);
  if (!ending.isEmpty()) row->addWidget(new QLabel(ending));
  row->addStretch(1);
}

QString EventIntervalView::TakeNumber(uint32 number) {
  const WhyNot why = WhyChangeRefused(event_.Record(), [this, number](TimingRule& rule) {
    parts_.use(rule);
    rule.*parts_.number = number;
  });
  if (!why) write_([this, number](Event& event) { (event.*parts_.setNumber)(number); });
  return why ? QString::fromStdString(std::string(*why)) : QString();
}

void EventIntervalView::ShowEvent() {
  const int32 unit = event_.Record().*parts_.unit;
  unit_->ShowValue(unit, IntervalTypeLabel(unit));
}

void EventIntervalView::SetFieldsEnabled(bool enabled) {
  number_->setEnabled(enabled);
  unit_->setEnabled(enabled);
}

}  // namespace kestrin
