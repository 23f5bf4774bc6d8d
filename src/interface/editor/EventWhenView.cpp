#include "interface/editor/EventWhenView.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <optional>

#include "core/events/EventSet.h"
#include "core/ports/Clock.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/EventRecord.h"
#include "core/timing/RuleSentence.h"
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
  BuildMonthEnd(*grid);
  BuildStart(*grid);
  BuildStop(*grid);
  BuildTimeOfDay(*grid);
  BuildSentence(*grid);
  KeepRoom();
}

QLabel* EventWhenView::Caption(const char* text, QWidget* buddy) {
  auto* caption = new QLabel(text);
  caption->setBuddy(buddy);
  return caption;
}

void EventWhenView::AddRow(QGridLayout& grid, Row row, QWidget* caption, QWidget* content) {
  const int at = grid.rowCount();
  // Beside the first line of what it names.
  caption->setMinimumHeight(periodType_->sizeHint().height());
  grid.addWidget(caption, at, CaptionColumn, Qt::AlignTop);
  grid.addWidget(content, at, ContentColumn);
  rows_[row] = {caption, content};
}

void EventWhenView::BuildPeriod(QGridLayout& grid) {
  periodType_ = new ChoiceMenu("periodType", "Repeat", [this](int32 type) {
    Write([type](Event& event) {
      event.SetPeriodType(static_cast<PeriodicityType>(type));
      TakeMonthOfChoice(event);
    });
  });
  for (int32 type = 0; type < NumberOfPeriodTypes; ++type)
    periodType_->Add(type, PeriodTypeLabel(type));
  for (int32 type = MultiAnnually; type <= SubDaily; ++type)
    periodType_->SetTip(type, PeriodTypeTip(type));
  grid.addWidget(Caption("&Repeat:", periodType_), 0, CaptionColumn);
  grid.addWidget(periodType_, 0, ContentColumn, Qt::AlignLeft);
}

void EventWhenView::BuildType(QGridLayout& grid) {
  timingType_ = new ChoiceMenu("timingType", "Type", [this](int32 type) {
    Write([type](Event& event) {
      event.SetTimingType(static_cast<TimingType>(type));
      TakeMonthOfChoice(event);
    });
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
      hasTime || earlier == 0 ? time : OnDayOf(time, GetSecondsIntoDay(earlier, zone), zone);
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
  connect(useTime_, &QCheckBox::clicked, this, [this](bool on) { UseTimeOfDay(on); });
  time_ = new TimeField(
      "time", GetEvent().GetOwner()->GetContext(), [this] { return TimeOfDay(); },
      [this](int32 time) { return TakeTimeOfDay(time); });
  time_->setAccessibleName("Time of day");
  AddField(time_);
  const int at = grid.rowCount();
  grid.addWidget(useTime_, at, CaptionColumn);
  midnight_ = new QLabel("Rings at midnight, when the day begins");
  midnight_->setObjectName("midnight");
  auto* row = new QHBoxLayout;
  row->addWidget(time_);
  row->addWidget(midnight_);
  row->addStretch(1);
  grid.addLayout(row, at, ContentColumn);
}

/// From midnight, where nobody means it, to the next full hour.
void EventWhenView::UseTimeOfDay(bool on) {
  const Context& context = GetEvent().GetOwner()->GetContext();
  const int32 now = SecondsIntoDay(context.zone.AtMoment(context.clock.Now()));
  const int32 fullHour = FoldIntoDay((now / 3600 + 1) * 3600);
  Write([=](Event& event) {
    if (on && event.Record().TimeToApply == 0) event.SetTimeToApply(fullHour);
    event.SetApplyTime(on);
  });
}

/// For rules of files that count back from another day than a month's last.
void EventWhenView::BuildMonthEnd(QGridLayout& grid) {
  monthEnd_ = new QWidget;
  countsFrom_ = new QLabel;
  countsFrom_->setObjectName("countsFrom");
  auto* change = new QPushButton("Count from each month's end");
  change->setObjectName("countFromEnd");
  connect(change, &QPushButton::clicked, this,
          [this] { Write([](Event& event) { event.SetMonth(EachMonthsOwnEnd); }); });
  auto* row = new QHBoxLayout(monthEnd_);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(countsFrom_);
  row->addWidget(change);
  row->addStretch(1);
  grid.addWidget(monthEnd_, grid.rowCount(), ContentColumn);
}

/// In the room that is left; a long rule can be scrolled.
void EventWhenView::BuildSentence(QGridLayout& grid) {
  sentence_ = new QLabel;
  dates_ = new QLabel;
  sentence_->setObjectName("ruleSentence");
  dates_->setObjectName("nextDates");
  auto* texts = new QWidget;
  auto* column = new QVBoxLayout(texts);
  column->setContentsMargins(0, 0, 0, 0);
  for (QLabel* label : {sentence_, dates_}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(label);
  }
  column->addStretch(1);
  auto* scroll = new QScrollArea;
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setWidgetResizable(true);
  scroll->setWidget(texts);
  for (QWidget* part : {scroll->viewport(), texts}) part->setAutoFillBackground(false);
  scroll->setMinimumHeight(3 * fontMetrics().lineSpacing());
  const int at = grid.rowCount();
  grid.addWidget(scroll, at, CaptionColumn, 1, 2);
  grid.setRowStretch(at, 1);
}

void EventWhenView::ShowSentence() {
  constexpr size_t DatesShown = 5;
  const EventRecord& record = GetEvent().Record();
  const Context& context = GetEvent().GetOwner()->GetContext();
  const bool use24Hours = context.settings.Time24Hour;
  const std::string from = CountedBackFrom(record);
  const QString end = QString::fromStdString(from);
  countsFrom_->setText("Counts back from " + end.left(end.indexOf(u',')));
  monthEnd_->setVisible(!from.empty());
  sentence_->setText(QString::fromStdString(RuleSentence(record, context.zone, use24Hours)));
  QStringList dates;
  for (const std::string& date :
       NextDateTexts(record, context.clock.Now(), context.zone, DatesShown, use24Hours))
    dates += QString::fromStdString(date).replace(u' ', QChar::Nbsp);  // a line ends between two
  dates_->setText(dates.isEmpty() ? "No date is to come." : "Next: " + dates.join("; "));
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
  const EventRecord& record = GetEvent().Record();
  const bool isStart = record.PeriodType == SubDaily;
  useTime_->setChecked(HasTimeOfDay(record));
  useTime_->setEnabled(!isStart);
  time_->setEnabled(record.ApplyTime && !isStart);
  midnight_->setVisible(!HasTimeOfDay(record));
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
  ShowSentence();
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
