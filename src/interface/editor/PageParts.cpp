#include "interface/editor/PageParts.h"

#include <QCheckBox>
#include <QLabel>
#include <QStyle>
#include <QVBoxLayout>

namespace kestrin {

QWidget* BuildSwitchedPage(QWidget& page, QCheckBox& box, const char* objectName) {
  box.setObjectName(objectName);
  const QStyle& style = *page.style();
  const int indent = style.pixelMetric(QStyle::PM_IndicatorWidth, nullptr, &box) +
                     style.pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, &box);
  auto* rest = new QWidget;
  auto* inner = new QVBoxLayout(rest);
  inner->setContentsMargins(indent, 0, 0, 0);
  auto* column = new QVBoxLayout(&page);
  column->addWidget(&box);
  column->addWidget(rest, 1);
  return rest;
}

void AddCaptioned(QWidget& column, const QString& caption, QWidget* content) {
  auto* label = new QLabel(caption);
  label->setBuddy(content);
  auto* layout = qobject_cast<QVBoxLayout*>(column.layout());
  layout->addWidget(label);
  layout->addWidget(content, 1);
}

}  // namespace kestrin
