#include "core/journal/LookBack.h"

#include <algorithm>
#include <cerrno>
#include <unordered_map>
#include <utility>

#include "core/journal/History.h"
#include "core/journal/RecordLine.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr int64 LookBackLimit = int64{64} << 20;

void KeepFirst(status_t& status, status_t fresh) {
  if (status == StatusOk) status = fresh;
}

/// What the lines of a file add up to, in the order of each record's first line.
std::vector<RecordLine> ReadRecords(FileDoor& files, const std::string& path, status_t& status) {
  std::vector<RecordLine> records;
  if (files.Kind(path) == FileKind::Missing) return records;
  status_t readStatus = StatusOk;
  const std::optional<std::string> bytes = ReadWholeFile(files, path, readStatus, LookBackLimit);
  if (!bytes) {
    KeepFirst(status, readStatus);
    return records;
  }
  RecordText text = DecodeLines(*bytes);
  if (text.Damaged > 0) KeepFirst(status, -EBADMSG);
  std::unordered_map<std::string, size_t> places;
  for (RecordLine& line : text.Lines) {
    const auto [place, isNew] = places.try_emplace(line.Id, records.size());
    if (isNew)
      records.push_back(std::move(line));
    else
      records[place->second].Fields.Merge(line.Fields);
  }
  std::erase_if(records, [](const RecordLine& line) { return line.Fields.Has("ended"); });
  return records;
}

int64 MomentOf(const JournalRecord& record) {
  return record.At != 0 ? record.At : record.Occurrence();
}

}  // namespace

std::vector<PutOffAlert> ReadPutOff(FileDoor& files, const std::string& stateFolder,
                                    status_t& status) {
  std::vector<PutOffAlert> alerts;
  for (const RecordLine& line : ReadRecords(files, stateFolder + "/later", status))
    alerts.push_back(PutOffAlertOf(line));
  return alerts;
}

std::vector<PastDelivery> LookBack(FileDoor& files, const std::string& stateFolder,
                                   status_t& status) {
  status = StatusOk;
  std::vector<PastDelivery> all;
  std::unordered_map<std::string, size_t> places;
  const auto add = [&](JournalRecord record) {
    if (!record.IsAboutAnEvent()) return;
    const auto [place, isNew] = places.try_emplace(record.Id, all.size());
    if (isNew)
      all.push_back({std::move(record), std::nullopt});
    else
      all[place->second].Record = std::move(record);
  };
  status_t historyStatus = StatusOk;
  for (JournalRecord& record : History(files, stateFolder).Read(historyStatus))
    add(std::move(record));
  KeepFirst(status, historyStatus);
  for (const RecordLine& line : ReadRecords(files, stateFolder + "/journal", status))
    add(RecordOf(line.Id, line.Fields));
  // An alert whose delivery is not known any more stands for itself.
  for (const RecordLine& line : ReadRecords(files, stateFolder + "/later", status)) {
    const PutOffAlert alert = PutOffAlertOf(line);
    if (!places.contains(alert.Record)) add(RecordOf(line.Id, line.Fields));
    const auto place = places.find(places.contains(alert.Record) ? alert.Record : line.Id);
    if (place != places.end() && all[place->second].Record.AlertIs == AlertStage::PutOff)
      all[place->second].Returns = alert.When;
  }
  std::reverse(all.begin(), all.end());
  std::stable_sort(all.begin(), all.end(), [](const PastDelivery& a, const PastDelivery& b) {
    return MomentOf(a.Record) > MomentOf(b.Record);
  });
  return all;
}

}  // namespace kestrin
