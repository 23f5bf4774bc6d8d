#include "programs/background/WakeSchedule.h"

namespace kestrin {

namespace {
constexpr int32 RetryDelays[WakeSchedule::MostFailures - 1] = {1, 5, 30, 60};
}

WakeOrders WakeSchedule::SetWhen(int32 when) {
  when_ = when;
  failures_ = 0;
  launchNext_ = false;
  phase_ = Phase::Resting;
  return {.forgetTry = true, .setTimer = true};
}

WakeOrders WakeSchedule::TimerCame() { return StartAnew(); }

WakeOrders WakeSchedule::ZoneChanged() { return StartAnew(); }

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
  ++failures_;
  if (failures_ >= MostFailures) {
    phase_ = Phase::Resting;
    return {.gaveUp = true};
  }
  phase_ = Phase::AwaitingRetry;
  return {.retrySeconds = RetryDelays[failures_ - 1]};
}

}  // namespace kestrin
