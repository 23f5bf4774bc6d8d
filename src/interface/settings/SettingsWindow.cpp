#include "interface/settings/SettingsWindow.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <algorithm>

#include "core/events/Context.h"
#include "core/settings/KestrinSettings.h"
#include "interface/common/Frames.h"
#include "interface/common/HelpKey.h"
#include "interface/common/ScrolledPage.h"
#include "interface/fields/DropDown.h"
#include "interface/settings/ReminderSettings.h"
#include "interface/settings/SelectedSetsView.h"
#include "interface/settings/TestRemindersWindow.h"

namespace kestrin {

SettingsWindow::SettingsWindow(Context& context, DocumentApp& application)
    : SideWindow(application), settings_(context.settings), openTest_([&context, &application] {
        return new TestRemindersWindow(context, application);
      }) {
  setObjectName("settingsWindow");
  setWindowTitle("Kestrin settings");
  auto* page = new QWidget;
  auto* column = new QVBoxLayout(page);
  column->addWidget(MakeCheckBox("rememberDefaults", "Remember &window defaults",
                                 settings_.RememberWindowSetupAsDefault));
  auto* menus = new QFormLayout;
  menus->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  AddMenu(*menus, "deliverEvents", "&Deliver events from:",
          {"Open sets only", "Open sets and remembered sets", "Remembered sets only",
           "Remembered sets unless open", "Do not deliver events"},
          settings_.WhichEventsToDeliver);
  AddMenu(*menus, "openRemembered",
          "&Open remembered sets:", {"Always", "If no other sets are opened", "Don't open"},
          settings_.SelectedSetHandling);
  AddMenu(*menus, "withoutSet", "W&ithout a set, show:", {"The last used set", "A new set"},
          settings_.WhenNoSetIsOpen);
  column->addLayout(menus);
  column->addWidget(MakeCheckBox("clock24", "24-hour &clock", settings_.Time24Hour));
  reminders_ = new ReminderSettings(context);
  show_.emplace_back([this] { reminders_->SettingsChanged(); });
  column->addWidget(reminders_);
  column->addSpacing(style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing, nullptr, this));
  column->addLayout(MakeList(), 1);
  SettingsChanged();
  OpenHelpByKey(*this, context, [] { return "delivery"; });
  Open(page);
}

void SettingsWindow::Open(QWidget* page) {
  auto* around = new QVBoxLayout(this);
  around->setContentsMargins(0, 0, 0, 0);
  const int whole = page->minimumSizeHint().height(), room = LargestOn(*screen()).height();
  around->addWidget(whole > room ? new ScrolledPage(page) : page);
  const QSize smallest = minimumSizeHint().expandedTo({0, std::min(whole, room)});
  const AutoLock lock(settings_.Protect);
  setGeometry(GeometryOnScreen(settings_.SettingsWindowFrame, SettingsValues().SettingsWindowFrame,
                               smallest));
}

QCheckBox* SettingsWindow::MakeCheckBox(const char* objectName, const QString& label,
                                        bool& setting) {
  auto* box = new QCheckBox(label);
  box->setObjectName(objectName);
  show_.emplace_back([box, &setting] { box->setChecked(setting); });
  connect(box, &QCheckBox::clicked, this, [this, &setting](bool on) {
    const AutoLock lock(settings_.Protect);
    setting = on;
    settings_.Changed();
  });
  return box;
}

void SettingsWindow::AddMenu(QFormLayout& form, const char* objectName, const QString& label,
                             const QStringList& items, int32& setting) {
  auto* menu = new DropDown(objectName, items);
  form.addRow(label, menu);
  show_.emplace_back([menu, &setting] {
    menu->setCurrentIndex(setting >= 0 && setting < menu->count() ? setting : -1);
  });
  connect(menu, &QComboBox::activated, this, [this, &setting](int index) {
    const AutoLock lock(settings_.Protect);
    setting = index;
    settings_.Changed();
  });
}

QLayout* SettingsWindow::MakeList() {
  auto* label = new QLabel("Remembered &sets:");
  auto* forget = new QPushButton("&Forget selected");
  forget->setObjectName("forgetSelected");
  sets_ = new SelectedSetsView(settings_, *forget);
  sets_->setObjectName("rememberedSets");
  sets_->setAccessibleName("Remembered sets");
  label->setBuddy(sets_);
  show_.emplace_back([this] { sets_->UpdateListContents(); });
  connect(sets_, &SelectedSetsView::ForgetAsked, this, &SettingsWindow::ForgetSelected);
  connect(forget, &QPushButton::clicked, this, &SettingsWindow::ForgetSelected);
  auto* column = new QVBoxLayout;
  column->addWidget(label);
  column->addWidget(sets_, 1);
  auto* test = new QPushButton("T&est reminders…");
  test->setObjectName("testReminders");
  connect(test, &QPushButton::clicked, this, &SettingsWindow::TestReminders);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(forget);
  buttons->addStretch(1);
  buttons->addWidget(test);
  column->addLayout(buttons);
  return column;
}

void SettingsWindow::SettingsChanged() {
  const AutoLock lock(settings_.Protect);
  for (const auto& show : show_) show();
}

void SettingsWindow::ForgetSelected() {
  const AutoLock lock(settings_.Protect);
  sets_->ForgetSelected();
}

void SettingsWindow::TestReminders() {
  if (!test_ || test_->IsClosed()) test_ = openTest_();
  test_->Activate();
}

void SettingsWindow::Closing() {
  if (test_ && !test_->IsClosed()) test_->close();
  const AutoLock lock(settings_.Protect);
  if (!settings_.RememberWindowSetupAsDefault) return;
  settings_.SettingsWindowFrame = PlainFrameOf(*this);
  settings_.Changed();
}

}  // namespace kestrin
