#include "interface/sets/ElidedLabel.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace kestrin {

namespace {

constexpr int FewestCharacters = 12;

}  // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::SetText(const QString& text, const QString& ending) {
  if (text == text_ && ending == ending_) return;
  text_ = text;
  ending_ = ending;
  setAccessibleName(Text());
  ShowToolTip();
  updateGeometry();
  update();
}

QString ElidedLabel::ShownPart() const {
  const int room = width() - fontMetrics().horizontalAdvance(ending_);
  return fontMetrics().elidedText(
      fontMetrics().elidedText(text_, Qt::ElideRight, std::max(0, room)) + ending_, Qt::ElideRight,
      width());
}

void ElidedLabel::ShowToolTip() {
  setToolTip(ShownPart() == Text() ? QString() : Text().toHtmlEscaped());
}

QSize ElidedLabel::sizeHint() const {
  return {fontMetrics().horizontalAdvance(Text()) + 1, fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * FewestCharacters, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  style()->drawItemText(&painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                        ShownPart(), foregroundRole());
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  ShowToolTip();
}

}  // namespace kestrin
