// The window of the application's settings.
#pragma once

#include <QPointer>
#include <functional>
#include <vector>

#include "interface/common/SideWindow.h"
#include "kestrin/Types.h"

class QCheckBox;
class QFormLayout;

namespace kestrin {

class KestrinSettings;
class ReminderSettings;
struct Context;
class SelectedSetsView;
class TestRemindersWindow;

/// Every change takes effect at once. Opens where the settings say and leaves its place there when
/// window setups are remembered.
class SettingsWindow final : public SideWindow {
  Q_OBJECT

 public:
  SettingsWindow(Context& context, DocumentApp& application);

  /// Shows what the settings hold now.
  void SettingsChanged();

 protected:
  void Closing() override;

 private:
  QCheckBox* MakeCheckBox(const char* objectName, const QString& label, bool& setting);
  /// The index of an item is the setting's value; a value without an item shows none.
  void AddMenu(QFormLayout& form, const char* objectName, const QString& label,
               const QStringList& items, int32& setting);
  QLayout* MakeList();
  void Open(QWidget* page);
  void ForgetSelected();
  void TestReminders();

  KestrinSettings& settings_;
  std::function<TestRemindersWindow*()> openTest_;
  QPointer<TestRemindersWindow> test_;       ///< goes with this window
  std::vector<std::function<void()>> show_;  ///< for each control: brings it in step
  ReminderSettings* reminders_ = nullptr;
  SelectedSetsView* sets_ = nullptr;
};

}  // namespace kestrin
