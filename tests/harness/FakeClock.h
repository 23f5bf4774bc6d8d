// A clock that stands still until a test moves it.
#pragma once

#include "core/ports/Clock.h"

namespace kestrin {

class FakeClock final : public Clock {
 public:
  explicit FakeClock(int64 now = 1794729600) : now_(now) {}

  int64 Now() const override { return now_; }
  int64 SteadyMicroseconds() const override { return steady_; }

  /// Time passes.
  void Advance(int64 seconds) { AdvanceMicroseconds(seconds * 1000000), now_ += seconds; }
  /// Only the steady clock moves: for measuring what takes less than a second, or too long.
  void AdvanceMicroseconds(int64 microseconds) { steady_ += microseconds; }
  /// The clock on the wall is set; no time passes.
  void JumpTo(int64 now) { now_ = now; }

 private:
  int64 now_;
  int64 steady_ = 0;
};

}  // namespace kestrin
