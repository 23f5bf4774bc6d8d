#include "interface/settings/ReminderSettings.h"

#include <QCheckBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

#include "core/events/Context.h"
#include "core/settings/KestrinSettings.h"
#include "interface/common/Wayland.h"
#include "interface/fields/DropDown.h"
#include "interface/fields/TimeField.h"

namespace kestrin {

template <typename T, typename V>
void ReminderSettings::Store(T& setting, V value) {
  const AutoLock lock(settings_.Protect);
  setting = value;
  settings_.Changed();
}

ReminderSettings::ReminderSettings(Context& context, QWidget* parent)
    : QGroupBox("Reminders", parent), context_(context), settings_(context.settings) {
  setObjectName("reminderSettings");
  auto* form = new QFormLayout(this);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  AddMenu(*form, "showRemindersAs", "Show &reminders as:", {"Windows", "Notifications", "Both"},
          settings_.ShowRemindersAs, FacesChosen(-1, !IsOnWayland()));
  QStringList boxes = {"Always as boxes", "Always in one window"};
  for (int most = 2; most <= 6; ++most) boxes += QString("Up to %1 as boxes").arg(most);
  AddMenu(*form, "reminderBoxes", "Show &them:", boxes, settings_.ReminderBoxes);
  AddTime(*form, "eveningTime", "The e&vening is at:", settings_.EveningTime);
  AddTime(*form, "morningTime", "The &morning is at:", settings_.MorningTime);
  AddMenu(*form, "reminderSound", "So&und:", {"The desktop's own", "A file", "None"},
          settings_.ReminderSound);
  AddFile(*form);
  AddVolume(*form);
  AddCheckBox(*form, "soundUntilAnswered", "Sound until &answered", settings_.SoundUntilAnswered);
  AddCheckBox(*form, "nagSoundUntilAnswered", "&Nags sound until answered",
              settings_.NagSoundUntilAnswered);
}

void ReminderSettings::SettingsChanged() {
  for (const auto& show : show_) show();
}

void ReminderSettings::AddMenu(QFormLayout& form, const char* objectName, const QString& label,
                               const QStringList& items, int32& setting, int32 otherwise) {
  auto* menu = new DropDown(objectName, items);
  form.addRow(label, menu);
  show_.emplace_back([menu, &setting, otherwise] {
    menu->setCurrentIndex(setting >= 0 && setting < menu->count() ? setting : otherwise);
  });
  connect(menu, &QComboBox::activated, this, [this, &setting](int index) {
    Store(setting, index);
    const bool lacksFile = &setting == &settings_.ReminderSound && index == FileSound &&
                           settings_.ReminderSoundFile.empty();
    if (lacksFile) ChooseFile();
  });
}

void ReminderSettings::AddTime(QFormLayout& form, const char* objectName, const QString& label,
                               int32& setting) {
  auto* field = new TimeField(
      objectName, context_, [&setting] { return setting; },
      [this, &setting](int32 seconds) {
        Store(setting, seconds);
        return true;
      });
  form.addRow(label, field);
  show_.emplace_back([field] { field->ShowValue(); });
}

void ReminderSettings::AddVolume(QFormLayout& form) {
  auto* slider = new QSlider(Qt::Horizontal);
  slider->setObjectName("reminderVolume");
  slider->setRange(1, 100);
  slider->setPageStep(10);
  form.addRow("Vo&lume:", slider);
  show_.emplace_back([this, slider] {
    const QSignalBlocker quiet(slider);
    slider->setValue(settings_.ReminderVolume);
    slider->setEnabled(settings_.ReminderSound != NoSound);
  });
  connect(slider, &QSlider::valueChanged, this,
          [this](int percent) { Store(settings_.ReminderVolume, percent); });
}

void ReminderSettings::AddCheckBox(QFormLayout& form, const char* objectName, const QString& label,
                                   bool& setting) {
  auto* box = new QCheckBox(label);
  box->setObjectName(objectName);
  form.addRow("", box);
  show_.emplace_back([this, box, &setting] {
    box->setChecked(setting);
    box->setEnabled(settings_.ReminderSound != NoSound);
  });
  connect(box, &QCheckBox::clicked, this, [this, &setting](bool on) { Store(setting, on); });
}

void ReminderSettings::AddFile(QFormLayout& form) {
  auto* name = new QLabel;
  name->setTextFormat(Qt::PlainText);
  auto* choose = new QPushButton("C&hoose…");
  choose->setObjectName("chooseSound");
  auto* row = new QHBoxLayout;
  row->addWidget(name, 1);
  row->addWidget(choose);
  form.addRow("", row);
  connect(choose, &QPushButton::clicked, this, &ReminderSettings::ChooseFile);
  show_.emplace_back([this, row, name] {
    const std::string& file = settings_.ReminderSoundFile;
    const QString leaf = QFileInfo(QFile::decodeName(file.c_str())).fileName();
    name->setText(file.empty() ? "No file is chosen" : leaf);
    name->setToolTip(QFile::decodeName(file.c_str()));
    const bool isFile = settings_.ReminderSound == FileSound;
    for (int i = 0; i < row->count(); ++i) row->itemAt(i)->widget()->setVisible(isFile);
  });
}

void ReminderSettings::ChooseFile() {
  auto* panel = new QFileDialog(this, "Choose a sound");
  panel->setObjectName("soundPanel");
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setFileMode(QFileDialog::ExistingFile);
  panel->setNameFilters({"Sounds (*.oga *.ogg *.wav)", "All files (*)"});
  if (QFileInfo::exists("/usr/share/sounds")) panel->setDirectory("/usr/share/sounds");
  connect(panel, &QFileDialog::fileSelected, this, [this](const QString& file) {
    Store(settings_.ReminderSoundFile, QFile::encodeName(file).toStdString());
  });
  panel->open();
}

}  // namespace kestrin
