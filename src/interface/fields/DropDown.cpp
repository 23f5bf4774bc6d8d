#include "interface/fields/DropDown.h"

#include <QWheelEvent>

namespace kestrin {

DropDown::DropDown(QWidget* parent) : QComboBox(parent) { setFocusPolicy(Qt::StrongFocus); }

DropDown::DropDown(const char* objectName, const QStringList& items) : DropDown(nullptr) {
  setObjectName(objectName);
  addItems(items);
}

void DropDown::wheelEvent(QWheelEvent* event) {
  if (hasFocus())
    QComboBox::wheelEvent(event);
  else
    event->ignore();
}

}  // namespace kestrin
