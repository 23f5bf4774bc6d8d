#include "interface/alerts/AlertText.h"

#include <QStyle>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <cmath>

namespace kestrin {

namespace {

constexpr int NarrowestCharacters = 30, WidestCharacters = 64, WidestOfLong = 92;

/// The space the text takes when wrapped at `width`; measures no further than `height`.
QSizeF Wrapped(const QString& text, const QFont& font, qreal width, qreal height) {
  QSizeF taken;
  for (const QString& paragraph : text.split(u'\n')) {
    QTextLayout layout(paragraph, font);
    layout.setTextOption([] {
      QTextOption option;
      option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
      return option;
    }());
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width);
      taken.setWidth(std::max(taken.width(), line.naturalTextWidth()));
      taken.rheight() += std::ceil(line.height());
      if (taken.height() > height) break;
    }
    layout.endLayout();
    if (taken.height() > height) break;
  }
  return taken;
}

}  // namespace

AlertText::AlertText(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setTabChangesFocus(true);
  setFrameShape(QFrame::NoFrame);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  viewport()->setAutoFillBackground(false);
  document()->setDocumentMargin(0);
  document()->setUndoRedoEnabled(false);
}

void AlertText::ShowText(const QString& text, QSize largest, int lowest) {
  if (toPlainText() != text) setPlainText(text);
  const int character = fontMetrics().averageCharWidth();
  int widest = std::min(largest.width(), WidestCharacters * character);
  const int narrowest = std::min(widest, NarrowestCharacters * character);
  QSizeF taken = Wrapped(text, font(), widest, largest.height());
  if (taken.height() > largest.height() / 2.0) {  // rather wide than a column of a page's height
    widest = std::min(largest.width(), WidestOfLong * character);
    taken = Wrapped(text, font(), widest, largest.height());
  }
  const bool scrolls = taken.height() > largest.height();
  const int bar = scrolls ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
  if (scrolls) taken.setWidth(widest);
  scrolls_ = scrolls;

  const int line = std::max(1, fontMetrics().lineSpacing());
  const int height =
      scrolls ? largest.height() / line * line : static_cast<int>(std::ceil(taken.height()));
  const int above = std::max(0, (lowest - height) / 2);
  setViewportMargins(0, above, 0, 0);
  // One pixel more than measured: a line that fits exactly must not be wrapped again.
  const int width = static_cast<int>(std::ceil(taken.width())) + 1;
  hint_ = {std::clamp(width, narrowest, widest + 1) + bar, std::max(height, lowest) + 1};
  ChooseScrollBar();
  updateGeometry();
}

void AlertText::TakeAnyRoom() {
  anyRoom_ = true;
  const int line = fontMetrics().lineSpacing();
  hint_ = {NarrowestCharacters * fontMetrics().averageCharWidth(), 5 * line};
  setMinimumHeight(3 * line);
  ChooseScrollBar();
}

/// The widget asks for a few pixels more than the text takes: where all of it fits there is no bar.
void AlertText::ChooseScrollBar() {
  if (anyRoom_) return setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  const bool smaller = height() + 2 < hint_.height() || width() + 2 < hint_.width();
  setVerticalScrollBarPolicy(scrolls_                 ? Qt::ScrollBarAlwaysOn
                             : isVisible() && smaller ? Qt::ScrollBarAsNeeded
                                                      : Qt::ScrollBarAlwaysOff);
}

void AlertText::resizeEvent(QResizeEvent* event) {
  QPlainTextEdit::resizeEvent(event);
  ChooseScrollBar();
}

QSize AlertText::minimumSizeHint() const {
  const int line = fontMetrics().lineSpacing();
  return {std::min(hint_.width(), 12 * line), std::min(hint_.height(), 3 * line)};
}

}  // namespace kestrin
