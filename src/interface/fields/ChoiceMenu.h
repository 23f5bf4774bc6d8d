// A pop-up menu of numbers that stand for something.
#pragma once

#include <functional>

#include "interface/fields/DropDown.h"
#include "kestrin/Types.h"

namespace kestrin {

/// What a person chooses is handed over at once, a choice of the same again too.
class ChoiceMenu final : public DropDown {
  Q_OBJECT

 public:
  using Setter = std::function<void(int32 value)>;

  ChoiceMenu(const char* objectName, const QString& accessibleName, Setter set,
             QWidget* parent = nullptr);

  void Add(int32 value, const QString& label) { addItem(label, value); }
  /// What the value's item, and the menu while it shows it, says beside its label.
  void SetTip(int32 value, const QString& tip);
  /// Shows the value; one that is not on offer gets an item of its own while it is shown.
  void ShowValue(int32 value, const QString& labelOfOther);
  void SetOffered(int32 value, bool offered);

 private:
  int otherItem_ = -1;
  bool hasTips_ = false;
};

}  // namespace kestrin
