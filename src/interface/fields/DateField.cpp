#include "interface/fields/DateField.h"

#include <QAccessible>
#include <QAction>
#include <QDate>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QToolButton>
#include <optional>
#include <utility>

#include "core/events/Context.h"
#include "core/events/EventSet.h"
#include "core/ports/Clock.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventRecord.h"
#include "core/timing/EventTypes.h"
#include "interface/fields/CalendarPopup.h"
#include "interface/fields/Region.h"
#include "interface/fields/TypedField.h"

namespace kestrin {

namespace {

const Context& ContextOf(const Event& event) { return event.GetOwner()->GetContext(); }

}  // namespace

DateField::DateField(const QString& objectName, const QString& accessibleName, Event& event,
                     Getter get, Setter set, QWidget* parent)
    : QWidget(parent),
      event_(event),
      get_(std::move(get)),
      set_(std::move(set)),
      field_(new TypedField(
          objectName.toUtf8().constData(), [this] { return ShowTime(); },
          [this](const QString& text) { return TakeText(text); })) {
  field_->setAccessibleName(accessibleName);
  // The widest text there is, and the sign of what cannot be read.
  const QString widest = "Wed, Nov 30 2026, 00:00:00 AM00000";
  field_->setMinimumWidth(field_->fontMetrics().horizontalAdvance(widest));
  setFocusProxy(field_);
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(0);
  grid->addWidget(field_, 0, 0);
  grid->setColumnStretch(0, 1);
  AddButton(objectName, accessibleName);
  hint_ = new QLabel;
  hint_->setObjectName(objectName + "Hint");
  hint_->setTextFormat(Qt::PlainText);
  hint_->hide();
  grid->addWidget(hint_, 1, 0, 1, 2);
}

void DateField::AddButton(const QString& objectName, const QString& accessibleName) {
  button_ = new QToolButton;
  button_->setObjectName(objectName + "Calendar");
  button_->setArrowType(Qt::DownArrow);
  button_->setFocusPolicy(Qt::NoFocus);  // the field opens the calendar by key
  button_->setToolTip("Calendar (Alt+Down)");
  button_->setAccessibleName(accessibleName + " calendar");
  button_->setFixedHeight(field_->sizeHint().height());
  static_cast<QGridLayout*>(layout())->addWidget(button_, 0, 1);
  auto* open = new QAction(this);
  open->setShortcuts({QKeySequence(Qt::ALT | Qt::Key_Down), QKeySequence(Qt::Key_F4)});
  open->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  addAction(open);
  connect(open, &QAction::triggered, this, &DateField::OpenCalendar);
  connect(button_, &QToolButton::clicked, this, &DateField::OpenCalendar);
}

QString DateField::ShowTime() const {
  const Shown shown = get_();
  ShowHint();
  return QString::fromStdString(GetDateTimeString(
      shown.time, shown.withTime, ContextOf(event_).zone, ContextOf(event_).settings.Time24Hour));
}

void DateField::ShowHint() const {
  const Shown shown = get_();
  const EventRecord& record = event_.Record();
  const bool hasPassed =
      shown.single && record.Status == DoneWithEvent && shown.time <= ContextOf(event_).clock.Now();
  const QString hint = hasPassed                 ? "This moment has passed; it will not ring"
                       : remarked_ == shown.time ? remark_
                                                 : QString();
  hint_->setVisible(!hint.isEmpty());
  if (hint_->text() == hint) return;
  hint_->setText(hint);
  if (hint.isEmpty()) return;
  QAccessibleEvent said(hint_, QAccessible::Alert);
  QAccessible::updateAccessibility(&said);
}

QString DateField::TakeText(const QString& typed) {
  const Context& context = ContextOf(event_);
  const DateLanguage language = LanguageOf(RegionOf(*this));
  const bool repeats = !get_().single;
  const auto read = [&](const QString& text) {
    return ReadTypedDate(text.toLower().toStdString(), context.clock.Now(), context.zone, language);
  };
  TypedDate date = read(typed);
  if (WhyNoDate(date, repeats)) {
    const TypedDate rest = read(WithoutShownWeekday(typed));
    if (!WhyNoDate(rest, repeats)) date = rest;
  }
  const auto fault = WhyNoDate(date, repeats);
  const QString why = fault ? QString::fromStdString(std::string(*fault)) : TakeDate(date);
  return why.isEmpty() ? why : QuotedText(typed) + ": " + why;
}

QString DateField::TakeDate(const TypedDate& date) {
  const Context& context = ContextOf(event_);
  const Shown shown = get_();
  std::optional<int32> moment = date.moment;
  QString remark;
  if (date.timeAlone) {
    const int32 time = GetSecondsIntoDay(date.moment, context.zone);
    const bool isSet = shown.time != 0 && shown.time != -1;
    if (!shown.single && isSet) {
      moment = OnDayOf(shown.time, time, context.zone);
    } else if (shown.single && date.moment <= context.clock.Now()) {
      const Civil today = context.zone.AtMoment(date.moment);
      moment = static_cast<int32>(context.zone.ToMoment({today.seconds + SecondsPerDay}));
      remark = "That time has passed today, so it is tomorrow's";
    }
  }
  remark_ = remark;
  remarked_ = moment.value_or(0);
  if (!moment || !set_(*moment, date.hasTime))
    return shown.single ? DateOutOfRange : RepeatOutOfRange;
  return {};
}

/// Who changes the day in a text as it was shown means another weekday too.
QString DateField::WithoutShownWeekday(const QString& text) const {
  const QString shown = ShowTime();
  const qsizetype length = shown.indexOf(u',') + 1;
  return length > 0 && text.startsWith(shown.left(length)) ? text.mid(length).trimmed() : text;
}

QDate DateField::ShownDay() const {
  const Context& context = ContextOf(event_);
  const int32 time = get_().time;
  const CivilFields day =
      ToFields(context.zone.AtMoment(time != 0 && time != -1 ? time : context.clock.Now()));
  return QDate(static_cast<int>(day.year), static_cast<int>(day.month) + 1,
               static_cast<int>(day.day));
}

void DateField::OpenCalendar() {
  field_->Commit();
  field_->setFocus();
  auto* calendar = new CalendarPopup(ShownDay(), this);
  connect(calendar, &CalendarPopup::Picked, this, &DateField::TakeDay);
  calendar->OpenBelow(*this);
}

void DateField::TakeDay(const QDate& day) {
  if (const int32 time = get_().time; day == ShownDay() && time != 0 && time != -1)
    field_->Restore();
  else
    field_->TypeAndCommit(QLocale::c().toString(day, "MMM d yyyy"));
}

}  // namespace kestrin
