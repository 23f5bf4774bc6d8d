// A typed time of day.
#pragma once

#include "interface/fields/TypedField.h"
#include "kestrin/Types.h"

namespace kestrin {

struct Context;

/// Shows hours and minutes, and seconds where they are not 0.
class TimeField final : public TypedField {
  Q_OBJECT

 public:
  /// Both in seconds after midnight. False when that time of the day it goes with cannot be stored.
  using Getter = std::function<int32()>;
  using Setter = std::function<bool(int32 secondsIntoDay)>;

  TimeField(const char* objectName, const Context& context, Getter get, Setter set,
            QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }
};

}  // namespace kestrin
