#include "interface/fields/ChoiceMenu.h"

#include <QStandardItemModel>
#include <utility>

namespace kestrin {

ChoiceMenu::ChoiceMenu(const char* objectName, const QString& accessibleName, Setter set,
                       QWidget* parent)
    : DropDown(parent) {
  setObjectName(objectName);
  // Screen readers are given the choice as the name of such a menu.
  setAccessibleName(accessibleName);
  setAccessibleDescription(accessibleName);
  setMaxVisibleItems(12);
  connect(this, &QComboBox::activated, this,
          [this, set = std::move(set)](int item) { set(itemData(item).toInt()); });
}

void ChoiceMenu::ShowValue(int32 value, const QString& labelOfOther) {
  int item = findData(value);
  if (otherItem_ >= 0 && item != otherItem_) {
    removeItem(std::exchange(otherItem_, -1));
    item = findData(value);
  }
  if (item < 0) {
    Add(value, labelOfOther);
    item = otherItem_ = count() - 1;
  }
  setCurrentIndex(item);
  if (hasTips_) setToolTip(itemData(item, Qt::ToolTipRole).toString());
}

void ChoiceMenu::SetTip(int32 value, const QString& tip) {
  hasTips_ = true;
  setItemData(findData(value), tip, Qt::ToolTipRole);
}

void ChoiceMenu::SetOffered(int32 value, bool offered) {
  auto* const items = qobject_cast<QStandardItemModel*>(model());
  if (const int item = findData(value); item >= 0) items->item(item)->setEnabled(offered);
}

}  // namespace kestrin
