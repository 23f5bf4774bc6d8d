#include "interface/settings/TestRemindersWindow.h"

#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "core/events/Context.h"
#include "core/loop/AlertDesk.h"
#include "core/ports/ReminderCheck.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"
#include "interface/common/HelpKey.h"
#include "interface/common/ShownText.h"

namespace kestrin {

namespace {

constexpr QSize InitialSize(620, 420);

QLabel* PlainLabel(const char* objectName) {
  auto* label = new QLabel;
  label->setObjectName(objectName);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

AlertRequest TestReminder(int32 when) {
  AlertRequest request;
  request.Role = AlertRole::Delivery;
  request.Face.EventName = "Test";
  request.Text = "Kestrin event:  Test\n\nThis reminder came through the deliverer.";
  request.Buttons = {"Ok"};
  request.Occurrence = when;
  return request;
}

}  // namespace

TestRemindersWindow::TestRemindersWindow(Context& context, DocumentApp& application)
    : SideWindow(application),
      context_(context),
      rows_(new QGridLayout),
      verdict_(PlainLabel("verdict")),
      announced_(PlainLabel("announced")) {
  setObjectName("testRemindersWindow");
  setWindowTitle("Test reminders");
  auto* list = new QWidget;
  list->setLayout(rows_);
  rows_->setColumnStretch(2, 1);
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setWidget(list);
  area->setAccessibleName("The way of a reminder");
  auto* again = new QPushButton("&Look again");
  auto* come = new QPushButton("&Remind me in %1 seconds");
  come->setText(come->text().arg(ComesAfter));
  come->setObjectName("remindMe");
  come->setDefault(true);
  auto* close = new QPushButton("&Close");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(again);
  buttons->addStretch(1);
  buttons->addWidget(come);
  buttons->addWidget(close);
  auto* column = new QVBoxLayout(this);
  column->addWidget(verdict_);
  column->addWidget(area, 1);
  column->addWidget(announced_);
  column->addLayout(buttons);
  connect(again, &QPushButton::clicked, this, &TestRemindersWindow::Look);
  connect(come, &QPushButton::clicked, this, &TestRemindersWindow::LetOneCome);
  connect(close, &QPushButton::clicked, this, &QWidget::close);
  OpenHelpByKey(*this, context, [] { return "delivery"; });
  resize(InitialSize);
  come->setFocus();
  Look();
}

void TestRemindersWindow::Look() {
  verdict_->setText("Looking…");
  if (!context_.reminderCheck) return Show({}, "There is nobody to ask.");
  context_.reminderCheck->Look(
      [window = QPointer(this)](const std::vector<ReminderLink>& links, const std::string& fault) {
        if (window) window->Show(links, fault);
      });
}

void TestRemindersWindow::Show(const std::vector<ReminderLink>& links, const std::string& fault) {
  while (QLayoutItem* item = rows_->takeAt(0)) {
    delete item->widget();
    delete item;
  }
  QString broken;
  for (const ReminderLink& link : links) {
    ShowLink(link);
    if (!link.Mend.empty())
      broken += (broken.isEmpty() ? "" : ", ") + QString("“%1”").arg(ShownText(link.Name));
  }
  rows_->setRowStretch(rows_->rowCount(), 1);
  verdict_->setText(!fault.empty()     ? ShownText(fault)
                    : broken.isEmpty() ? "A reminder would reach you."
                                       : "A reminder would not reach you. Broken: " + broken + ".");
}

QLabel* TestRemindersWindow::Text(const QString& text) {
  auto* label = PlainLabel("");
  label->setText(text);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

void TestRemindersWindow::ShowLink(const ReminderLink& link) {
  const bool broken = !link.Mend.empty();
  const int row = rows_->rowCount();
  QLabel* const sign = Text(broken ? "✗" : "✓");
  sign->setAccessibleName(broken ? "broken" : "ok");
  rows_->addWidget(sign, row, 0, Qt::AlignTop);
  QLabel* const name = Text(ShownText(link.Name));
  name->setWordWrap(false);
  QFont font = name->font();
  font.setBold(broken);
  name->setFont(font);
  rows_->addWidget(name, row, 1, Qt::AlignTop);
  QString found = ShownText(link.Text);
  if (broken) found += "\nThis mends it:  " + ShownText(link.Mend);
  rows_->addWidget(Text(found), row, 2);
}

void TestRemindersWindow::LetOneCome() {
  const int64 when = context_.clock.Now() + ComesAfter;
  if (!FitsTime(when)) return;
  const auto moment = static_cast<int32>(when);
  const std::string why = context_.alerts.ShowAt(TestReminder(moment), {moment, false, {}});
  const std::string time =
      GetDateTimeString(moment, true, context_.zone, context_.settings.Time24Hour);
  announced_->setText(ShownText(why.empty() ? "A reminder comes " + time +
                                                  ", also when you close all windows before."
                                            : why));
}

}  // namespace kestrin
