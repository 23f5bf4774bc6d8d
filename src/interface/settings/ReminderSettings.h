// The part of the settings window that is about reminders.
#pragma once

#include <QGroupBox>
#include <functional>
#include <string>
#include <vector>

#include "kestrin/Types.h"

class QFormLayout;

namespace kestrin {

class KestrinSettings;
struct Context;

/// Every change takes effect at once.
class ReminderSettings final : public QGroupBox {
  Q_OBJECT

 public:
  explicit ReminderSettings(Context& context, QWidget* parent = nullptr);

  /// Shows what the settings hold now. The caller holds the settings' Protect.
  void SettingsChanged();

 private:
  /// The index of an item is the setting's value; a value without an item shows `otherwise`.
  void AddMenu(QFormLayout& form, const char* objectName, const QString& label,
               const QStringList& items, int32& setting, int32 otherwise = -1);
  void AddTime(QFormLayout& form, const char* objectName, const QString& label, int32& setting);
  void AddVolume(QFormLayout& form);
  void AddCheckBox(QFormLayout& form, const char* objectName, const QString& label, bool& setting);
  void AddFile(QFormLayout& form);
  void ChooseFile();

  template <typename T, typename V>
  void Store(T& setting, V value);

  Context& context_;
  KestrinSettings& settings_;
  std::vector<std::function<void()>> show_;  ///< for each control: brings it in step
};

}  // namespace kestrin
