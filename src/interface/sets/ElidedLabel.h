// A line of text that gives way where it does not fit.
#pragma once

#include <QWidget>

namespace kestrin {

/// Shows a text and, after it, an ending that is never cut: where there is too little room, the
/// end of the text becomes an ellipsis and the tool tip tells the whole.
class ElidedLabel final : public QWidget {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  void SetText(const QString& text, const QString& ending = QString());
  QString Text() const { return text_ + ending_; }
  /// What stands on the screen.
  QString ShownPart() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void ShowToolTip();

  QString text_, ending_;
};

}  // namespace kestrin
