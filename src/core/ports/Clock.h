// The clock, as a port: nothing in core asks the system for the time.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

class Clock {
 public:
  virtual ~Clock() = default;
  /// Seconds since 1970, as the system's clock is set.
  virtual int64 Now() const = 0;
  /// Microseconds of a clock that never steps; only differences mean anything.
  virtual int64 SteadyMicroseconds() const = 0;
};

class SystemClock final : public Clock {
 public:
  int64 Now() const override;
  int64 SteadyMicroseconds() const override;
};

}  // namespace kestrin
