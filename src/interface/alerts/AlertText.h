// The text of an alert: plain, wrapped, to be selected, and scrolled when it is long.
#pragma once

#include <QPlainTextEdit>

namespace kestrin {

class AlertText final : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit AlertText(QWidget* parent = nullptr);

  /// Shows the text in the space it needs, `largest` at most; a text lower than `lowest` pixels
  /// stands in the middle of that height.
  void ShowText(const QString& text, QSize largest, int lowest);

  /// From then on no room is reckoned: what does not fit into what there is, scrolls.
  void TakeAnyRoom();

  QSize sizeHint() const override { return hint_; }
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void ChooseScrollBar();

  QSize hint_;
  bool scrolls_ = false;
  bool anyRoom_ = false;
};

}  // namespace kestrin
