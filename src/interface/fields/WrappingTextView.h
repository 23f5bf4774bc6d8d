// A text of several lines that is stored when the person leaves it, and now and then before.
#pragma once

#include <QBasicTimer>
#include <QPlainTextEdit>
#include <string>

namespace kestrin {

/// Notes any edit, and calls StoreChange when it loses the focus, on Commit, and two seconds after
/// the first edit that was noted. Holds no more than a text of an event does: what is typed or
/// pasted beyond is left out, and the complaint says so. Tab leaves it.
class WrappingTextView : public QPlainTextEdit {
  Q_OBJECT

 public:
  /// Empty until ShowText is called.
  WrappingTextView(const char* objectName, const QString& accessibleName,
                   QWidget* parent = nullptr);

  /// Shows the stored text again, unless the person is typing.
  void ShowText();
  void Commit();
  /// Drops what was typed; the stored text is asked for no more.
  void Forget();

  QSize minimumSizeHint() const override;

 signals:
  /// The complaint has changed; empty when the text is good again.
  void Complained(const QString& why);

 protected:
  virtual std::string StoredText() const = 0;
  /// Hands Text over. The note is cleared afterwards.
  virtual void StoreChange() = 0;
  /// The whole text as UTF-8, lines ended by line feeds.
  std::string Text() const { return PlainText().toStdString(); }

  void focusOutEvent(QFocusEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void insertFromMimeData(const QMimeData* source) override;

 private:
  QString PlainText() const;
  void NoteEdit();
  void PassOver(bool isUndo);
  void CutToLimit();
  void Complain(const QString& why);

  bool modified_ = false;
  bool showing_ = false;
  QString shown_;  ///< as StoredText was last shown
  QString complaint_;
  QBasicTimer storesSoon_;
  int undoSteps_ = 0;
  int changedFrom_ = 0, changedTo_ = 0;  ///< what the last change put in, as character positions
};

}  // namespace kestrin
