#include "interface/common/SideWindow.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <utility>

#include "core/app/DocumentApp.h"
#include "interface/common/Frames.h"

namespace kestrin {

SideWindow::SideWindow(DocumentApp& application) : application_(&application) {
  setAttribute(Qt::WA_DeleteOnClose);
  application.RegisterWindow();
}

SideWindow::~SideWindow() { GiveBack(); }

void SideWindow::Activate() { BringToFront(*this); }

void SideWindow::GiveBack() {
  if (DocumentApp* application = std::exchange(application_, nullptr))
    application->UnregisterWindow();
}

void SideWindow::closeEvent(QCloseEvent*) {
  if (application_) Closing();
  GiveBack();
}

void SideWindow::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Cancel) ||
      event->keyCombination() == QKeyCombination(Qt::CTRL, Qt::Key_W))
    close();
  else
    QWidget::keyPressEvent(event);
}

}  // namespace kestrin
