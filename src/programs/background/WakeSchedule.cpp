#include "programs/background/WakeSchedule.h"

namespace kestrin {

namespace {

constexpr int32 RetryDelays[] = {1, 5, 30, 60, 3600};  // seconds; the last one from then on
constexpr int32 LastDelay = sizeof RetryDelays / sizeof RetryDelays[0] - 1;

// An application that is just starting tells its next event by itself.
constexpr int32 TimeToTell = 5;

}  // namespace

WakeOrders WakeSchedule::SetWhen(int32 when) {
  when_ = when;
  failures_ = 0;
  launchNext_ = false;
  phase_ = Phase::Resting;
  return {.forgetTry = true, .setTimer = true};
}

WakeOrders WakeSchedule::Forgotten() {
  phase_ = Phase::AwaitingRetry;
  return {.retrySeconds = TimeToTell};
}

WakeOrders WakeSchedule::TimerCame() { return StartAnew(); }

WakeOrders WakeSchedule::ZoneChanged() { return StartAnew(); }

WakeOrders WakeSchedule::ClockWentBack() {
  failures_ = 0;
  launchNext_ = false;
  WakeOrders orders = Forgotten();
  orders.forgetTry = true;
  return orders;
}

WakeOrders WakeSchedule::StartAnew() {
  if (when_ == 0) return {};
  failures_ = 0;
  launchNext_ = false;
  WakeOrders orders = Try();
  orders.forgetTry = true;
  return orders;
}

WakeOrders WakeSchedule::RetryCame() {
  return phase_ == Phase::AwaitingRetry ? Try() : WakeOrders{};
}

WakeOrders WakeSchedule::Try() {
  vanished_ = false;
  phase_ = launchNext_ ? Phase::Launched : Phase::Calling;
  return {.next = launchNext_ ? WakeTry::Launch : WakeTry::Call};
}

WakeOrders WakeSchedule::CallAnswered() {
  if (phase_ != Phase::Calling) return {};
  if (vanished_) return Fail(false);
  phase_ = Phase::AwaitingNext;
  return {};
}

WakeOrders WakeSchedule::CallFailed(bool unknownToBus) {
  return phase_ == Phase::Calling ? Fail(unknownToBus) : WakeOrders{};
}

WakeOrders WakeSchedule::LaunchEnded() {
  return phase_ == Phase::Launched ? Fail(false) : WakeOrders{};
}

WakeOrders WakeSchedule::ApplicationVanished() {
  vanished_ = true;
  return phase_ == Phase::AwaitingNext ? Fail(false) : WakeOrders{};
}

WakeOrders WakeSchedule::Fail(bool launchNext) {
  launchNext_ = launchNext;
  const int32 delay = RetryDelays[failures_ < LastDelay ? failures_ : LastDelay];
  ++failures_;
  phase_ = Phase::AwaitingRetry;
  return {.retrySeconds = delay};
}

}  // namespace kestrin
