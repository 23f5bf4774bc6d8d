// Undo and redo of a text field, which give way to those of the window.
#pragma once

class QWidget;

namespace kestrin {

/// From then on a QLineEdit, QPlainTextEdit or QTextEdit takes the keys of undo and redo only while
/// it has something of its own to take back or do again; else they are its window's.
void PassUndoOn(QWidget& field);

}  // namespace kestrin
