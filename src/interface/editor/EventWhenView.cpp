#include "interface/editor/EventWhenView.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <optional>

#include "core/events/EventSet.h"
#include "core/timing/EventRecord.h"
#include "interface/editor/PeriodicityIntervalView.h"
#include "interface/editor/WhenLabels.h"
#include "interface/editor/WhenSelectorsView.h"
#include "interface/fields/ChoiceMenu.h"
#include "interface/fields/DateField.h"
#include "interface/fields/NumberField.h"
#include "interface/fields/TimeField.h"
#include "support/LocalTime.h"

namespace kestrin {

namespace {

enum Column { CaptionColumn, ContentColumn };

/// A widget counts for its layout only once it is shown.
void ShowAll(QLayout& layout) {
  for (int place = 0; place < layout.count(); ++place) {
    QWidget* const widget = layout.itemAt(place)->widget();
    if (!widget) continue;
    widget->show();
    if (widget->layout()) ShowAll(*widget->layout());
  }
}

const Zone& ZoneOf(const Event& event) { return event.GetOwner()->GetContext().zone; }

}  // namespace

const bool EventWhenView::IsViewShown[NumberOfPeriodTypes][NumberOfRows] = {
    {0, 0, 1, 0, 0},  // Once
    {0, 1, 1, 0, 0},  // Annually
    {0, 1, 1, 0, 0},  // Monthly
    {0, 0, 1, 0, 0},  // Weekly
    {0, 0, 0, 0, 0},  // Daily
    {0, 0, 0, 0, 0},  // Weekdays
    {0, 0, 0, 0, 0},  // Weekends
    {1, 1, 1, 1, 0},  // MultiAnnually
    {1, 1, 1, 1, 0},  // MultiMonthly
    {1, 0, 1, 1, 0},  // MultiWeekly
    {1, 0, 0, 1, 0},  // MultiDaily
    {1, 0, 0, 1, 1},  // SubDaily
};

EventWhenView::EventWhenView(Event& event) : EditorPage(event) {
  auto* grid = new QGridLayout(this);
  grid->setColumnStretch(ContentColumn, 1);
  const Writer write = [this](const std::function<void(Event&)>& change) { Write(change); };
  BuildPeriod(*grid);
  interval_ = new PeriodicityIntervalView(event, write);
  AddField(interval_->Field());
  AddRow(*grid, Interval, Caption("&Every", interval_->Field()), interval_);
  BuildType(*grid);
  selectors_ = new WhenSelectorsView(event, write);
  AddField(selectors_->Field());
  selectorsCaption_ = Caption("&Date:", selectors_);
  AddRow(*grid, Selectors, selectorsCaption_, selectors_);
  BuildStart(*grid);
  BuildStop(*grid);
  BuildTimeOfDay(*grid);
  // Takes the room that is left, so that the captions keep their width.
  grid->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Expanding),
                grid->rowCount(), ContentColumn);
  KeepRoom();
}

QLabel* EventWhenView::Caption(const char* text, QWidget* buddy) {
  auto* caption = new QLabel(text);
  caption->setBuddy(buddy);
  return caption;
}

void EventWhenView::AddRow(QGridLayout& grid, Row row, QWidget* caption, QWidget* content) {
  const int at = grid.rowCount();
  grid.addWidget(caption, at, CaptionColumn);
  grid.addWidget(content, at, ContentColumn);
  rows_[row] = {caption, content};
}

void EventWhenView::BuildPeriod(QGridLayout& grid) {
  periodType_ = new ChoiceMenu("periodType", "Repeat", [this](int32 type) {
    Write([type](Event& event) { event.SetPeriodType(static_cast<PeriodicityType>(type)); });
  });
  for (int32 type = 0; type < NumberOfPeriodTypes; ++type)
    periodType_->Add(type, PeriodTypeLabel(type));
  grid.addWidget(Caption("&Repeat:", periodType_), 0, CaptionColumn);
  grid.addWidget(periodType_, 0, ContentColumn, Qt::AlignLeft);
}

void EventWhenView::BuildType(QGridLayout& grid) {
  timingType_ = new ChoiceMenu("timingType", "Type", [this](int32 type) {
    Write([type](Event& event) { event.SetTimingType(static_cast<TimingType>(type)); });
  });
  for (int32 type = 0; type < NumberOfTimingTypes; ++type)
    timingType_->Add(type, TimingTypeLabel(type));
  timingType_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  AddRow(grid, Type, Caption("&Type:", timingType_), timingType_);
}

void EventWhenView::BuildStart(QGridLayout& grid) {
  start_ = new DateField(
      "startDate", "Starting", GetEvent(),
      [this] {
        return DateField::Shown{GetEvent().Record().MultiStartTime, true};
      },
      [this](int32 time, bool hasTime) { return TakeStart(time, hasTime); });
  AddField(start_->Field());
  AddRow(grid, Start, Caption("&Starting:", start_->Field()), start_);
}

