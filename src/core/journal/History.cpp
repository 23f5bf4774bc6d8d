#include "core/journal/History.h"

#include <algorithm>
#include <cerrno>
#include <unordered_map>
#include <utility>

#include "kestrin/BufferedFile.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr uint32 Private = 0600;
constexpr size_t FirstLineLimit = 16384;
constexpr int64 ReadLimit = 4 * History::KeptBytes;
/// Pruning leaves room, so that it is not wanted again at once.
constexpr int64 BytesAfterPruning = History::KeptBytes * 4 / 5;

bool EndsInLine(OpenFile& file) {
  const int64 size = file.Size();
  char last = '\n';
  return size <= 0 || (file.ReadAt(size - 1, &last, 1) == 1 && last == '\n');
}

}  // namespace

History::History(FileDoor& files, const std::string& stateFolder)
    : files_(files), path_(stateFolder + "/history") {}

status_t History::Append(const std::vector<JournalRecord>& records) {
  std::string lines;
  for (const JournalRecord& record : records) lines += EncodeLine(record.Id, FieldsOf(record));
  status_t status = files_.MakeFolders(path_.substr(0, path_.find_last_of('/')));
  if (status != StatusOk) return status;
  // Whoever prunes holds the lock while lines could be lost.
  const std::unique_ptr<FileLock> held = files_.Lock(path_ + ".lock", 100);
  const auto file = files_.Open(path_, OpenReadWrite | OpenCreate | OpenAppend, status, Private);
  if (!file) return status;
  if (!EndsInLine(*file)) lines.insert(0, "\n~\n");
  const int64 written = file->Write(lines.data(), lines.size());
  if (written == static_cast<int64>(lines.size())) return StatusOk;
  return written < 0 ? static_cast<status_t>(written) : -ENOSPC;
}

std::vector<JournalRecord> History::Read(status_t& status) const {
  status = StatusOk;
  std::vector<JournalRecord> records;
  if (files_.Kind(path_) == FileKind::Missing) return records;
  const std::optional<std::string> bytes = ReadWholeFile(files_, path_, status, ReadLimit);
  if (!bytes) return records;
  status = StatusOk;
  const RecordText text = DecodeLines(*bytes);
  std::unordered_map<std::string, size_t> places;
  for (const RecordLine& line : text.Lines) {
    const auto [place, isNew] = places.try_emplace(line.Id, records.size());
    if (isNew)
      records.push_back(RecordOf(line.Id, line.Fields));
    else
      records[place->second] = RecordOf(line.Id, line.Fields);
  }
  if (text.Damaged > 0) status = -EBADMSG;
  return records;
}

bool History::WantsPruning(int64 now) const {
  status_t status = StatusOk;
  const auto file = files_.Open(path_, OpenReadOnly, status);
  if (!file) return false;
  if (file->Size() > KeptBytes) return true;
  std::string start(FirstLineLimit, '\0');
  const int64 got = file->Read(start.data(), start.size());
  start.resize(static_cast<size_t>(std::max<int64>(got, 0)));
  const std::optional<RecordLine> first =
      DecodeLine(std::string_view(start).substr(0, start.find('\n')));
  const int64 slack = SecondsPerDay;  // not for each day's first line anew
  return first && first->Fields.Number("at").value_or(now) < now - KeptDays * SecondsPerDay - slack;
}

void History::Prune(int64 now) const {
  status_t status = StatusOk;
  const std::unique_ptr<FileLock> held = files_.Lock(path_ + ".lock", 100);
  if (!held) return;
  const std::optional<std::string> bytes = ReadWholeFile(files_, path_, status, ReadLimit);
  if (!bytes) {
    // Larger than it can ever grow by itself.
    if (status == -EFBIG) files_.Rename(path_, path_ + " (too large)");
    return;
  }
  const RecordText text = DecodeLines(*bytes);
  std::vector<std::string> kept;
  int64 size = 0;
  for (auto line = text.Lines.rbegin(); line != text.Lines.rend(); ++line) {
    std::string encoded = EncodeLine(line->Id, line->Fields);
    size += static_cast<int64>(encoded.size());
    if (size > BytesAfterPruning) break;
    if (line->Fields.Number("at").value_or(now) >= now - KeptDays * SecondsPerDay)
      kept.push_back(std::move(encoded));
  }
  std::string lines;
  for (auto line = kept.rbegin(); line != kept.rend(); ++line) lines += *line;
  WriteWholeFile(files_, path_, lines);
}

}  // namespace kestrin
