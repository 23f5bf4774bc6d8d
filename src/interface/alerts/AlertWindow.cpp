#include "interface/alerts/AlertWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "interface/alerts/AlertCascade.h"
#include "interface/alerts/AlertPane.h"
#include "interface/alerts/KeyGuard.h"
#include "interface/common/HelpKey.h"
#include "interface/common/ShownText.h"
#include "interface/common/Wayland.h"

namespace kestrin {

namespace {

/// What a window manager adds around a window, as far as one can tell before it is shown.
constexpr QSize FrameRoom(12, 36);

}  // namespace

AlertWindow::AlertWindow(const Context* context, const AlertRequest& request, int place,
                         bool mayOpen)
    : place_(place),
      isPrompt_(request.Role == AlertRole::Prompt),
      pane_(new AlertPane(context)),
      guard_(new KeyGuard(*this)) {
  setObjectName("alert");
  setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                 Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint);
  setAttribute(Qt::WA_ShowWithoutActivating, !isPrompt_);
  if (isPrompt_) guard_->OpenForGood();
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(16, 16, 16, 14);
  column->addWidget(pane_);
  connect(pane_, &AlertPane::Pressed, this, &AlertWindow::Press);
  connect(pane_, &AlertPane::PutOff, this, &AlertWindow::PutOff);
  connect(pane_, &AlertPane::OpenEventWanted, this, &AlertWindow::OpenEventWanted);
  connect(pane_, &AlertPane::Resized, this, [this] {
    FitSize();
    KeepOnScreen();
  });
  if (context) OpenHelpByKey(*this, *context, [] { return "alerts"; });
  ShowRequest(request, mayOpen);
  MoveToPlace();
}

void AlertWindow::MoveToPlace() {
  const QWidget* over = QApplication::activeWindow();
  if (isPrompt_ && over) {
    QRect centred(QPoint(), size());
    centred.moveCenter(over->geometry().center());
    move(centred.topLeft());
    if (over->screen()->availableGeometry().contains(centred)) return;
  }
  move(AlertCascade::TopLeft(place_, ScreenRect()));
}

void AlertWindow::Update(const AlertRequest& request, bool mayOpen) {
  ShowRequest(request, mayOpen);
  KeepOnScreen();
}

void AlertWindow::ShowRequest(const AlertRequest& request, bool mayOpen) {
  pane_->ShowRequest(request, mayOpen);
  const QString title = AlertTitle(request);
  setWindowTitle(WindowTitle(title.toStdString()));
  setAccessibleName(title);
  setAccessibleDescription(pane_->Text());
  harmlessButton_ = request.HarmlessButton;
  pane_->DefaultButton()->setFocus();
  FitSize();
}

QRect AlertWindow::ScreenRect() const {
  const QScreen* on = isVisible() ? screen() : QGuiApplication::primaryScreen();
  return on->availableGeometry();
}

void AlertWindow::FitSize() {
  const QSize largest = AlertCascade::LargestAlert(ScreenRect()) - FrameRoom;
  const QMargins margins = layout()->contentsMargins();
  pane_->FitText(largest.shrunkBy(margins));
  layout()->activate();
  const QSize size = layout()->totalSizeHint().boundedTo(largest);
  // A tiling compositor lets only what has one size float.
  if (IsOnWayland()) setFixedSize(size);
  resize(size);
}

void AlertWindow::KeepOnScreen() {
  const QRect screen = ScreenRect();
  if (screen.contains(frameGeometry())) return;
  if (!QRect(QPoint(), AlertCascade::LargestAlert(screen)).contains(rect())) FitSize();
  move(AlertCascade::TopLeft(place_, screen));
}

void AlertWindow::Announce() {
  if (!isVisible()) show();
  if (isPrompt_) Raise();
  QAccessibleEvent event(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

void AlertWindow::Raise() {
  raise();
  activateWindow();
}

void AlertWindow::Complain(const std::string& why) { pane_->Complain(why); }

bool AlertWindow::IsBusy() const { return isActiveWindow() || pane_->IsBusy(); }

void AlertWindow::keyPressEvent(QKeyEvent* event) {
  if (event->isAutoRepeat() || pane_->PressByLetter(*event)) return;
  QDialog::keyPressEvent(event);
}

void AlertWindow::reject() { Press(harmlessButton_); }

void AlertWindow::Press(int which) {
  hide();
  emit Pressed(which);
}

}  // namespace kestrin
