// A line of text that is read when it is committed: on Return, on leaving it, or by Commit.
#pragma once

#include <QLineEdit>
#include <functional>

namespace kestrin {

/// Text that cannot be read stays as typed, with the field marked invalid (for the eye by a sign
/// and its colour, for a screen reader by its description), until it is corrected or Escape brings
/// the last good value back. A field that is disabled shows its value again.
class TypedField : public QLineEdit {
  Q_OBJECT

 public:
  /// Takes the text over and returns nothing, or returns a sentence that says why it cannot.
  using Taker = std::function<QString(const QString& text)>;
  /// The value as it is shown when nobody is typing.
  using Shower = std::function<QString()>;

  /// Empty until ShowValue is called.
  TypedField(const char* objectName, Shower show, Taker take, QWidget* parent = nullptr);

  /// From then on no more is typed or pasted than a text of an event holds; the complaint says so.
  void LimitToEventText();

  /// Shows the value again, unless the person is typing or what was typed is invalid.
  void ShowValue();
  /// Hands over what was typed, if anything was; false when it cannot be read. Text that is typed
  /// as it was shown changes nothing.
  bool Commit();
  /// As if the person had typed `text` and pressed Return.
  void TypeAndCommit(const QString& text);
  /// Drops what was typed.
  void Restore();

 signals:
  /// The complaint has changed, or the person has come back to it; empty when the field is good
  /// again.
  void Complained(const QString& why);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Complain(const QString& why, bool isInvalid);
  void MarkInvalid();
  void CutToLimit();

  Shower show_;
  Taker take_;
  QAction* sign_;
  QString complaint_;
  bool isInvalid_ = false;
  bool typed_ = false;
};

/// The complaint about a text that was longer than an event's text may be.
QString TextIsCut();

/// A typed text as a complaint quotes it: one line, not too long.
QString QuotedText(const QString& typed);

}  // namespace kestrin
