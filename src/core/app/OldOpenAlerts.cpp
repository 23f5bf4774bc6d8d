#include "core/app/OldOpenAlerts.h"

#include <optional>
#include <string>
#include <utility>

#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/journal/Journal.h"
#include "support/Message.h"

namespace kestrin {

namespace {

/// The old file has no handler and no place.
EventName NameOf(const OpenSets& sets, const std::string& path, const std::string& name,
                 std::optional<int32> occurrence) {
  EventSet* const set = sets.FindFile(path);
  if (!set) return {name, "", 0};
  for (const auto& event : set->Events())
    if (event->GetName() == name && (!occurrence || event->GetActualEventTime() == *occurrence))
      return set->FileNames().Of(*set, *event);
  return {name, "", 0};
}

std::optional<JournalRecord> RecordOf(const Message& old, const OpenSets& sets) {
  const auto text = old.Get<std::string>("Text");
  const int32 role = old.Get<int32>("Role").value_or(0);
  JournalRecord record;
  record.Alert.Role = static_cast<AlertRole>(role);
  const bool outlives = role >= static_cast<int32>(AlertRole::Prewarning) &&
                        role <= static_cast<int32>(AlertRole::Question);
  if (!text || !outlives) return std::nullopt;
  record.Alert.Text = *text;
  record.Alert.Title = old.Get<std::string>("Title").value_or("");
  for (int i = 0; auto button = old.Get<std::string>("Button" + std::to_string(i)); ++i)
    record.Alert.Buttons.push_back(*button);
  record.Alert.HarmlessButton = old.Get<int32>("Harmless").value_or(0);
  record.Alert.DefaultButton = old.Get<int32>("Default").value_or(0);
  if (old.Get<bool>("Warning").value_or(false)) record.Alert.Kind = AlertKind::Warning;
  record.AlertIs = AlertStage::Shown;
  record.Set = old.Get<std::string>("EventSet").value_or("");
  const int32 occurrence = old.Get<int32>("Occurrence").value_or(0);
  const bool asks = record.Alert.Role == AlertRole::Question;
  record.Event = NameOf(sets, record.Set, old.Get<std::string>("Event").value_or(""),
                        asks ? std::nullopt : std::optional(occurrence));
  record.From = EventState{occurrence, 0, 0, false};
  record.Of = "open-alerts.json";
  return record;
}

}  // namespace

std::vector<JournalRecord> TakeOverOldAlerts(Context& context, RecoveryFolder& recovery) {
  std::vector<JournalRecord> taken;
  if (!context.journal) return taken;
  const AutoLock open(context.openSets.Protect);
  for (const Message& old : recovery.OldAlerts())
    if (std::optional<JournalRecord> record = RecordOf(old, context.openSets)) {
      record->Id = context.journal->Begin(*record);
      taken.push_back(std::move(*record));
    }
  recovery.RemoveOldAlerts();
  return taken;
}

}  // namespace kestrin
