// The window that says what this program is.
#pragma once

#include "interface/common/SideWindow.h"

class QLayout;

namespace kestrin {

class AboutWindow final : public SideWindow {
  Q_OBJECT

 public:
  explicit AboutWindow(DocumentApp& application);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QLayout* MakeTexts();
};

}  // namespace kestrin
