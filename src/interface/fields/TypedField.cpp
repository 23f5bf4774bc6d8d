#include "interface/fields/TypedField.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QStyle>
#include <utility>

#include "interface/common/ShownText.h"
#include "interface/fields/PassUndoOn.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

QColor Mixed(const QColor& a, const QColor& b, float share) {
  const float rest = 1 - share;
  return QColor::fromRgbF(a.redF() * rest + b.redF() * share,
                          a.greenF() * rest + b.greenF() * share,
                          a.blueF() * rest + b.blueF() * share);
}

}  // namespace

TypedField::TypedField(const char* objectName, Shower show, Taker take, QWidget* parent)
    : QLineEdit(parent), show_(std::move(show)), take_(std::move(take)) {
  setObjectName(objectName);
  PassUndoOn(*this);
  sign_ =
      addAction(style()->standardIcon(QStyle::SP_MessageBoxWarning), QLineEdit::TrailingPosition);
  sign_->setVisible(false);
  connect(this, &QLineEdit::textEdited, this, [this] { typed_ = true; });
}

void TypedField::LimitToEventText() {
  connect(this, &QLineEdit::textEdited, this, &TypedField::CutToLimit);
}

void TypedField::CutToLimit() {
  bool wasCut = false;
  const std::string fitting = FitText(text().toStdString(), &wasCut);
  if (!wasCut) {
    if (!isInvalid_) Complain({}, false);
    return;
  }
  const int cursor = cursorPosition();
  setText(QString::fromStdString(fitting));
  setCursorPosition(cursor);
  Complain(TextIsCut(), false);
}

void TypedField::ShowValue() {
  if (typed_) return;
  const QString value = show_();
  if (value == text()) return;
  setText(value);
  if (!hasFocus()) setCursorPosition(0);
}

bool TypedField::Commit() {
  if (!typed_) return true;
  if (text() == show_()) {
    Restore();
    return true;
  }
  typed_ = false;  // taking the value over may show it, or take the focus away
  const QString typed = text();
  const QString why = take_(typed);
  typed_ = !why.isEmpty();
  if (typed_ && text() != typed) setText(typed);
  Complain(why, typed_);
  if (typed_) return false;
  // Even as it stands there: from now on the change is the event's to take back.
  setText(show_());
  if (!hasFocus()) setCursorPosition(0);
  return true;
}

void TypedField::Restore() {
  if (!std::exchange(typed_, false)) return;
  Complain({}, false);
  ShowValue();
}

void TypedField::TypeAndCommit(const QString& text) {
  setText(text);
  typed_ = true;
  Commit();
}

void TypedField::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (Commit()) selectAll();
      break;
    case Qt::Key_Escape:
      if (typed_)
        Restore();
      else
        event->ignore();
      break;
    default:
      QLineEdit::keyPressEvent(event);
  }
}

void TypedField::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  if (isInvalid_) emit Complained(complaint_);
}

void TypedField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  if (event->reason() == Qt::PopupFocusReason) return;
  Commit();
  // Of what is too long for the field its beginning tells most.
  if (event->reason() != Qt::ActiveWindowFocusReason) setCursorPosition(0);
}

void TypedField::changeEvent(QEvent* event) {
  QLineEdit::changeEvent(event);
  if (event->type() == QEvent::EnabledChange && !isEnabled()) Restore();
  if (event->type() == QEvent::ApplicationPaletteChange && isInvalid_) MarkInvalid();
}

void TypedField::Complain(const QString& why, bool isInvalid) {
  if (isInvalid_ != isInvalid) {
    isInvalid_ = isInvalid;
    MarkInvalid();
  }
  if (complaint_ == why) return;
  complaint_ = why;
  sign_->setToolTip(why);
  setToolTip(why);
  setAccessibleDescription(why);
  emit Complained(why);
}

void TypedField::MarkInvalid() {
  sign_->setVisible(isInvalid_);
  QPalette marked;
  if (isInvalid_) {
    const QColor base = QGuiApplication::palette().color(QPalette::Base);
    marked.setColor(QPalette::Base, Mixed(base, Qt::red, base.lightness() < 128 ? 0.35F : 0.2F));
  }
  setPalette(marked);
}

QString TextIsCut() {
  return QString("A text holds at most %1 bytes; what was beyond is left out.").arg(TextLimit - 1);
}

QString QuotedText(const QString& typed) {
  constexpr qsizetype Longest = 40;
  QString text = ShownLine(typed.toStdString()).trimmed();
  if (text.size() > Longest) text = text.left(Longest) + u'…';
  return u'“' + text + u'”';
}

}  // namespace kestrin
