// A pop-up menu whose choice holds at once.
#pragma once

#include <QComboBox>

namespace kestrin {

/// The wheel turns it only while it has the focus: a choice that holds at once must not change
/// because the pointer lay there.
class DropDown : public QComboBox {
  Q_OBJECT

 public:
  explicit DropDown(QWidget* parent);
  DropDown(const char* objectName, const QStringList& items);

 protected:
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace kestrin
