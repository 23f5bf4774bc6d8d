// Notices that the system's clock was set back: what was worked out by the time before then lies
// too far ahead, and no timer tells.
#pragma once

#include <systemd/sd-event.h>

#include "kestrin/Types.h"

namespace kestrin {

class ClockWatch {
 public:
  using WentBack = void (*)(void* self);

  ClockWatch() = default;
  ClockWatch(const ClockWatch&) = delete;
  ClockWatch& operator=(const ClockWatch&) = delete;
  ~ClockWatch() { sd_event_source_disable_unref(source_); }

  /// 0 or -errno. From then on `wentBack` is called from the loop, with `self`, each time that the
  /// clock was set back by more than a minute. A machine that slept has not set it.
  int Begin(sd_event* loop, WentBack wentBack, void* self);

 private:
  static int OnSet(sd_event_source* source, int timer, uint32_t events, void* self);

  sd_event_source* source_ = nullptr;
  WentBack wentBack_ = nullptr;
  void* self_ = nullptr;
  int64 booted_ = 0;  ///< when that was by the clock, in seconds since 1970
};

}  // namespace kestrin
