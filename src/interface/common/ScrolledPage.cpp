#include "interface/common/ScrolledPage.h"

#include <QEvent>
#include <QScrollBar>
#include <algorithm>

namespace kestrin {

namespace {

constexpr int FewestLines = 5;

}  // namespace

ScrolledPage::ScrolledPage(QWidget* page) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setFocusPolicy(Qt::NoFocus);
  setWidget(page);
  // The tab's or window's own ground is behind it.
  viewport()->setAutoFillBackground(false);
  page->setAutoFillBackground(false);
}

QSize ScrolledPage::minimumSizeHint() const {
  const QSize page = widget()->minimumSizeHint().expandedTo(widget()->minimumSize());
  const int lowest = FewestLines * fontMetrics().lineSpacing();
  return {page.width() + verticalScrollBar()->sizeHint().width(), std::min(page.height(), lowest)};
}

/// Another rule shows other rows.
bool ScrolledPage::eventFilter(QObject* page, QEvent* event) {
  if (page == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
  return QScrollArea::eventFilter(page, event);
}

}  // namespace kestrin
