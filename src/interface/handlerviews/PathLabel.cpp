#include "interface/handlerviews/PathLabel.h"

#include <QHelpEvent>
#include <QStyle>
#include <QStylePainter>
#include <QTextDocument>
#include <QToolTip>

namespace kestrin {

namespace {

constexpr int FewestLetters = 12;

}  // namespace

PathLabel::PathLabel(const char* objectName) {
  setObjectName(objectName);
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize PathLabel::minimumSizeHint() const {
  return {FewestLetters * fontMetrics().averageCharWidth(), QLabel::minimumSizeHint().height()};
}

void PathLabel::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
  painter.drawItemText(rect(), Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(), shown,
                       foregroundRole());
}

bool PathLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QLabel::event(event);
  const bool isCut = fontMetrics().horizontalAdvance(text()) > width();
  // Escaped, because a tool tip takes what looks like HTML for it.
  QToolTip::showText(dynamic_cast<QHelpEvent*>(event)->globalPos(),
                     isCut ? Qt::convertFromPlainText(text()) : QString(), this);
  return true;
}

}  // namespace kestrin
