#include "interface/alerts/AlertAccessible.h"

#include <QAccessibleWidget>

#include "interface/alerts/AlertWindow.h"

namespace kestrin {

namespace {

QAccessibleInterface* MakeAlertInterface(const QString& className, QObject* object) {
  if (className != AlertWindow::staticMetaObject.className()) return nullptr;
  return new QAccessibleWidget(static_cast<AlertWindow*>(object), QAccessible::AlertMessage);
}

}  // namespace

void InstallAlertAccessibility() { QAccessible::installFactory(MakeAlertInterface); }

}  // namespace kestrin
