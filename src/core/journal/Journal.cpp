#include "core/journal/Journal.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <utility>

namespace kestrin {

namespace {

constexpr char ElsewhereWords[] = "another session of this person carried it out";

std::string MarkOf(const ProcessOwner& owner) {
  char text[20];
  std::snprintf(text, sizeof text, "%016llx",
                static_cast<unsigned long long>(Fnv64(TextOf(owner))));
  return text;
}

bool IsOver(ActStage act) {
  return act != ActStage::Reading && act != ActStage::Queued && act != ActStage::Acting;
}

/// As most records of a long journal are: told from two fields.
bool IsDoneWith(const RecordFields& fields) {
  const std::string act = fields.Text("act");
  const bool hasActed = act == NameOf(ActStage::Acted) || act == NameOf(ActStage::Missed) ||
                        act == NameOf(ActStage::Passed);
  return hasActed && !fields.Is("alert", NameOf(AlertStage::Shown));
}

/// What the journal keeps of an event: its last delivery, and what has led back from that, since
/// the clock was wrong.
struct Last {
  std::optional<JournalRecord> Delivery, Back;

  void Take(JournalRecord record, std::vector<JournalRecord>& settled) {
    const auto settle = [&settled](std::optional<JournalRecord>& one) {
      if (one) settled.push_back(*std::exchange(one, std::nullopt));
    };
    const bool isBack = record.GoesBack();
    if (Back || !isBack) settle(Delivery);
    settle(Back);
    (isBack ? Back : Delivery) = std::move(record);
  }
};

}  // namespace

std::string Journal::EventKey(const std::string& set, const std::string& name,
                              const std::string& handler) {
  return set + '\x1f' + name + '\x1f' + handler;
}

Journal::Journal(FileDoor& files, const Processes& processes, const Clock& clock,
                 const std::string& stateFolder, RecordLog::Report report)
    : processes_(processes),
      clock_(clock),
      self_(processes.Self()),
      log_(files, stateFolder + "/journal", MarkOf(self_), std::move(report)),
      history_(files, stateFolder) {
  log_.OnChange = [this](RecordLog::Place place, const RecordLine* earlier, const RecordLine* now) {
    Index(place, earlier, now);
  };
}

std::string Journal::KeyOf(const RecordFields& fields) {
  return EventKey(fields.Text("set"), fields.Text("name"), fields.Text("handler"));
}

void Journal::Index(RecordLog::Place place, const RecordLine* earlier, const RecordLine* now) {
  open_.erase(place);
  if (now && !IsDoneWith(now->Fields)) open_.insert(place);
  const std::string before = earlier ? KeyOf(earlier->Fields) : std::string();
  const std::string after = now ? KeyOf(now->Fields) : std::string();
  if (earlier && now && before == after) return;
  if (earlier && --bySet_[earlier->Fields.Text("set")] == 0)
    bySet_.erase(earlier->Fields.Text("set"));
  if (now) ++bySet_[now->Fields.Text("set")];
  if (const auto found = byEvent_.find(before); earlier && found != byEvent_.end()) {
    const auto [first, end] = std::equal_range(found->second.begin(), found->second.end(), place);
    found->second.erase(first, end);
    if (found->second.empty()) byEvent_.erase(found);
  }
  if (!now) return;
  Places& places = byEvent_[after];
  places.insert(std::upper_bound(places.begin(), places.end(), place), place);
}

JournalRecord Journal::At(RecordLog::Place place) const {
  const RecordLine& line = log_.All().at(place);
  return RecordOf(line.Id, line.Fields);
}

void Journal::Read() {
  log_.Read();
  lastAtStart_ = log_.LastPlace();
}

std::string Journal::Add(JournalRecord record, bool isInHeap) {
  record.By = self_;
  if (record.At == 0) record.At = clock_.Now();
  std::string id = log_.NewId();
  if (isInHeap)
    log_.AppendInHeap(id, FieldsOf(record));
  else
    log_.Append(id, FieldsOf(record));
  return id;
}

/// Another session's claim of the same act: any that is there, or, when both could claim without
/// the lock, an earlier one.
bool Journal::HasRival(const JournalRecord& record, Rivals which) const {
  const auto places = byEvent_.find(EventKey(record.Set, record.Event.Name, record.Event.Handler));
  if (places == byEvent_.end()) return false;
  for (const RecordLog::Place place : places->second) {
    const RecordLine& line = log_.All().at(place);
    if (line.Id == record.Id && which.earlierOnly) return false;
    if (line.Id == record.Id || !line.Fields.Is("claim", "1")) continue;
    const JournalRecord other = RecordOf(line.Id, line.Fields);
    // What was there at the start, a set that was read since has followed.
    const bool counts = !which.newsOnly || place > lastAtStart_;
    if (counts && !IsMine(other) && other.From == record.From && other.Kind == record.Kind &&
        other.Event.Place == record.Event.Place && !other.Trial)
      return true;
  }
  return false;
}

std::optional<std::string> Journal::Claim(JournalRecord record) {
  const std::unique_ptr<FileLock> held = log_.Lock();
  log_.CatchUp();
  record.By = self_;
  if (record.At == 0) record.At = clock_.Now();
  const bool isLate = HasRival(record, {.newsOnly = true});
  if (isLate) {
    record.Act = ActStage::Passed;
    record.Why = ElsewhereWords;
  }
  RecordFields fields = FieldsOf(record);
  if (!isLate) fields.Set("claim", int64{1});
  record.Id = log_.NewId();
  log_.Append(record.Id, fields);
  if (isLate) return std::nullopt;
  if (held) return record.Id;
  log_.CatchUp();
  if (!HasRival(record, {.newsOnly = true, .earlierOnly = true})) return record.Id;
  GiveUp(record.Id);
  return std::nullopt;
}

void Journal::GiveUp(const std::string& id) {
  log_.Append(id, {{"claim", "0"}, {"act", NameOf(ActStage::Passed)}, {"why", ElsewhereWords}});
}

bool Journal::ClaimAgain(const std::string& id) {
  const std::unique_ptr<FileLock> held = log_.Lock();
  log_.CatchUp();
  const std::optional<JournalRecord> record = Find(id);
  if (!record) return true;
  if (!record->Trial && HasRival(*record, {})) {
    GiveUp(id);
    return false;
  }
  log_.Append(id, {{"by", TextOf(self_)}, {"claim", "1"}, {"act", NameOf(ActStage::Acting)}});
  if (held) return true;
  log_.CatchUp();
  if (record->Trial || !HasRival(*record, {.earlierOnly = true})) return true;
  GiveUp(id);
  return false;
}

void Journal::Stage(const std::string& id, ActStage act, const std::string& why) {
  RecordFields fields = {{"act", NameOf(act)}};
  if (!why.empty()) fields.Set("why", why);
  log_.Continue(id, fields);
}

void Journal::GoesOnWith(const std::string& id, const EventName& event) {
  log_.Append(
      id,
      {{"name", event.Name}, {"handler", event.Handler}, {"place", std::to_string(event.Place)}});
}

bool Journal::IsKeptUnread(const std::string& set, const EventName& event) const {
  const std::vector<JournalRecord> records = About(set, event);
  return std::any_of(records.begin(), records.end(), [this](const JournalRecord& record) {
    const bool isLeft = !IsMine(record) && !processes_.Lives(record.By);
    return record.Act == ActStage::Reading && (isLeft || !record.Why.empty());
  });
}

void Journal::Became(const std::string& id, const EventState& to) {
  log_.Continue(id, {{"to", TextOf(to)}});
}

void Journal::Shown(const std::string& id, const KeptAlert& alert) {
  RecordFields fields = {{"alert", NameOf(AlertStage::Shown)}};
  fields.Merge(FieldsOf(alert));
  log_.Continue(id, fields);
}

std::string Journal::Further(const std::string& id, const KeptAlert& alert) {
  JournalRecord record;
  if (const std::optional<JournalRecord> first = Find(id)) {
    record.Set = first->Set;
    record.Event = first->Event;
    record.Kind = first->Kind;
    record.From = first->From;
  }
  record.Of = id;
  record.AlertIs = AlertStage::Shown;
  record.Alert = alert;
  return Begin(std::move(record));
}

void Journal::Answered(const std::string& id, int32 button, const std::string& text, ActStage act) {
  RecordFields fields = {{"alert", NameOf(AlertStage::Answered)},
                         {"button", std::to_string(button)},
                         {"answer", text},
                         {"answered", std::to_string(clock_.Now())}};
  if (act != ActStage::None) fields.Set("act", NameOf(act));
  log_.Append(id, fields);
}

void Journal::PutOff(const std::string& id) {
  const std::optional<JournalRecord> record = Find(id);
  const int32 times = record ? record->PutOffs + 1 : 1;
  log_.Append(id, {{"alert", NameOf(AlertStage::PutOff)},
                   {"answered", std::to_string(clock_.Now())},
                   {"putoffs", std::to_string(times)}});
}

bool Journal::Adopt(const std::string& id) {
  const std::unique_ptr<FileLock> held = log_.Lock();
  log_.CatchUp();
  const std::optional<JournalRecord> record = Find(id);
  if (!held || !record || (!IsMine(*record) && processes_.Lives(record->By))) return false;
  log_.Append(id, {{"by", TextOf(self_)}});
  return true;
}

void Journal::Ended(const std::string& id, int32 exit) {
  log_.AppendFromThread(id, {{"exit", std::to_string(exit)}});
}

void Journal::FailedNow(const std::string& id, const std::string& why) {
  log_.AppendFromThread(id, {{"act", NameOf(ActStage::Failed)}, {"why", why}});
}

std::optional<JournalRecord> Journal::Find(const std::string& id) const {
  const RecordLine* const line = log_.Find(id);
  if (!line) return std::nullopt;
  return RecordOf(line->Id, line->Fields);
}

bool Journal::Says(const std::string& id, const char* key, const char* value) const {
  return Has(id) && log_.Find(id)->Fields.Is(key, value);
}

std::vector<JournalRecord> Journal::All() const {
  std::vector<JournalRecord> all;
  for (const auto& [place, line] : log_.All())
    if (!line.Fields.Has("seen")) all.push_back(RecordOf(line.Id, line.Fields));
  return all;
}

std::vector<JournalRecord> Journal::Orphans(
    const std::function<bool(const JournalRecord&)>& which) const {
  std::vector<JournalRecord> orphans;
  for (const RecordLog::Place place : open_) {
    JournalRecord record = At(place);
    if (which(record) && !IsMine(record) && !processes_.Lives(record.By))
      orphans.push_back(std::move(record));
  }
  return orphans;
}

std::vector<JournalRecord> Journal::About(const std::string& set, const EventName& event) const {
  std::vector<JournalRecord> records;
  const auto places = byEvent_.find(EventKey(set, event.Name, event.Handler));
  if (places == byEvent_.end()) return records;
  for (const RecordLog::Place place : places->second)
    if (JournalRecord record = At(place); record.Event == event)
      records.push_back(std::move(record));
  return records;
}

std::optional<int32> Journal::LastOccurrence(const std::string& set, const EventName& event,
                                             int64 notAfter) const {
  std::optional<int32> last;
  for (const JournalRecord& record : About(set, event)) {
    const bool isDelivery = record.From && !record.Trial && record.Kind != RecordKind::Prewarning;
    if (!isDelivery || record.From->Actual > notAfter || record.GoesBack()) continue;
    last = std::max(last.value_or(record.From->Actual), record.From->Actual);
  }
  return last;
}

void Journal::Renamed(const std::string& from, const std::string& to) {
  for (const JournalRecord& record : All())
    if (record.Set == from) log_.Append(record.Id, {{"set", to}});
}

void Journal::Renamed(const std::string& set, const EventName& from, const EventName& to) {
  for (const JournalRecord& record : About(set, from)) GoesOnWith(record.Id, to);
}

bool Journal::IsSettled(const JournalRecord& record) const {
  return IsOver(record.Act) && record.AlertIs != AlertStage::Shown && !record.IsUntold() &&
         (IsMine(record) || !processes_.Lives(record.By));
}

void Journal::Settle(const std::string& set, const std::vector<EventName>& events) {
  std::unordered_map<std::string, std::set<int32>> inFile;
  for (const EventName& event : events)
    inFile[EventKey(set, event.Name, event.Handler)].insert(event.Place);
  const auto isThere = [&](const JournalRecord& record) {
    const auto found = inFile.find(EventKey(set, record.Event.Name, record.Event.Handler));
    return found != inFile.end() && found->second.contains(record.Event.Place);
  };
  std::vector<JournalRecord> settled;
  std::map<EventName, Last> lastOf;
  for (const auto& [place, line] : log_.All()) {
    if (!line.Fields.Is("set", set)) continue;
    JournalRecord record = RecordOf(line.Id, line.Fields);
    if (!IsSettled(record)) continue;
    if (!record.From || record.Trial || !record.Of.empty() || !isThere(record)) {
      settled.push_back(std::move(record));
      continue;
    }
    Last& last = lastOf[record.Event];
    last.Take(std::move(record), settled);
  }
  if (settled.empty() || history_.Append(settled) != StatusOk) return;
  for (const JournalRecord& record : settled) log_.Drop(record.Id);
}

}  // namespace kestrin
