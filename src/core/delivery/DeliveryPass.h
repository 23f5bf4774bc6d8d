// Finds the earliest event of the delivering sets and deals with it, or hands its time on.
#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/events/Context.h"
#include "support/Message.h"

namespace kestrin {

class EventSet;
class PutOffAlerts;

/// Seconds; a wake-up that is later is like a start.
inline constexpr int32 MostLateness = 60;

class DeliveryPass {
 public:
  /// Main thread. `sendTime` hands a NextEventMessage to the background deliverer; `mayFail` says
  /// that failures are not reported.
  using SendTime = std::function<void(const Message& message, bool mayFail)>;
  DeliveryPass(Context& context, SendTime sendTime);

  /// What was put off is one more source of the passes; outlives this.
  void Include(PutOffAlerts& putOff) { putOff_ = &putOff; }
  /// The deliverer is to wake the application then at the latest; 0: not for that.
  void WakeAlsoAt(std::function<int64()> when) { alsoAt_ = std::move(when); }

  /// One pass: takes the settings and open-sets locks, so no set may be locked.
  void SetCounterForNextEvent(bool startup);
  /// Deals with nothing: hands the earliest time on, even a past one. What cannot be delivered
  /// without a screen has another minute.
  void SendNextTime();

  /// EVENT_DEALT_WITH, EVENT_SETS_CHANGED, DELIVER_EVENTS and the two alert replies.
  bool MessageReceived(const Message& message);

  /// From the moment a due event is dealt with until the next pass.
  bool IsDealing() const { return dealing_; }
  /// The next pass runs with the start-up flag, whoever asks for it.
  void PassWithStartupFlag();

 private:
  struct Earliest {
    int64 time = 0;
    class Event* event = nullptr;
    EventSet* set = nullptr;
    int64 waiting = 0;  ///< not 0: something had to stay due since then
  };
  Earliest FindEarliest();
  void HandOn(const Earliest& earliest);
  void DealWith(const Earliest& earliest);
  void AlertReply(const Message& message);

  Context& context_;
  SendTime sendTime_;
  PutOffAlerts* putOff_ = nullptr;
  std::function<int64()> alsoAt_;
  bool dealing_ = false;
  bool passStartup_ = false;
  bool nextIsStartup_ = false;
};

}  // namespace kestrin
