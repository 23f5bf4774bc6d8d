#include "interface/alerts/AlertWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "interface/alerts/AlertCascade.h"
#include "interface/alerts/AlertIcon.h"
#include "interface/alerts/AlertText.h"
#include "interface/common/ShownText.h"

namespace kestrin {

namespace {

constexpr int NarrowestButton = 84;
/// What a window manager adds around a window, as far as one can tell before it is shown.
constexpr QSize FrameRoom(12, 36);

QString ButtonText(const std::string& label) {
  const QString text = WithoutMnemonic(ShownLine(label));
  return text.startsWith("No more ") ? "&" + text : text;
}

QString TitleOf(const AlertRequest& request) {
  return request.Title.empty() ? QStringLiteral("Kestrin") : ShownLine(request.Title);
}

}  // namespace

AlertWindow::AlertWindow(const AlertRequest& request, int place)
    : place_(place), isPrompt_(request.Role == AlertRole::Prompt) {
  setObjectName("alert");
  setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                 Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint);
  setAttribute(Qt::WA_ShowWithoutActivating, !isPrompt_);
  BuildFrame();
  ShowRequest(request);
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

void AlertWindow::BuildFrame() {
  icon_ = new QLabel;
  icon_->setObjectName("alertIcon");
  icon_->setAlignment(Qt::AlignTop);
  text_ = new AlertText;
  text_->setObjectName("alertText");
  auto* body = new QHBoxLayout;
  body->setSpacing(14);
  body->addWidget(icon_, 0, Qt::AlignTop);
  body->addWidget(text_, 1);
  buttonRow_ = new QHBoxLayout;
  buttonRow_->setSpacing(8);
  buttonRow_->addStretch(1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(16, 16, 16, 14);
  column->setSpacing(16);
  column->addLayout(body, 1);
  column->addLayout(buttonRow_);
}

void AlertWindow::Update(const AlertRequest& request) {
  ShowRequest(request);
  KeepOnScreen();
}

void AlertWindow::ShowRequest(const AlertRequest& request) {
  icon_->setPixmap(AlertIcon(request.Kind, *this));
  setWindowTitle(WindowTitle(TitleOf(request).toStdString()));
  text_->setPlainText(ShownText(request.Text));
  setAccessibleName(TitleOf(request));
  setAccessibleDescription(text_->toPlainText());
  harmlessButton_ = request.HarmlessButton;
  ShowButtons(request.Buttons.empty() ? std::vector<std::string>{"OK"} : request.Buttons);
  const auto defaultButton = static_cast<size_t>(
      std::clamp(request.DefaultButton, 0, static_cast<int>(buttons_.size()) - 1));
  buttons_[defaultButton]->setDefault(true);
  buttons_[defaultButton]->setFocus();
  FitSize();
}

void AlertWindow::ShowButtons(const std::vector<std::string>& labels) {
  if (labels == labels_) return;
  labels_ = labels;
  for (QPushButton* button : std::exchange(buttons_, {})) {
    button->disconnect(this);
    button->setObjectName(QString());
    button->hide();
    button->deleteLater();
  }
  int width = NarrowestButton;
  for (const std::string& label : labels) {
    const int which = static_cast<int>(buttons_.size());
    auto* button = new QPushButton(ButtonText(label));
    button->setObjectName(QString("alertButton%1").arg(which));
    connect(button, &QPushButton::clicked, this, [this, which] { Press(which); });
    buttonRow_->addWidget(button);
    buttons_.push_back(button);
    width = std::max(width, button->sizeHint().width());
  }
  for (QPushButton* button : buttons_) button->setMinimumWidth(width);
}

QRect AlertWindow::ScreenRect() const {
  const QScreen* on = isVisible() ? screen() : QGuiApplication::primaryScreen();
  return on->availableGeometry();
}

void AlertWindow::FitSize() {
  const QRect screen = ScreenRect();
  const QSize largest = AlertCascade::LargestAlert(screen) - FrameRoom;
  const int icon = icon_->sizeHint().height();
  const QMargins margins = layout()->contentsMargins();
  const QSize besideText(icon_->sizeHint().width() + 14 + margins.left() + margins.right(),
                         buttonRow_->sizeHint().height() + 16 + margins.top() + margins.bottom());
  text_->ShowText(text_->toPlainText(), largest - besideText, icon);
  layout()->activate();
  resize(layout()->totalSizeHint().boundedTo(largest));
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

void AlertWindow::keyPressEvent(QKeyEvent* event) {
  // The letter of a button's mnemonic works without Alt too.
  const bool isPlain = (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
  const QKeySequence mnemonic(Qt::ALT | static_cast<Qt::Key>(event->key()));
  for (QPushButton* button : buttons_)
    if (isPlain && button->shortcut() == mnemonic) return button->click();
  QDialog::keyPressEvent(event);
}

void AlertWindow::reject() { Press(harmlessButton_); }

void AlertWindow::Press(int which) {
  if (std::exchange(answered_, true)) return;
  hide();
  emit Pressed(which);
}

}  // namespace kestrin
