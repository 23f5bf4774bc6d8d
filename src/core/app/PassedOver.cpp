#include "core/app/PassedOver.h"

#include <utility>

#include "core/delivery/DeliveryPass.h"
#include "core/events/EventSet.h"
#include "core/journal/Journal.h"
#include "core/journal/LastSeen.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageCodes.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/Clock.h"
#include "core/settings/KestrinSettings.h"
#include "core/timing/DateTimeText.h"

namespace kestrin {

namespace {

constexpr int MostLines = 20;

bool WasPassedOver(const JournalRecord& record) {
  return record.Kind == RecordKind::Event && record.Missed &&
         (record.Act == ActStage::Missed || !record.Why.empty());
}

}  // namespace

void PassedOver::Begin() {
  if (context_.journal) lastSeen_ = context_.journal->Seen().Time();
}

void PassedOver::Seen() {
  if (context_.journal) context_.journal->Seen().Set(context_.clock.Now());
}

bool PassedOver::HasGoneBack() const {
  const std::optional<int64> seen =
      context_.journal ? context_.journal->Seen().Time() : std::nullopt;
  return seen && *seen > context_.clock.Now() + MostLateness;
}

void PassedOver::Rest() {
  const std::optional<int64> since = std::exchange(lastSeen_, std::nullopt);
  if (since && context_.clock.Now() > *since + SecondsPerDay) {
    lastSeen_ = since;
    Tell();
    lastSeen_.reset();
  }
  Seen();
}

std::string PassedOver::Line(const JournalRecord& record) const {
  const std::string when =
      GetDateTimeString(record.Occurrence(), true, context_.zone, context_.settings.Time24Hour);
  return "\n\"" + record.Event.Name + "\" of \"" + EventSet::LeafOf(record.Set) +
         "\": " + (record.Act == ActStage::Missed ? when : "what came after " + when) +
         (record.Act == ActStage::Missed && !record.Why.empty() ? ", and what came after it" : "");
}

/// Also what a process passed over that died before it told.
void PassedOver::Tell() {
  std::string lines;
  int count = 0;
  const auto isSince = [this](int64 at) { return at > *lastSeen_ && at <= context_.clock.Now(); };
  for (const JournalRecord& record : context_.journal->All())
    if (isSince(record.At) && WasPassedOver(record) && ++count <= MostLines) lines += Line(record);
  if (count == 0) return;
  if (count > MostLines) lines += "\nand " + std::to_string(count - MostLines) + " more";
  const std::string since = GetDateTimeString(static_cast<int32>(*lastSeen_), true, context_.zone,
                                              context_.settings.Time24Hour);
  Show("Kestrin last looked at the clock on " + since +
       ".  This came due since then and was not shown:\n" + lines);
}

/// Written down as shown and not answered: a later process shows it again until somebody has read
/// it.
void PassedOver::Show(std::string text) {
  AlertRequest request;
  request.Title = "Kestrin";
  request.Text = std::move(text);
  request.Done = [&queue = context_.queue](int) { queue.Post(PROCESS_HOLD_DONE); };
  JournalRecord record;
  record.AlertIs = AlertStage::Shown;
  record.Alert = KeepAlert(request);
  request.Record = context_.journal->Begin(std::move(record));
  context_.holds.ProcessHold();
  context_.alerts.Show(std::move(request));
}

}  // namespace kestrin
