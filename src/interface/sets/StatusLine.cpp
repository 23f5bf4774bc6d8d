#include "interface/sets/StatusLine.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "core/events/EventSet.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"
#include "interface/common/ShownText.h"
#include "interface/sets/ElidedLabel.h"

namespace kestrin {

bool IsRemembered(const EventSet& set) {
  const AutoLock lock(set.GetContext().settings.Protect);
  return set.GetContext().settings.IsFileRemembered(set.GetFileName());
}

QString RingingText(const EventSet& set) {
  const int32 mode = set.GetContext().settings.WhichEventsToDeliver;
  if (mode < DeliverShown || mode >= DeliverNothing)
    return QStringLiteral("Silent – delivery is switched off in the settings");
  const bool shown = set.Delivers(true), closed = set.Delivers(false);
  if (shown && closed) return QStringLiteral("Rings, also when this window is closed");
  if (closed) return QStringLiteral("Rings only once this window is closed, as the settings say");
  if (!shown) return QStringLiteral("Silent – not remembered for delivery");
  return mode == DeliverShown
             ? QStringLiteral("Silent once this window is closed, as the settings say")
             : QStringLiteral("Silent once this window is closed – not remembered for delivery");
}

StatusLine::StatusLine(EventSet& set)
    : set_(&set), next_(new ElidedLabel), ringing_(new ElidedLabel), remember_(new QPushButton) {
  setObjectName("statusLine");
  setAccessibleName("Status");
  next_->setObjectName("nextEvent");
  ringing_->setObjectName("ringing");
  auto* lines = new QVBoxLayout;
  lines->setContentsMargins(8, 4, 8, 5);
  lines->setSpacing(1);
  lines->addWidget(next_);
  lines->addLayout(BuildRingingRow());
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(BuildReportRow());
  column->addLayout(lines);
  Update();
}

QLayout* StatusLine::BuildRingingRow() {
  remember_->setObjectName("remember");
  remember_->setFocusPolicy(Qt::TabFocus);
  connect(remember_, &QPushButton::clicked, this, &StatusLine::RememberRequested);
  auto* row = new QHBoxLayout;
  row->setSpacing(8);
  row->addWidget(ringing_);
  row->addWidget(remember_);
  row->addStretch(1);
  return row;
}

QWidget* StatusLine::BuildReportRow() {
  reportRow_ = new QWidget;
  reportRow_->setObjectName("reportRow");
  reportRow_->setAutoFillBackground(true);
  reportRow_->setBackgroundRole(QPalette::AlternateBase);
  report_ = new ElidedLabel;
  report_->setObjectName("report");
  report_->setForegroundRole(QPalette::Text);
  undo_ = new QPushButton("&Undo");
  undo_->setObjectName("undo");
  connect(undo_, &QPushButton::clicked, this, &StatusLine::UndoRequested);
  auto* row = new QHBoxLayout(reportRow_);
  row->setContentsMargins(8, 3, 8, 3);
  row->setSpacing(8);
  row->addWidget(report_);
  row->addWidget(undo_);
  row->addStretch(1);
  reportRow_->hide();
  return reportRow_;
}

void StatusLine::Refresh() {
  if (std::exchange(refreshWaits_, true)) return;
  QTimer::singleShot(0, this, &StatusLine::Update);
}

void StatusLine::Update() {
  refreshWaits_ = false;
  if (!set_) return;
  ringing_->SetText(RingingText(*set_));
  const bool remembered = IsRemembered(*set_);
  emit RememberedIs(remembered);
  remember_->setText(remembered ? "For&get" : "&Remember for delivery");
  remember_->setToolTip(remembered ? "Its reminders come only while a window shows it, then"
                                   : "Its reminders come also while no window shows it");
  ShowNext();
}

void StatusLine::ShowNext() {
  const AutoLock lock(*set_);
  if (const Event* event = set_->GetNextEvent()) {
    const std::string when =
        GetShortDateTime(event->GetNextEventTime(), MessageHasTimeOfDay(event->Record()),
                         set_->GetContext().zone, set_->GetContext().settings.Time24Hour);
    next_->SetText("Next: " + ShownLine(event->GetName()), ", " + ShownText(when));
  } else {
    next_->SetText(set_->CountEvents() == 0 ? QStringLiteral("No events yet")
                                            : QStringLiteral("Nothing comes next"));
  }
}

/// Of a long name the beginning is shown, and what closes the sentence.
void StatusLine::Report(const QString& what, bool canUndo) {
  const qsizetype closing = what.endsWith("”.") ? 2 : 0;
  report_->SetText(what.chopped(closing), what.right(closing));
  undo_->setVisible(canUndo);
  reportRow_->show();
  QAccessibleEvent event(report_, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

void StatusLine::HideReport() { reportRow_->hide(); }

}  // namespace kestrin
