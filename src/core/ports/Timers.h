// Messages that come after a while, as a port.
#pragma once

#include "support/Message.h"

namespace kestrin {

/// Main thread.
class Timers {
 public:
  virtual ~Timers() = default;
  /// Posts the message to the application's queue after so many milliseconds of a clock that never
  /// steps, or later. The program's end is not kept back by it.
  virtual void PostAfter(int32 milliseconds, Message message) = 0;
};

}  // namespace kestrin
