#include "core/delivery/DeliveryPass.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "core/delivery/EventDelivery.h"
#include "core/delivery/PutOffAlerts.h"
#include "core/delivery/StopReminding.h"
#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/journal/Journal.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/Clock.h"
#include "core/ports/EventActions.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

namespace {

constexpr int64 RetryWithoutScreen = 60;

}  // namespace

DeliveryPass::DeliveryPass(Context& context, SendTime sendTime)
    : context_(context), sendTime_(std::move(sendTime)) {}

/// Ties go to the set that was opened first. Without a screen, what is due and needs one is passed
/// over.
DeliveryPass::Earliest DeliveryPass::FindEarliest() {
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  Earliest best;
  const bool mayPassOver = !context_.ui.HasScreen();
  const int64 now = mayPassOver ? context_.clock.Now() : 0;
  const auto mustWait = [&](const Event& event) {
    if (event.GetNextEventTime() > now || context_.actions.CanDeliver(event)) return false;
    const int64 since = event.GetNextEventTime();
    if (best.waiting == 0 || since < best.waiting) best.waiting = since;
    return true;
  };
  for (const auto& set : context_.openSets.Sets) {
    const AutoLock lock(*set);
    if (!set->Delivers(set->GetWindow() != nullptr)) continue;
    Event* event = nullptr;
    const int32 time =
        mayPassOver ? set->GetNextEventTime(&event, mustWait) : set->GetNextEventTime(&event);
    if (time == 0 || (best.event && time >= best.time)) continue;
    best.time = time;
    best.event = event;
    best.set = set.get();
  }
  return best;
}

void DeliveryPass::HandOn(const Earliest& earliest) {
  if (context_.journal) context_.journal->EndHeap();
  Message message(NEXT_EVENT_MESSAGE);
  int64 when = earliest.event ? earliest.time : 0;
  int64 waiting = earliest.waiting;
  if (const int64 back = putOff_ ? putOff_->NextReturn() : 0) {
    if (back <= context_.clock.Now() && !context_.ui.HasScreen())
      waiting = waiting == 0 ? back : std::min(waiting, back);
    else if (when == 0 || back < when)
      when = back;
  }
  if (const int64 also = alsoAt_ ? alsoAt_() : 0; also != 0 && (when == 0 || also < when))
    when = also;
  if (waiting != 0) {
    message.Set("Since", static_cast<int32>(waiting));
    const int64 retry = context_.clock.Now() + RetryWithoutScreen;
    if (when == 0 || retry < when) when = retry;
    std::fputs("kestrin: no display: what needs a window stays due for another minute\n", stderr);
  }
  if (when != 0) message.Set("When", static_cast<int32>(when));
  sendTime_(message, when == 0);
}

void DeliveryPass::SetCounterForNextEvent(bool startup) {
  // A set that was opened meanwhile meets the rule for missed events, whoever asks first.
  startup = startup || nextIsStartup_ || context_.queue.Holds(SETS_OPENED);
  nextIsStartup_ = false;
  if (putOff_ && context_.ui.HasScreen()) putOff_->ReturnDue();
  const Earliest earliest = FindEarliest();
  dealing_ = false;
  passStartup_ = false;
  if (!earliest.event || earliest.time > context_.clock.Now()) {
    HandOn(earliest);
    context_.queue.Post(PASSES_AT_REST);
    return;
  }
  dealing_ = true;
  passStartup_ = startup;
  DealWith(earliest);
}

void DeliveryPass::SendNextTime() { HandOn(FindEarliest()); }

void DeliveryPass::PassWithStartupFlag() {
  if (dealing_)
    nextIsStartup_ = true;
  else
    SetCounterForNextEvent(true);
}

void DeliveryPass::DealWith(const Earliest& earliest) {
  {
    const AutoLock lock(*earliest.set);
    DealWithEvent(*earliest.event, passStartup_);
  }
  earliest.set->DropActing();
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  context_.openSets.DestroyDeparted();
}

/// Only the set that was opened first is looked at: replies about other sets change nothing. An
/// alert's button has been carried out already, where it was pressed.
void DeliveryPass::AlertReply(const Message& message) {
  if (message.Get<int32>("which") == 0) {
    const auto set = static_cast<uint64>(message.Get<int64>("EventSet").value_or(0));
    const AutoLock open(context_.openSets.Protect);
    const auto& sets = context_.openSets.Sets;
    if (!sets.empty() && sets.front()->GetHandle() == set)
      StopReminding(context_,
                    {set, static_cast<uint64>(message.Get<int64>("Event").value_or(0)),
                     message.Get<int32>("Occurrence").value_or(0)},
                    message.what == PREWARN_ALERT_REPLY);
  }
  context_.holds.ProcessDone();
}

bool DeliveryPass::MessageReceived(const Message& message) {
  switch (message.what) {
    case EVENT_DEALT_WITH:
      SetCounterForNextEvent(passStartup_);
      return true;
    case EVENT_SETS_CHANGED:
      if (!dealing_) SetCounterForNextEvent(false);
      return true;
    case DELIVER_EVENTS:
      if (message.Get<int32>("Late").value_or(0) > MostLateness)
        PassWithStartupFlag();
      else if (!dealing_)
        SetCounterForNextEvent(false);
      return true;
    case PREWARN_ALERT_REPLY:
    case NAG_ALERT_REPLY:
      AlertReply(message);
      return true;
    default:
      return false;
  }
}

}  // namespace kestrin
