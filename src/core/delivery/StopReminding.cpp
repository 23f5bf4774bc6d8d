#include "core/delivery/StopReminding.h"

#include "core/events/Context.h"
#include "core/events/Event.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/ports/Clock.h"
#include "core/timing/EventTypes.h"

namespace kestrin {

void StopReminding(Context& context, const AlertSubject& subject, bool prewarning) {
  const AutoLock open(context.openSets.Protect);
  EventSet* const set = context.openSets.FindHandle(subject.Set);
  if (!set) return;
  const AutoLock lock(*set);
  Event* const event = set->FindEvent(subject.Event);
  if (!event || event->GetActualEventTime() != subject.Occurrence) return;
  const bool nagging = event->GetStatus() == WaitingToNag;
  // An event that has come due is still to be delivered.
  const bool ahead = event->GetActualEventTime() > context.clock.Now();
  if (prewarning ? nagging || !ahead : !nagging) return;
  const EventSet::DeliveryChange byDelivery(*set);
  if (prewarning)
    event->SetSkipPrewarn(true);
  else
    event->SetSkipNag(true);
  event->UpdateEventTime();
  set->SetModified();
}

}  // namespace kestrin
