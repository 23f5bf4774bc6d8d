#include <time.h>

#include "core/ports/Clock.h"

namespace kestrin {

int64 SystemClock::Now() const { return time(nullptr); }

int64 SystemClock::SteadyMicroseconds() const {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return int64{now.tv_sec} * 1000000 + now.tv_nsec / 1000;
}

}  // namespace kestrin
