// What a window shows, on a screen that is too low for it.
#pragma once

#include <QScrollArea>

namespace kestrin {

/// Never narrower than the page, but as low as need be: then the page is scrolled.
class ScrolledPage final : public QScrollArea {
 public:
  explicit ScrolledPage(QWidget* page);

  QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* page, QEvent* event) override;
};

}  // namespace kestrin
