// Who writes down what becomes of alerts.
#pragma once

#include "core/ports/Alert.h"

namespace kestrin {

/// Main thread. A forced end and a missing screen answer nothing.
class AlertRecorder {
 public:
  virtual ~AlertRecorder() = default;
  /// It is asked for. May give it another record.
  virtual void Shown(AlertRequest& request) = 0;
  /// Windows of what was asked for open now.
  virtual void Opening() = 0;
  /// By a person; or a later one took its place, and `which` is its harmless button.
  virtual void Answered(const AlertRequest& request, int which) = 0;
  virtual void PutOff(const AlertRequest& request) = 0;
};

}  // namespace kestrin
