// A typed whole number.
#pragma once

#include "interface/fields/TypedField.h"
#include "kestrin/Types.h"

namespace kestrin {

/// Up and Down step the number, down to `least`, and commit it.
class NumberField final : public TypedField {
  Q_OBJECT

 public:
  using Getter = std::function<uint32()>;
  /// Stores the number and returns nothing, or returns a sentence that says why it cannot: it is
  /// asked about every number that is typed, those below `least` too.
  using Setter = std::function<QString(uint32 number)>;

  NumberField(const char* objectName, uint32 least, Getter get, Setter set,
              QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Step(int by);

  uint32 least_;
};

}  // namespace kestrin
