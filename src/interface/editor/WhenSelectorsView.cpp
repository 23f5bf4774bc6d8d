#include "interface/editor/WhenSelectorsView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <algorithm>
#include <utility>

#include "core/events/EventSet.h"
#include "core/timing/EventRecord.h"
#include "core/timing/EventRuleCheck.h"
#include "interface/editor/WhenLabels.h"
#include "interface/fields/ChoiceMenu.h"
#include "interface/fields/DateField.h"
#include "interface/fields/TypedField.h"

namespace kestrin {

namespace {

using View = WhenSelectorsView;

constexpr std::array<View::Group, NumberOfPeriodTypes> Groups = {
    View::Annual,  View::Annual, View::OfMonths, View::OfWeeks, View::NoGroup, View::NoGroup,
    View::NoGroup, View::Annual, View::OfMonths, View::OfWeeks, View::NoGroup, View::NoGroup};

constexpr bool Nothing[View::NumberOfSelectors] = {};
/// Days from the end of the month that the menu offers; the rule knows more.
constexpr int32 LastDayOffered = 38;

void AddAll(ChoiceMenu& menu, int32 first, int32 last, QString (*label)(int32)) {
  for (int32 value = first; value <= last; ++value) menu.Add(value, label(value));
}

}  // namespace

const bool View::Setups[NumberOfGroups][NumberOfTimingTypes][NumberOfSelectors] = {
    {{1, 0, 0, 0, 0, 0}, {0, 1, 0, 0, 1, 0}, {0, 0, 1, 1, 1, 0}},
    {{0, 0, 0, 0, 0, 0}, {0, 1, 0, 0, 0, 1}, {0, 0, 1, 1, 0, 1}},
    {{0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0}, {0, 0, 0, 1, 0, 0}},
};

void TakeMonthOfChoice(Event& event) {
  const int8 month = MonthOnceChosen(event.Record(), event.GetOwner()->GetContext().zone);
  if (month != event.Record().Month) event.SetMonth(month);
}

WhenSelectorsView::WhenSelectorsView(Event& event, EditorPage::Writer write)
    : event_(event), write_(std::move(write)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  BuildDate(event);
  BuildMenus();
  AddSelector(Date, date_);
  AddSelector(DayOfMonth, dayOfMonth_);
  AddSelector(WeekOfMonth, weekOfMonth_);
  AddSelector(Weekday, weekday_);
  AddSelector(Month, month_);
  auto* ofTheMonth = new QLabel("of the month");
  ofTheMonth->setObjectName("ofTheMonth");
  AddSelector(OfTheMonth, ofTheMonth);
  row->setStretchFactor(date_, 1);
  row->addStretch();
}

void WhenSelectorsView::BuildDate(Event& event) {
  const auto get = [this] {
    const EventRecord& record = event_.Record();
    return DateField::Shown{record.EventTime, record.ApplyTime, record.PeriodType == Once};
  };
  const auto set = [this](int32 time, bool hasTime) {
    bool taken = false;
    write_([&](Event& it) { taken = it.SetEventTime(time, hasTime); });
    return taken;
  };
  date_ = new DateField("date", "Date", event, get, set);
}

void WhenSelectorsView::BuildMenus() {
  dayOfMonth_ = new ChoiceMenu("dayOfMonth", "Day of month", [this](int32 day) {
    write_([day](Event& it) { it.SetDayOfMonth(static_cast<int8>(day)); });
  });
  AddAll(*dayOfMonth_, 1, LastDayOffered, DayOfMonthLabel);
  weekOfMonth_ = new ChoiceMenu("weekOfMonth", "Week of month", [this](int32 week) {
    write_([week](Event& it) {
      it.SetWeekOfMonth(static_cast<int8>(week));
      TakeMonthOfChoice(it);
    });
  });
  AddAll(*weekOfMonth_, 0, 7, WeekOfMonthLabel);
  weekday_ = new ChoiceMenu("weekday", "Weekday", [this](int32 day) {
    write_([day](Event& it) { it.SetDayOfWeek(static_cast<int8>(day)); });
  });
  AddAll(*weekday_, 0, 6, WeekdayLabel);
  month_ = new ChoiceMenu("month", "Month", [this](int32 month) {
    write_([month](Event& it) { it.SetMonth(static_cast<int8>(month)); });
  });
  AddAll(*month_, 0, 11, MonthLabel);
}

void WhenSelectorsView::AddSelector(Selector selector, QWidget* widget) {
  selectors_[selector] = widget;
  isShown_[selector] = true;
  layout()->addWidget(widget);
}

TypedField* WhenSelectorsView::Field() const { return date_->Field(); }

void WhenSelectorsView::ShowEvent() {
  const EventRecord& record = event_.Record();
  dayOfMonth_->ShowValue(record.DayOfMonth, DayOfMonthLabel(record.DayOfMonth));
  weekOfMonth_->ShowValue(record.WeekOfMonth, WeekOfMonthLabel(record.WeekOfMonth));
  weekday_->ShowValue(record.DayOfWeek, WeekdayLabel(record.DayOfWeek));
  month_->ShowValue(record.Month, MonthLabel(record.Month));
  date_->ShowHint();
  ReevaluateDisplay();
}

void WhenSelectorsView::ReevaluateDisplay() {
  const int32 period = event_.Record().PeriodType;
  const int32 timing = event_.Record().TimingType;
  const bool isKnown =
      period >= 0 && period < NumberOfPeriodTypes && timing >= 0 && timing < NumberOfTimingTypes;
  const Group group = isKnown ? Groups[static_cast<size_t>(period)] : NoGroup;
  ShowSetup(group == NoGroup ? Nothing : Setups[group][timing]);
}

void WhenSelectorsView::ShowSetup(const bool (&setup)[NumberOfSelectors]) {
  for (size_t selector = 0; selector < selectors_.size(); ++selector) {
    if (isShown_[selector] == setup[selector]) continue;
    isShown_[selector] = setup[selector];
    selectors_[selector]->setVisible(setup[selector]);
  }
}

QWidget* WhenSelectorsView::FirstShown() const {
  for (size_t selector = 0; selector < OfTheMonth; ++selector)
    if (isShown_[selector])
      return selector == Date ? static_cast<QWidget*>(Field()) : selectors_[selector];
  return nullptr;
}

void WhenSelectorsView::KeepRoom() {
  int room = 0;
  for (const auto& group : Setups)
    for (const auto& setup : group) {
      ShowSetup(setup);
      room = std::max(room, layout()->minimumSize().width());
    }
  setMinimumWidth(room);
  ReevaluateDisplay();
}

}  // namespace kestrin
