#include "core/delivery/RemindAgain.h"

#include <utility>

#include "core/delivery/ReturningAlert.h"
#include "core/events/Context.h"
#include "core/events/EventSet.h"
#include "core/journal/RecordWords.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageCodes.h"
#include "core/loop/MessageQueue.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

namespace {

/// No id of the journal's: what was asked for once more is no delivery.
constexpr char NoRecord[] = "-";

std::string TextAgain(const PastDelivery& past, const Context& context) {
  if (!past.Record.Alert.Text.empty()) return past.Record.Alert.Text;
  const RecordWords words = WordsOf(past, context.zone, context.settings.Time24Hour);
  return "Kestrin event:  " + past.Record.Event.Name + "\n\nIt was due on " + words.Due + ".  " +
         words.Outcome + ".";
}

}  // namespace

void RemindAgain(Context& context, const PastDelivery& past) {
  AlertRequest request;
  request.Role = AlertRole::Delivery;
  request.Text = TextAgain(past, context);
  request.NamesTime = past.Record.Alert.Text.empty();
  request.Buttons = {"Ok"};
  request.Occurrence = past.Record.Occurrence();
  request.OccursAtTime = true;
  request.Face.EventName = past.Record.Event.Name;
  request.Record = NoRecord;
  const FoundEvent found = FindEvent(context, past.Record.Set, past.Record.Event);
  if (found.event) {
    request.Set = found.set->GetHandle();
    request.Event = found.event->GetHandle();
    request.Face.IconNumber = found.event->Record().IconNumber;
    if (const IconPair* const own = found.event->GetOwnIcon()) request.Face.OwnIcon = *own;
  }
  context.holds.ProcessHold();
  request.Done = [&queue = context.queue](int) { queue.Post(PROCESS_HOLD_DONE); };
  context.alerts.Show(std::move(request));
}

}  // namespace kestrin