/// A day alone keeps the time of day that the start had.
bool EventWhenView::TakeStart(int32 time, bool hasTime) {
  const int32 earlier = GetEvent().Record().MultiStartTime;
  const Zone& zone = ZoneOf(GetEvent());
  const std::optional<int32> start =
      hasTime || earlier <= 0 ? time : OnDayOf(time, GetSecondsIntoDay(earlier, zone), zone);
  if (!start) return false;
  Write([start](Event& event) { event.SetMultiStartTime(*start); });
  return true;
}

void EventWhenView::BuildStop(QGridLayout& grid) {
  useStop_ = new QCheckBox("St&opping:");
  useStop_->setObjectName("useStop");
  connect(useStop_, &QCheckBox::clicked, this,
          [this](bool on) { Write([on](Event& event) { event.SetApplyStop(on); }); });
  stopTime_ = new TimeField(
      "stopTime", GetEvent().GetOwner()->GetContext(),
      [this] { return GetEvent().Record().StopTime; },
      [this](int32 time) {
        Write([time](Event& event) { event.SetStopTime(time); });
        return true;
      });
  stopTime_->setAccessibleName("Stopping time");
  AddField(stopTime_);
  AddRow(grid, Stop, useStop_, stopTime_);
}

void EventWhenView::BuildTimeOfDay(QGridLayout& grid) {
  useTime_ = new QCheckBox("&Use time of day:");
  useTime_->setObjectName("useTime");
  connect(useTime_, &QCheckBox::clicked, this,
          [this](bool on) { Write([on](Event& event) { event.SetApplyTime(on); }); });
  time_ = new TimeField(
      "time", GetEvent().GetOwner()->GetContext(), [this] { return TimeOfDay(); },
      [this](int32 time) { return TakeTimeOfDay(time); });
  time_->setAccessibleName("Time of day");
  AddField(time_);
  const int at = grid.rowCount();
  grid.addWidget(useTime_, at, CaptionColumn);
  grid.addWidget(time_, at, ContentColumn);
}

bool EventWhenView::TakeTimeOfDay(int32 time) {
  const int32 day = GetEvent().Record().EventTime;
  if (selectors_->IsDateShown() && !OnDayOf(day, time, ZoneOf(GetEvent()))) return false;
  Write([time](Event& event) { event.SetTimeToApply(time); });
  return true;
}

/// A sub-daily event has the time of day of its start.
int32 EventWhenView::TimeOfDay() const {
  const EventRecord& record = GetEvent().Record();
  return record.PeriodType == SubDaily
             ? GetSecondsIntoDay(record.MultiStartTime, ZoneOf(GetEvent()))
             : record.TimeToApply;
}

void EventWhenView::ShowTimeOfDay() {
  const bool isStart = GetEvent().Record().PeriodType == SubDaily;
  useTime_->setChecked(GetEvent().GetApplyTime());
  time_->setEnabled(GetEvent().GetApplyTime() && !isStart);
  time_->setToolTip(isStart ? "The times of a sub-daily event are counted from its start." : "");
}

void EventWhenView::KeepRoom() {
  ShowAll(*layout());
  selectors_->KeepRoom();
  setMinimumSize(layout()->minimumSize());
}

void EventWhenView::ShowEvent() {
  const int32 period = GetEvent().Record().PeriodType;
  periodType_->ShowValue(period, PeriodTypeLabel(period));
  interval_->ShowEvent();
  selectors_->ShowEvent();
  ShowTypes();
  useStop_->setChecked(GetEvent().Record().ApplyStop);
  stopTime_->setEnabled(GetEvent().Record().ApplyStop);
  ShowTimeOfDay();
  HideShowMoveViews();
  DropHiddenEdits();
  ShowFields();
}

void EventWhenView::ShowTypes() {
  const int32 period = GetEvent().Record().PeriodType;
  const int32 timing = GetEvent().Record().TimingType;
  timingType_->ShowValue(timing, TimingTypeLabel(timing));
  if (period < 0 || period >= NumberOfPeriodTypes) return;
  for (int32 type = 0; type < NumberOfTimingTypes; ++type)
    timingType_->SetOffered(type, AllowableTypeCombination[period][type]);
}

/// The layout leaves no gap where a row is hidden; nothing is painted on the way there.
void EventWhenView::HideShowMoveViews() {
  const int32 period = GetEvent().Record().PeriodType;
  const bool isKnown = period >= 0 && period < NumberOfPeriodTypes;
  setUpdatesEnabled(false);
  for (size_t row = 0; row < rows_.size(); ++row) {
    const bool show = isKnown && IsViewShown[period][row];
    if (rows_[row].isShown == show) continue;
    rows_[row].isShown = show;
    rows_[row].caption->setVisible(show);
    rows_[row].content->setVisible(show);
  }
  selectorsCaption_->setText(selectors_->IsDateShown() ? "&Date:" : "&Day:");
  selectorsCaption_->setBuddy(selectors_->FirstShown());
  layout()->activate();
  setUpdatesEnabled(true);
}

void EventWhenView::CommitEdits() { CommitFields(); }

}  // namespace kestrin
