#include "interface/fields/PassUndoOn.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextEdit>

namespace kestrin {

namespace {

bool CanMove(const QObject* field, bool undo) {
  if (const auto* line = qobject_cast<const QLineEdit*>(field))
    return undo ? line->isUndoAvailable() : line->isRedoAvailable();
  const QTextDocument* document = nullptr;
  if (const auto* plain = qobject_cast<const QPlainTextEdit*>(field)) document = plain->document();
  if (const auto* rich = qobject_cast<const QTextEdit*>(field)) document = rich->document();
  return document && (undo ? document->isUndoAvailable() : document->isRedoAvailable());
}

/// Keys that a field does not ask for go on to the shortcuts.
class UndoGate final : public QObject {
 public:
  using QObject::QObject;

  bool eventFilter(QObject* field, QEvent* event) override {
    if (event->type() != QEvent::ShortcutOverride) return false;
    const auto* const key = dynamic_cast<QKeyEvent*>(event);
    const bool isUndo = key->matches(QKeySequence::Undo), isRedo = key->matches(QKeySequence::Redo);
    if ((!isUndo && !isRedo) || CanMove(field, isUndo)) return false;
    event->ignore();
    return true;
  }
};

}  // namespace

void PassUndoOn(QWidget& field) { field.installEventFilter(new UndoGate(&field)); }

}  // namespace kestrin
