#include "interface/alerts/OtherTimeLine.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "core/events/Context.h"
#include "interface/alerts/LaterMenu.h"

namespace kestrin {

OtherTimeLine::OtherTimeLine(const Context& context, QWidget* parent)
    : QWidget(parent), context_(context), line_(new QLineEdit), understood_(new QLabel) {
  setObjectName("otherTime");
  line_->setObjectName("otherTimeText");
  line_->setAccessibleName("Remind me again");
  line_->setPlaceholderText("14:30, tomorrow, Friday, 3 pm …");
  line_->installEventFilter(this);
  understood_->setObjectName("otherTimeUnderstood");
  understood_->setTextFormat(Qt::PlainText);
  auto* label = new QLabel("&Remind me again:");
  label->setBuddy(line_);
  auto* row = new QHBoxLayout;
  row->addWidget(label);
  row->addWidget(line_, 1);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  column->addLayout(row);
  column->addWidget(understood_);
  connect(line_, &QLineEdit::textEdited, this, &OtherTimeLine::ShowUnderstood);
}

void OtherTimeLine::Open(int32 begins) {
  begins_ = begins;
  line_->clear();
  ShowUnderstood();
  show();
  line_->setFocus(Qt::ShortcutFocusReason);
}

TypedMoment OtherTimeLine::Read() const {
  return ReadTypedMoment(line_->text().trimmed().toStdString(), context_.clock.Now(), context_.zone,
                         LaterTermsNow(context_, begins_));
}

void OtherTimeLine::ShowUnderstood() {
  QString text = "Type when, then press Return.";
  if (!line_->text().trimmed().isEmpty()) {
    const TypedMoment typed = Read();
    text = QString::fromStdString(
        typed.fault.empty()
            ? "Comes back " + MomentInWords(typed.when.moment, context_.clock.Now(), context_.zone,
                                            LaterTermsNow(context_, 0).use24Hours)
            : typed.fault);
  }
  understood_->setText(text);
  line_->setAccessibleDescription(text);
}

void OtherTimeLine::Take() {
  const TypedMoment typed = Read();
  ShowUnderstood();
  if (typed.fault.empty())
    emit Chosen(typed.when);
  else
    line_->selectAll();
}

bool OtherTimeLine::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key == Qt::Key_Return || key == Qt::Key_Enter) {
    Take();
    return true;
  }
  if (key != Qt::Key_Escape) return false;
  hide();
  emit Closed();
  return true;
}

}  // namespace kestrin
