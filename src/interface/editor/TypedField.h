// A line of text that is read when it is committed: on Return, on leaving it, or by Commit.
#pragma once

#include <QLineEdit>
#include <functional>

namespace kestrin {

/// Text that cannot be read stays as typed, with the field marked invalid (for the eye by its
/// colour, for a screen reader by its description), until it is corrected or Escape brings the last
/// good value back.
class TypedField : public QLineEdit {
  Q_OBJECT

 public:
  /// Takes the text over and returns nothing, or returns a sentence that says why it cannot.
  using Taker = std::function<QString(const QString& text)>;
  /// The value as it is shown when nobody is typing.
  using Shower = std::function<QString()>;

  TypedField(const char* objectName, Shower show, Taker take, QWidget* parent = nullptr);

  /// Shows the value again, unless the person is typing or what was typed is invalid.
  void ShowValue();
  /// Hands over what was typed, if anything was; false when it cannot be read.
  bool Commit();
  bool IsInvalid() const { return !complaint_.isEmpty(); }

 signals:
  /// The complaint has changed; empty when the field is good again.
  void Complained(const QString& why);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void Complain(const QString& why);

  Shower show_;
  Taker take_;
  QString complaint_;
  bool typed_ = false;
};

}  // namespace kestrin
