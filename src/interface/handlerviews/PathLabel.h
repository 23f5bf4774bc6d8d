// One line with a path that is cut in its middle where there is no room for it.
#pragma once

#include <QLabel>

namespace kestrin {

/// What is cut shows whole in a tool tip.
class PathLabel final : public QLabel {
  Q_OBJECT

 public:
  explicit PathLabel(const char* objectName);

  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
};

}  // namespace kestrin
