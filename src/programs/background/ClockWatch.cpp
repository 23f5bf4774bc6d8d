#include "programs/background/ClockWatch.h"

#include <errno.h>
#include <stdint.h>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

namespace kestrin {

namespace {

constexpr int64 Minute = 60;
constexpr time_t Never = INT64_MAX;

int64 SecondsOf(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return now.tv_sec;
}

int64 TimeOfBoot() { return SecondsOf(CLOCK_REALTIME) - SecondsOf(CLOCK_BOOTTIME); }

/// The timer never runs out; it is cancelled when the clock is set.
int Arm(int timer) {
  itimerspec never{};
  never.it_value.tv_sec = Never;
  const int flags = TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET;
  return timerfd_settime(timer, flags, &never, nullptr) == 0 ? 0 : -errno;
}

}  // namespace

int ClockWatch::Begin(sd_event* loop, WentBack wentBack, void* self) {
  wentBack_ = wentBack;
  self_ = self;
  const int timer = timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
  if (timer < 0) return -errno;
  int result = sd_event_add_io(loop, &source_, timer, EPOLLIN, OnSet, this);
  if (result < 0) return close(timer), result;
  sd_event_source_set_io_fd_own(source_, 1);
  booted_ = TimeOfBoot();
  return Arm(timer);
}

int ClockWatch::OnSet(sd_event_source*, int timer, uint32_t, void* self) {
  ClockWatch& watch = *static_cast<ClockWatch*>(self);
  uint64_t expirations = 0;
  if (read(timer, &expirations, sizeof expirations) >= 0 || errno != ECANCELED) return 0;
  Arm(timer);
  const int64 booted = TimeOfBoot();
  const bool wentBack = booted < watch.booted_ - Minute;
  watch.booted_ = booted;
  if (wentBack) watch.wentBack_(watch.self_);
  return 0;
}

}  // namespace kestrin
