#include "interface/fields/WrappingTextView.h"

#include <QFocusEvent>
#include <QMimeData>
#include <QTextDocument>
#include <QTimerEvent>
#include <algorithm>
#include <utility>

#include "interface/common/ShownText.h"
#include "interface/fields/PassUndoOn.h"
#include "interface/fields/TypedField.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

constexpr int FewestLines = 2;
constexpr int StoreAfter = 2000;  // ms; a crash takes no more than that

/// The longest beginning of `text`, in characters, that takes at most `room` bytes.
qsizetype FittingLength(const QString& text, size_t room) {
  std::string bytes = text.toStdString();
  if (bytes.size() <= room) return text.size();
  while (room > 0 && (static_cast<unsigned char>(bytes[room]) & 0xC0) == 0x80) --room;
  bytes.resize(room);
  return QString::fromStdString(bytes).size();
}

}  // namespace

WrappingTextView::WrappingTextView(const char* objectName, const QString& accessibleName,
                                   QWidget* parent)
    : QPlainTextEdit(parent) {
  setObjectName(objectName);
  setAccessibleName(accessibleName);
  setTabChangesFocus(true);
  PassUndoOn(*this);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  connect(document(), &QTextDocument::contentsChange, this, [this](int from, int, int added) {
    changedFrom_ = from;
    changedTo_ = from + added;
  });
  connect(this, &QPlainTextEdit::textChanged, this, &WrappingTextView::NoteEdit);
}

QSize WrappingTextView::minimumSizeHint() const {
  const int around = height() - viewport()->height() + 2 * qRound(document()->documentMargin());
  return {QPlainTextEdit::minimumSizeHint().width(),
          FewestLines * fontMetrics().lineSpacing() + std::min(around, fontMetrics().height())};
}

/// Like toPlainText, but keeps blanks that do not break.
QString WrappingTextView::PlainText() const {
  QString text = document()->toRawText();
  text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
  return text.remove(QChar::Null);
}

void WrappingTextView::ShowText() {
  if (modified_) return;
  const QString text = ShownText(StoredText());
  if (text == shown_ && text == PlainText()) return;
  showing_ = true;
  setPlainText(text);
  showing_ = false;
  shown_ = PlainText();
}

void WrappingTextView::timerEvent(QTimerEvent* event) {
  if (event->timerId() == storesSoon_.timerId())
    Commit();
  else
    QPlainTextEdit::timerEvent(event);
}

void WrappingTextView::Commit() {
  storesSoon_.stop();
  if (!std::exchange(modified_, false)) return;
  // An edit that was taken back must not rewrite a text that cannot be shown as it is stored.
  if (PlainText() != shown_) {
    StoreChange();
    shown_ = PlainText();
  }
}

void WrappingTextView::Forget() {
  storesSoon_.stop();
  modified_ = false;
  Complain({});
}

void WrappingTextView::focusOutEvent(QFocusEvent* event) {
  QPlainTextEdit::focusOutEvent(event);
  if (event->reason() == Qt::PopupFocusReason) return;
  Complain({});
  Commit();
  // From now on the change is the event's to take back.
  document()->clearUndoRedoStacks();
  undoSteps_ = 0;
}

/// A clipboard may hold any amount; one character more than fits is enough to be told about it.
void WrappingTextView::insertFromMimeData(const QMimeData* source) {
  QTextCursor cursor = textCursor();
  cursor.beginEditBlock();  // so that what is cut of it is undone with it
  cursor.insertText(source->text().remove(QChar::Null).left(TextLimit));
  cursor.endEditBlock();
  ensureCursorVisible();
}

void WrappingTextView::NoteEdit() {
  if (showing_) return;
  modified_ = true;
  if (!storesSoon_.isActive()) storesSoon_.start(StoreAfter, this);
  const int steps = document()->availableUndoSteps();
  const bool isUndo = steps < std::exchange(undoSteps_, steps);
  if (document()->isRedoAvailable() && Text().size() >= TextLimit)
    PassOver(isUndo);
  else
    CutToLimit();
}

/// A character that was typed and refused is a step of its own, which must not be the last that
/// undo reaches, nor redo.
void WrappingTextView::PassOver(bool isUndo) {
  const auto on = isUndo ? &QPlainTextEdit::undo : &QPlainTextEdit::redo;
  QMetaObject::invokeMethod(this, on, Qt::QueuedConnection);
}

/// Of what is too much, the end of what came last goes: the text around it was there before.
void WrappingTextView::CutToLimit() {
  const QString text = PlainText();
  const size_t bytes = Text().size();
  if (bytes < TextLimit) {
    Complain({});
    return;
  }
  const qsizetype to = std::min<qsizetype>(changedTo_, text.size());
  const qsizetype from = std::min<qsizetype>(changedFrom_, to);
  const QString added = text.mid(from, to - from);
  const size_t rest = bytes - added.toStdString().size();
  const qsizetype kept = FittingLength(added, rest < TextLimit ? TextLimit - 1 - rest : 0);
  QTextCursor cut(document());
  cut.joinPreviousEditBlock();
  cut.setPosition(static_cast<int>(from + kept));
  cut.setPosition(static_cast<int>(to), QTextCursor::KeepAnchor);
  showing_ = true;
  cut.removeSelectedText();
  cut.endEditBlock();
  showing_ = false;
  Complain(TextIsCut());
}

void WrappingTextView::Complain(const QString& why) {
  if (complaint_ == why) return;
  complaint_ = why;
  setToolTip(why);
  setAccessibleDescription(why);
  emit Complained(why);
}

}  // namespace kestrin
