// Which moment is pending and what follows when waking the application fails. Knows no clock, bus
// or file: every step answers with what has to be done next. docs/bus.md, "A wake-up", tells the
// rules.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

enum class WakeTry { None, Call, Launch };

/// What to do after a step, in the order of the members.
struct WakeOrders {
  bool forgetTry = false;  ///< drop the call under way and the wait for another try
  bool setTimer = false;   ///< arm the timer for When(), or stop it when that is 0
  WakeTry next = WakeTry::None;
  int32 retrySeconds = 0;  ///< above 0: call RetryCame() after so long
};

class WakeSchedule {
 public:
  /// The pending moment in seconds since 1970, 0 for none. Stands until SetWhen changes it.
  int32 When() const { return when_; }
  /// Failures in a row of the present wake-up.
  int32 Failures() const { return failures_; }

  /// The application's word, or the kept one at start. Replaces everything.
  WakeOrders SetWhen(int32 when);
  /// At start, when nobody knows what was pending: the application is to say so.
  WakeOrders Forgotten();
  WakeOrders TimerCame();
  WakeOrders RetryCame();
  WakeOrders ZoneChanged();
  /// The clock was set back: what is pending may have been worked out by the wrong time.
  WakeOrders ClockWentBack();

  /// The call's outcome. `unknownToBus`: the bus has no way to start the application.
  WakeOrders CallAnswered();
  WakeOrders CallFailed(bool unknownToBus);
  /// The launched process has ended, or could not be started.
  WakeOrders LaunchEnded();

  /// The application's bus name has got or lost its owner.
  void ApplicationAppeared() { vanished_ = false; }
  WakeOrders ApplicationVanished();

 private:
  enum class Phase { Resting, Calling, Launched, AwaitingNext, AwaitingRetry };

  WakeOrders StartAnew();
  WakeOrders Try();
  WakeOrders Fail(bool launchNext);

  int32 when_ = 0;
  int32 failures_ = 0;
  Phase phase_ = Phase::Resting;
  bool launchNext_ = false;
  bool vanished_ = false;  // since the call was sent
};

}  // namespace kestrin
