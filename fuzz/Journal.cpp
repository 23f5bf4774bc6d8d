// Any lines as the journal, as what was put off and as the history, half of them appended by
// another process: all is read, followed, settled and made short without a record more or less.
#include <algorithm>

#include "Trial.h"
#include "core/journal/Later.h"
#include "core/journal/RecordWords.h"
#include "harness/TestContext.h"

namespace kestrin {
namespace {

/// Without right checks no line would get past the first look.
std::string WithChecks(std::string_view lines) {
  std::string text;
  while (!lines.empty()) {
    const size_t end = std::min(lines.find('\n'), lines.size());
    char check[10];
    std::snprintf(check, sizeof check, "%08x\t", Fnv32(lines.substr(0, end)));
    (text += check).append(lines.substr(0, end + 1));
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
  return text;
}

void TryLines(const std::string& bytes) {
  const RecordText text = DecodeLines(bytes);
  Demand(text.Damaged >= 0 && text.Whole <= bytes.size(), "the figures make sense");
  for (const RecordLine& line : text.Lines) {
    const std::string encoded = EncodeLine(line.Id, line.Fields);
    const auto again = DecodeLine(std::string_view(encoded).substr(0, encoded.size() - 1));
    Demand(again && again->Id == line.Id && again->Fields == line.Fields,
           "a line reads as written");
    const RecordFields known = FieldsOf(RecordOf(line.Id, line.Fields));
    Demand(FieldsOf(RecordOf(line.Id, known)) == known, "a record reads as written");
    const AlertRequest alert = AlertOf(RecordOf(line.Id, line.Fields).Alert);
    Demand(!alert.Buttons.empty() && alert.DefaultButton >= 0 &&
               alert.DefaultButton < static_cast<int>(alert.Buttons.size()),
           "an alert has its button");
  }
}

RecordLog::Records All(MemoryFileDoor& disk, const char* path) {
  RecordLog log(disk, path, "reader", {});
  log.Read();
  return log.All();
}

std::vector<RecordFields> Contents(const RecordLog::Records& records) {
  std::vector<RecordFields> contents;
  for (const auto& [place, line] : records) contents.push_back(line.Fields);
  return contents;
}

void TryJournal(MemoryFileDoor& disk, const std::string& rest) {
  const std::set<int64> dead = {1};
  TestContext world(WorldParts{&disk, nullptr, 2, &dead});
  Journal& journal = world.Record;
  journal.Read();
  status_t status = StatusOk;
  disk.Open("/state/journal", OpenWriteOnly | OpenAppend, status)->Write(rest.data(), rest.size());
  JournalRecord act;
  act.From = act.To = EventState{1, 1, 1, false};
  journal.Claim(act);
  for (const JournalRecord& record : journal.Orphans([](const auto&) { return true; }))
    if (journal.Adopt(record.Id)) journal.Stage(record.Id, ActStage::Acted);
  for (const JournalRecord& record : journal.All()) {
    if (!journal.Find(record.Id)) continue;  // settled below
    const StoredEvent event = {record.Event, record.Rule, record.From.value_or(EventState())};
    const size_t known = journal.About(record.Set, record.Event).size();
    Demand(known > 0 && journal.Knows(record.Set), "a record is found by its event");
    Demand(journal.Follow(record.Set, {event, event}).size() == 2, "each event is answered for");
    journal.LastOccurrence(record.Set, record.Event);
    if (known % 2 == 0) journal.Settle(record.Set, {record.Event});
  }
  journal.Compaction()();
  const RecordLog::Records onDisk = All(disk, "/state/journal");
  for (const auto& [place, line] : onDisk)
    Demand(line.Fields.Has("seen") || FieldsOf(journal.Find(line.Id).value_or(JournalRecord())) ==
                                          FieldsOf(RecordOf(line.Id, line.Fields)),
           "the short file holds what is known");
}

void TryFiles(const std::string& bytes, size_t cut) {
  MemoryFileDoor disk;
  for (const char* name : {"journal", "later", "history"})
    disk.Put(std::string("/state/") + name, bytes.substr(0, cut));
  status_t status = StatusOk;
  static const Zone zone = *Zone::Load("Europe/Berlin");
  for (const PastDelivery& past : LookBack(disk, "/state", status))
    Demand(!WordsOf(past, zone, false).Outcome.empty() &&
               !WhySentence("", &past, {.Time = 1}, zone, true).empty(),
           "each has its words");
  const auto before = Contents(All(disk, "/state/later"));
  Later later(disk, "/state", "2", {});
  later.Read();
  Demand(later.Due(INT64_MAX, zone).size() == later.All().size() &&
             (later.NextReturn(zone) != 0) == !later.All().empty(),
         "what was put off returns");
  later.Compaction()();
  Demand(Contents(All(disk, "/state/later")) == before, "a short file says the same");
  TryJournal(disk, bytes.substr(cut));
}

}  // namespace

void TryInput(FuzzedDataProvider& in) {
  const size_t cut = in.ConsumeIntegral<uint8>();
  const bool isRaw = in.ConsumeIntegralInRange(0, 3) == 0;
  std::string bytes = in.ConsumeRemainingBytesAsString();
  if (!isRaw) bytes = WithChecks(bytes);
  TryLines(bytes);
  TryFiles(bytes, bytes.size() * cut / 255);
}

}  // namespace kestrin
