#include "core/journal/Later.h"

#include <algorithm>
#include <utility>

namespace kestrin {

namespace {

constexpr char BackKey[] = "back";

/// A put-off alert is a record of its own, with a return time.
RecordFields FieldsOf(const PutOffAlert& alert) {
  JournalRecord record;
  record.Set = alert.Set;
  record.Event = alert.Event;
  record.Rule = alert.Rule;
  record.Kind = alert.Kind;
  record.From = EventState{alert.Occurrence, 0, 0, false};
  record.AlertIs = AlertStage::PutOff;
  record.Alert = alert.Alert;
  record.Run = alert.Run;
  record.Open = alert.Open;
  record.Of = alert.Record;
  RecordFields fields = FieldsOf(record);
  fields.Add("wall", alert.When.Wall ? TextOf(*alert.When.Wall) : "");
  fields.Add("moment", alert.When.Moment);
  fields.Add(BackKey, int64{alert.IsBack});
  return fields;
}

ReturnTime WhenOf(const RecordFields& fields) {
  return {fields.Number("moment").value_or(0),
          fields.Is("wall", "") ? std::nullopt : CivilOf(fields.Text("wall"))};
}

EventName NameOf(const RecordFields& fields) {
  return {fields.Text("name"), fields.Text("handler"),
          static_cast<int32>(fields.Number("place").value_or(0))};
}

}  // namespace

PutOffAlert PutOffAlertOf(const RecordLine& line) {
  const JournalRecord record = RecordOf(line.Id, line.Fields);
  PutOffAlert alert;
  alert.Id = line.Id;
  alert.Record = record.Of;
  alert.Set = record.Set;
  alert.Event = record.Event;
  alert.Rule = record.Rule;
  alert.Kind = record.Kind;
  alert.Occurrence = record.Occurrence();
  alert.Alert = record.Alert;
  alert.Run = record.Run;
  alert.Open = record.Open;
  alert.When = WhenOf(line.Fields);
  alert.IsBack = line.Fields.Number(BackKey) == 1;
  return alert;
}

Later::Later(FileDoor& files, const std::string& stateFolder, std::string mark,
             RecordLog::Report report)
    : log_(files, stateFolder + "/later", std::move(mark), std::move(report)) {}

void Later::Read() { log_.Read(); }

void Later::CatchUp() { log_.CatchUp(); }

status_t Later::PutOff(PutOffAlert& alert) {
  const bool isNew = alert.Id.empty();
  const std::string id = isNew ? log_.NewId() : alert.Id;
  const std::optional<PutOffAlert> earlier = Find(id);
  status_t status = log_.Append(id, FieldsOf(alert));
  if (status == StatusOk) status = log_.Sync();
  if (status == StatusOk) {
    alert.Id = id;
  } else if (earlier) {
    log_.Append(id, FieldsOf(*earlier));
  } else {
    log_.End(id);
  }
  return status;
}

void Later::IsBack(const std::string& id) { log_.Append(id, {{BackKey, "1"}}); }

void Later::End(const std::string& id) {
  if (log_.Find(id)) log_.End(id);
}

std::vector<Later::Subject> Later::All() const {
  std::vector<Subject> all;
  for (const auto& [place, line] : log_.All())
    all.push_back({line.Id, line.Fields.Text("set"), NameOf(line.Fields)});
  return all;
}

std::set<std::string> Later::Deliveries() const {
  std::set<std::string> records;
  for (const auto& [place, line] : log_.All()) records.insert(line.Fields.Text("of"));
  return records;
}

std::vector<PutOffAlert> Later::Of(const std::string& set, const EventName& event) const {
  std::vector<PutOffAlert> found;
  for (const auto& [place, line] : log_.All())
    if (line.Fields.Is("name", event.Name) && line.Fields.Is("set", set) &&
        NameOf(line.Fields) == event)
      found.push_back(PutOffAlertOf(line));
  return found;
}

std::optional<PutOffAlert> Later::Find(const std::string& id) const {
  const RecordLine* const line = log_.Find(id);
  if (!line) return std::nullopt;
  return PutOffAlertOf(*line);
}

int64 Later::NextReturn(const Zone& zone, const std::set<std::string>& without) const {
  int64 next = 0;
  for (const auto& [place, line] : log_.All()) {
    if (without.contains(line.Id)) continue;
    const int64 at = std::max<int64>(WhenOf(line.Fields).In(zone), 1);
    if (next == 0 || at < next) next = at;
  }
  return next;
}

std::vector<PutOffAlert> Later::Due(int64 now, const Zone& zone) const {
  std::vector<PutOffAlert> due;
  for (const auto& [place, line] : log_.All())
    if (WhenOf(line.Fields).In(zone) <= now) due.push_back(PutOffAlertOf(line));
  std::stable_sort(due.begin(), due.end(), [&](const PutOffAlert& a, const PutOffAlert& b) {
    return a.When.In(zone) < b.When.In(zone);
  });
  return due;
}

}  // namespace kestrin
