#include "core/app/PassedOver.h"

#include <utility>

#include "core/events/EventSet.h"
#include "core/journal/Journal.h"
#include "core/journal/LastSeen.h"
#include "core/loop/Notices.h"
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

void PassedOver::Tell() {
  std::string lines;
  int count = 0;
  for (const JournalRecord& record : context_.journal->All())
    if (context_.journal->IsMine(record) && WasPassedOver(record) && ++count <= MostLines)
      lines += Line(record);
  if (count == 0) return;
  if (count > MostLines) lines += "\nand " + std::to_string(count - MostLines) + " more";
  const std::string since = GetDateTimeString(static_cast<int32>(*lastSeen_), true, context_.zone,
                                              context_.settings.Time24Hour);
  context_.notices.InformUser("Kestrin last looked at the clock on " + since +
                              ".  This came due since then and was not shown:\n" + lines);
}

}  // namespace kestrin
