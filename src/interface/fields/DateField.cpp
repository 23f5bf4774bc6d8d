#include "interface/fields/DateField.h"

#include <QAction>
#include <QDate>
#include <QHBoxLayout>
#include <QLocale>
#include <QToolButton>
#include <utility>

#include "core/events/Context.h"
#include "core/events/EventSet.h"
#include "core/ports/Clock.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "interface/fields/CalendarPopup.h"
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
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addWidget(field_, 1);
  AddButton(objectName, accessibleName);
}

void DateField::AddButton(const QString& objectName, const QString& accessibleName) {
  button_ = new QToolButton;
  button_->setObjectName(objectName + "Calendar");
  button_->setArrowType(Qt::DownArrow);
  button_->setFocusPolicy(Qt::NoFocus);  // the field opens the calendar by key
  button_->setToolTip("Calendar (Alt+Down)");
  button_->setAccessibleName(accessibleName + " calendar");
  button_->setFixedHeight(field_->sizeHint().height());
  layout()->addWidget(button_);
  auto* open = new QAction(this);
  open->setShortcuts({QKeySequence(Qt::ALT | Qt::Key_Down), QKeySequence(Qt::Key_F4)});
  open->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  addAction(open);
  connect(open, &QAction::triggered, this, &DateField::OpenCalendar);
  connect(button_, &QToolButton::clicked, this, &DateField::OpenCalendar);
}

QString DateField::ShowTime() const {
  const Shown shown = get_();
  return QString::fromStdString(GetDateTimeString(
      shown.time, shown.withTime, ContextOf(event_).zone, ContextOf(event_).settings.Time24Hour));
}

QString DateField::TakeText(const QString& typed) {
  const Context& context = ContextOf(event_);
  const int64 now = context.clock.Now();
  std::string text = typed.toStdString();
  if (WhyNoDate(text, now, context.zone)) {
    const std::string rest = WithoutShownWeekday(typed).toStdString();
    if (!WhyNoDate(rest, now, context.zone)) text = rest;
  }
  if (const auto why = WhyNoDate(text, now, context.zone))
    return QuotedText(typed) + ": " + QString::fromStdString(std::string(*why));
  bool hasTime = false;
  const int32 time = hastimeinfo_parsedate(text, now, context.zone, &hasTime);
  hasTime |= typed.contains("midnight", Qt::CaseInsensitive);  // it looks like a day alone
  if (!set_(time, hasTime)) return QuotedText(typed) + ": " + DateOutOfRange;
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
  const CivilFields day = ToFields(context.zone.AtMoment(time > 0 ? time : context.clock.Now()));
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
  if (day == ShownDay() && get_().time > 0)
    field_->Restore();
  else
    field_->TypeAndCommit(QLocale::c().toString(day, "MMM d yyyy"));
}

}  // namespace kestrin
