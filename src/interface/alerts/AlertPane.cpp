#include "interface/alerts/AlertPane.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "core/events/Context.h"
#include "core/loop/AlertDesk.h"
#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"
#include "interface/alerts/AlertIcon.h"
#include "interface/alerts/AlertText.h"
#include "interface/alerts/LaterMenu.h"
#include "interface/alerts/OtherTimeLine.h"
#include "interface/common/ShownText.h"

namespace kestrin {

namespace {

constexpr int NarrowestButton = 84;
constexpr int BetweenIconAndText = 14;
constexpr int64 StandsLong = 60;  ///< after so many seconds "now" needs a time of day

bool IsQuestion(const AlertRequest& request) { return request.Role == AlertRole::Question; }

/// Reminders take few letters, so that none is pressed by accident; a prompt answers what the
/// person just did.
QString ButtonText(const std::string& label, AlertRole role) {
  const QString text = WithoutMnemonic(ShownLine(label));
  if (role == AlertRole::Prompt) return text == "Don't save" ? "Do&n't save" : "&" + text;
  const bool isQuestion = role == AlertRole::Question;
  const bool hasLetter = text.startsWith("No more ") || (isQuestion && text == "Ok");
  return hasLetter ? "&" + text : text;
}

QLabel* PlainLabel(const char* objectName) {
  auto* label = new QLabel;
  label->setObjectName(objectName);
  label->setTextFormat(Qt::PlainText);
  label->hide();
  return label;
}

}  // namespace

QString AlertTitle(const AlertRequest& request) {
  const QString title =
      request.Title.empty() ? QStringLiteral("Kestrin") : ShownLine(request.Title);
  const QString name = ShownLine(request.Face.EventName);
  return name.isEmpty() ? title : name + " – " + title;
}

AlertPane::AlertPane(const Context* context, QWidget* parent) : QWidget(parent), context_(context) {
  setObjectName("alertPane");
  Build();
  dueTimer_.setSingleShot(true);
  connect(&dueTimer_, &QTimer::timeout, this, [this] {
    ShowDue();
    emit Resized();
  });
}

void AlertPane::Build() {
  icon_ = new QLabel;
  icon_->setObjectName("alertIcon");
  due_ = PlainLabel("alertDue");
  text_ = new AlertText;
  text_->setObjectName("alertText");
  auto* words = new QVBoxLayout;
  words->setSpacing(6);
  words->addWidget(due_);
  words->addWidget(text_, 1);
  auto* body = new QHBoxLayout;
  body->setSpacing(BetweenIconAndText);
  body->addWidget(icon_, 0, Qt::AlignTop);
  body->addLayout(words, 1);
  comesAgain_ = PlainLabel("alertComesAgain");
  comesAgain_->setAlignment(Qt::AlignRight);
  complaint_ = PlainLabel("alertComplaint");
  complaint_->setWordWrap(true);
  openEvent_ = new QPushButton("Open &event");
  openEvent_->setObjectName("openEvent");
  later_ = new LaterButton("&Later");
  later_->setObjectName("later");
  connect(openEvent_, &QPushButton::clicked, this, &AlertPane::OpenEventWanted);
  connect(later_, &QPushButton::clicked, this, &AlertPane::OpenLaterMenu);
  buttonRow_ = new QHBoxLayout;
  buttonRow_->setSpacing(8);
  buttonRow_->addWidget(openEvent_);
  buttonRow_->addWidget(later_);
  buttonRow_->addSpacing(16);
  buttonRow_->addStretch(1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(10);
  column->addLayout(body, 1);
  column->addWidget(complaint_);
  if (context_) {
    otherTime_ = new OtherTimeLine(*context_);
    otherTime_->hide();
    column->addWidget(otherTime_);
    connect(otherTime_, &OtherTimeLine::Chosen, this, &AlertPane::PutOff);
    connect(otherTime_, &OtherTimeLine::Closed, this, [this] {
      later_->setFocus();
      emit Resized();
    });
  }
  column->addWidget(comesAgain_);
  column->addLayout(buttonRow_);
}

void AlertPane::ShowRequest(const AlertRequest& request, bool mayOpen) {
  request_ = request;
  icon_->setPixmap(AlertPicture(request, *this));
  text_->setPlainText(ShownText(request.Text));
  complaint_->hide();
  if (otherTime_) otherTime_->hide();
  ShowButtons(request.Buttons.empty() ? std::vector<std::string>{"OK"} : request.Buttons);
  const auto defaultButton = static_cast<size_t>(
      std::clamp(request.DefaultButton, 0, static_cast<int>(buttons_.size()) - 1));
  default_ = buttons_[defaultButton];
  default_->setDefault(true);
  openEvent_->setVisible(mayOpen);
  ShowLater();
  ShowDue();
  ShowComesAgain();
  if (shownBefore_) shown_.start();
  shownBefore_ = true;
}

void AlertPane::ShowButtons(const std::vector<std::string>& labels) {
  if (labels == labels_ && request_.Role == lettersOf_) return;
  labels_ = labels;
  lettersOf_ = request_.Role;
  for (QPushButton* button : std::exchange(buttons_, {})) {
    button->disconnect(this);
    button->setObjectName(QString());
    button->hide();
    button->deleteLater();
  }
  int width = NarrowestButton, together = 0;
  if (inPlace_) width = QPushButton("No more prewarnings").sizeHint().width();
  for (const std::string& label : labels) {
    const int which = static_cast<int>(buttons_.size());
    auto* button = new QPushButton(ButtonText(label, lettersOf_));
    button->setObjectName(QString("alertButton%1").arg(which));
    button->installEventFilter(this);
    connect(button, &QPushButton::clicked, this, [this, which] { Press(which); });
    buttonRow_->addWidget(button);
    button->show();
    buttons_.push_back(button);
    width = std::max(width, button->sizeHint().width());
    together += button->sizeHint().width();
  }
  // Equally wide, but for labels so long that this would take a window's width.
  const bool equal = inPlace_ || width * static_cast<int>(labels.size()) < together * 2;
  for (QPushButton* button : buttons_) button->setMinimumWidth(equal ? width : NarrowestButton);
}

/// Only where the text does not say it, and only once "now" is over.
void AlertPane::ShowDue() {
  dueTimer_.stop();
  due_->hide();
  if (!context_ || request_.Occurrence <= 0 || request_.NamesTime || !request_.IsReminder()) return;
  const int64 now = context_->clock.Now();
  const int64 wait = request_.Occurrence + StandsLong - now;
  if (wait > 0) {
    dueTimer_.start(std::chrono::seconds(std::min<int64>(wait, StandsLong)));
    return;
  }
  const bool use24 = LaterTermsNow(*context_, 0).use24Hours;
  const std::string when =
      request_.OccursAtTime ? MomentInWords(request_.Occurrence, now, context_->zone, use24)
                            : GetDateTimeString(request_.Occurrence, false, context_->zone, use24);
  due_->setText("Due " + QString::fromStdString(when));
  due_->show();
}

void AlertPane::ShowComesAgain() {
  comesAgain_->setVisible(context_ && request_.ComesAgain != 0);
  if (!context_ || request_.ComesAgain == 0) return;
  const int64 now = context_->clock.Now();
  const bool use24 = LaterTermsNow(*context_, 0).use24Hours;
  const Zone& zone = context_->zone;
  const bool isToday =
      MidnightOf(zone.AtMoment(now)) == MidnightOf(zone.AtMoment(request_.ComesAgain));
  const std::string when =
      isToday ? "at " + GetTimeOfDayText(GetSecondsIntoDay(request_.ComesAgain, zone), use24)
              : MomentInWords(request_.ComesAgain, now, zone, use24);
  comesAgain_->setText("Comes again " + QString::fromStdString(when));
}

void AlertPane::ShowLater() {
  later_->setVisible(context_ && request_.IsReminder() && context_->alerts.CanPutOff());
}

void AlertPane::OpenLaterMenu() {
  menu_ = new LaterMenu(*context_, request_.Begins, true, later_);
  connect(menu_, &LaterMenu::Chosen, this, &AlertPane::PutOff);
  connect(menu_, &LaterMenu::OtherWanted, this, &AlertPane::OpenOtherTime);
  menu_->OpenAt(*later_);
}

void AlertPane::OpenOtherTime() {
  otherTime_->Open(request_.Begins);
  emit Resized();
}

void AlertPane::Complain(const std::string& why) {
  complaint_->setText(ShownText(why));
  complaint_->show();
  emit Resized();
}

void AlertPane::FitText(QSize largest) {
  const int icon = icon_->sizeHint().height();
  text_->ShowText(text_->toPlainText(), largest, icon);
  layout()->activate();
  const QSize beside = layout()->totalSizeHint() - text_->sizeHint();
  const int width = largest.width() - icon_->sizeHint().width() - BetweenIconAndText;
  text_->ShowText(text_->toPlainText(), {width, largest.height() - beside.height()}, icon);
}

void AlertPane::KeepButtonsInPlace() {
  inPlace_ = true;
  text_->TakeAnyRoom();
}

QString AlertPane::FocusedLabel() const {
  const auto* button = qobject_cast<QPushButton*>(window()->focusWidget());
  return button && isAncestorOf(button) ? button->text().remove('&') : QString();
}

void AlertPane::FocusLabel(const QString& label) {
  if (label.isEmpty()) return;
  std::vector<QPushButton*> candidates = {openEvent_, later_};
  if (!IsQuestion(request_)) candidates.insert(candidates.end(), buttons_.begin(), buttons_.end());
  const auto same = std::find_if(candidates.begin(), candidates.end(), [&](QPushButton* button) {
    return button->isVisibleTo(this) &&
           button->text().remove('&').compare(label, Qt::CaseInsensitive) == 0;
  });
  (same == candidates.end() ? default_ : *same)->setFocus();
}

bool AlertPane::PressByLetter(const QKeyEvent& event) {
  const bool isPlain = (event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
  if (!isPlain || event.isAutoRepeat() || IsQuestion(request_)) return false;
  const QKeySequence mnemonic(Qt::ALT | static_cast<Qt::Key>(event.key()));
  for (QPushButton* button : buttons_)
    if (button->shortcut() == mnemonic) {
      button->click();
      return true;
    }
  return false;
}

bool AlertPane::IsBusy() const {
  if (menu_ || (otherTime_ && otherTime_->isVisible())) return true;
  return std::any_of(buttons_.begin(), buttons_.end(),
                     [](const QPushButton* button) { return button->isDown(); });
}

QString AlertPane::Text() const { return text_->toPlainText(); }

/// A key that is held down answers one alert, not all that follow; arrows do not lead to what a
/// question carries out.
bool AlertPane::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::MouseButtonDblClick) return inPlace_;
  if (event->type() != QEvent::KeyPress) return false;
  const auto& key = *static_cast<QKeyEvent*>(event);
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      return key.isAutoRepeat();
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
      return IsQuestion(request_);
    default:
      return false;
  }
}

/// The second half of a double click belongs to what stood there before.
void AlertPane::Press(int which) {
  const bool carriesOut = IsQuestion(request_) && which != request_.HarmlessButton;
  if (carriesOut && shown_.isValid() && shown_.elapsed() < QApplication::doubleClickInterval())
    return;
  emit Pressed(which);
}

}  // namespace kestrin
