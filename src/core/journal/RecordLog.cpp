#include "core/journal/RecordLog.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "kestrin/BufferedFile.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr char EndedKey[] = "ended";
constexpr char AfterCut[] = "\n~\n";
constexpr int32 LockWait = 100;
constexpr uint32 Private = 0600;
/// How often in a row the file may be replaced by others while one line is written.
constexpr int MaxReplacements = 5;

std::string FolderOf(const std::string& path) { return path.substr(0, path.find_last_of('/')); }

std::string ReadRest(OpenFile& file, int64 position) {
  std::string bytes;
  const int64 size = file.Size();
  if (size <= position) return bytes;
  bytes.resize(static_cast<size_t>(size - position));
  size_t filled = 0;
  while (filled < bytes.size()) {
    const int64 got = file.ReadAt(position + static_cast<int64>(filled), bytes.data() + filled,
                                  bytes.size() - filled);
    if (got <= 0) break;
    filled += static_cast<size_t>(got);
  }
  bytes.resize(filled);
  return bytes;
}

bool WriteWhole(OpenFile& file, std::string_view bytes) {
  return file.Write(bytes.data(), bytes.size()) == static_cast<int64>(bytes.size());
}

}  // namespace

RecordLog::RecordLog(FileDoor& files, std::string path, std::string mark, Report report)
    : files_(files), path_(std::move(path)), mark_(std::move(mark)), report_(std::move(report)) {}

std::string RecordLog::NewId() { return mark_ + "." + std::to_string(nextId_++); }

const RecordLine* RecordLog::Find(const std::string& id) const {
  const auto place = places_.find(id);
  return place == places_.end() ? nullptr : &records_.at(place->second);
}

std::unique_ptr<FileLock> RecordLog::Lock() const { return files_.Lock(path_ + ".lock", LockWait); }

/// The guard is held.
bool RecordLog::Open(status_t& status) {
  if (file_) return true;
  status = files_.MakeFolders(FolderOf(path_));
  if (status != StatusOk) return false;
  file_ = files_.Open(path_, OpenReadWrite | OpenCreate | OpenAppend, status, Private);
  return file_ != nullptr;
}

/// Whether the name still leads to the open file. The guard is held.
bool RecordLog::IsOurs() {
  const std::optional<FileStamp> named = files_.Stamp(path_), open = file_->Stamp();
  return named && open && named->IsSameFile(*open);
}

void RecordLog::Failed(status_t status) {
  if (status == StatusOk) {
    reported_ = false;
  } else if (!std::exchange(reported_, true) && report_) {
    report_("Kestrin cannot keep its records in \"" + path_ + "\": " + std::strerror(-status) +
            ".  Reminders come all the same, but a crash now may lose those that nobody has "
            "answered, or bring some again.");
  }
}

/// What waits goes before it. `isNext`: nobody appended since this process last read, so
/// nothing need be read. The guard is held.
status_t RecordLog::Write(const std::string& line, bool& isNext) {
  status_t status = StatusOk;
  const std::string text = deferred_.Take() + line;
  for (int tries = 0; tries < MaxReplacements; ++tries) {
    if (!Open(status)) break;
    const std::string bytes = (isCut_ ? AfterCut : "") + backlog_ + text;
    const int64 written = file_->Write(bytes.data(), bytes.size());
    if (written != static_cast<int64>(bytes.size())) {
      isCut_ = isCut_ || written > 0;
      status = written < 0 ? static_cast<status_t>(written) : -ENOSPC;
      break;
    }
    isCut_ = false;
    dirty_ = true;
    const int64 end = file_->Seek(0, SEEK_CUR);
    if (IsOurs()) {
      isNext = backlog_.empty() && end - written == position_;
      if (isNext) position_ = end;
      backlog_.clear();
      return StatusOk;
    }
    file_.reset();
    position_ = 0;
    status = -ESTALE;
  }
  if (backlog_.size() < BacklogLimit) backlog_ += text;
  return status;
}

status_t RecordLog::Append(const std::string& id, const RecordFields& fields) {
  bool isNext = false;
  status_t status = StatusOk;
  {
    const std::lock_guard lock(guard_);
    status = Write(EncodeLine(id, fields), isNext);
  }
  Failed(status);
  ++lines_;
  // What others appended before this line stands before it.
  if (status == StatusOk && !isNext)
    CatchUp();
  else
    Merge({id, fields});
  return status;
}

status_t RecordLog::End(const std::string& id) {
  RecordFields ended;
  ended.Set(EndedKey, int64{1});
  return Append(id, ended);
}

/// And what could not be written before. The guard is held.
status_t RecordLog::WriteDeferred() {
  bool isNext = false;
  return IsAllWritten() ? StatusOk : Write("", isNext);
}

void RecordLog::AppendInHeap(const std::string& id, const RecordFields& fields) {
  {
    const std::lock_guard lock(guard_);
    if (deferred_.NextMayWait()) deferred_.Begin(id);
  }
  Continue(id, fields);
}

/// False when the record does not wait.
bool RecordLog::DeferLast(const std::string& id, const RecordFields& fields) {
  const std::lock_guard lock(guard_);
  if (!deferred_.IsLast(id)) return false;
  deferred_.Add(fields);
  dirty_ = true;
  if (deferred_.AreMany()) WriteDeferred();
  return true;
}

void RecordLog::Continue(const std::string& id, const RecordFields& fields) {
  if (!DeferLast(id, fields)) return void(Append(id, fields));
  if (!Find(id)) ++lines_;
  Merge({id, fields});
}

void RecordLog::EndHeap() {
  status_t status = StatusOk;
  {
    const std::lock_guard lock(guard_);
    deferred_.EndHeap();
    if (IsAllWritten()) return;
    status = WriteDeferred();
  }
  Failed(status);
}

void RecordLog::AppendFromThread(const std::string& id, const RecordFields& fields) {
  const std::lock_guard lock(guard_);
  bool isNext = false;
  WriteDeferred();
  const int64 read = position_;
  Write(EncodeLine(id, fields), isNext);
  if (isNext) position_ = read;  // left for the main thread
}

void RecordLog::Merge(RecordLine line) {
  const auto known = places_.find(line.Id);
  const bool ends = line.Fields.Has(EndedKey);
  if (known == places_.end()) {
    if (ends) return;
    const Place place = nextPlace_++;
    const RecordLine& added = records_.emplace_hint(records_.end(), place, std::move(line))->second;
    places_.emplace(added.Id, place);
    if (OnChange) OnChange(place, nullptr, &added);
    return;
  }
  RecordLine& record = records_.at(known->second);
  const RecordLine earlier = record;
  record.Fields.Merge(line.Fields);
  if (OnChange) OnChange(known->second, &earlier, ends ? nullptr : &record);
  if (!ends) return;
  const Place place = known->second;
  places_.erase(known);  // its key lies in the record
  records_.erase(place);
}

void RecordLog::Drop(const std::string& id) {
  RecordFields ended;
  ended.Set(EndedKey, int64{1});
  if (Find(id)) Merge({id, ended});
}

void RecordLog::ReadFrom(int64 position, bool wholeFile) {
  std::string bytes;
  {
    const std::lock_guard lock(guard_);
    bytes = ReadRest(*file_, position);
  }
  RecordText text = DecodeLines(bytes);
  {
    const std::lock_guard lock(guard_);
    position_ = position + static_cast<int64>(text.Whole);
    if (wholeFile) isCut_ = text.Whole < bytes.size();
  }
  if (wholeFile) lines_ = 0;
  places_.reserve(places_.size() + text.Lines.size());
  lines_ += text.Lines.size() - (wholeFile ? 0 : std::min<size_t>(1, text.Lines.size()));
  const bool mayDrop = wholeFile && !records_.empty();
  std::unordered_set<std::string> ids;
  for (RecordLine& line : text.Lines) {
    if (mayDrop) ids.insert(line.Id);
    Merge(std::move(line));
  }
  if (!wholeFile) return;
  if (mayDrop) DropAllBut(ids);
  if (text.Damaged > 0) SetAside(bytes);
}

/// What another process left out of the file that it put in place.
void RecordLog::DropAllBut(const std::unordered_set<std::string>& ids) {
  if (!backlog_.empty()) return;
  std::vector<std::string> gone;
  for (const auto& [place, record] : records_)
    if (!ids.contains(record.Id)) gone.push_back(record.Id);
  for (const std::string& id : gone) Drop(id);
}

void RecordLog::Read() {
  status_t status = StatusOk;
  {
    const std::lock_guard lock(guard_);
    Open(status);
  }
  Failed(status);
  if (status == StatusOk) ReadFrom(0, true);
  dirty_ = position_ > 0;  // who wrote last may have died before synchronising
}

void RecordLog::CatchUp() {
  EndHeap();
  int64 position = 0;
  bool replaced = false;
  {
    const std::lock_guard lock(guard_);
    status_t status = StatusOk;
    if (file_ && !IsOurs()) file_.reset(), position_ = 0;
    if (!Open(status)) return;
    position = position_;
    replaced = position == 0;
    if (file_->Size() <= position) return;
  }
  ReadFrom(position, replaced);
}

void RecordLog::SetAside(const std::string& bytes) {
  const std::string stem = path_ + " (damaged";
  std::string aside = stem + ")";
  for (int number = 2; files_.Kind(aside) != FileKind::Missing; ++number)
    aside = stem + ", " + std::to_string(number) + ")";
  const status_t status = WriteWholeFile(files_, aside, bytes);
  std::string words = "The file \"" + path_ +
                      "\" was damaged.  Kestrin goes on with what it could "
                      "read of it.";
  if (status == StatusOk) {
    words += "  The damaged file was set aside as \"" + aside + "\".";
    Compaction()();
  }
  if (report_) report_(words);
}

status_t RecordLog::Sync() {
  std::shared_ptr<OpenFile> file;
  bool folderIsNew = false;
  {
    const std::lock_guard lock(guard_);
    WriteDeferred();
    dirty_ = false;
    file = file_;
    folderIsNew = std::exchange(folderIsNew_, false);
  }
  if (!file) return -ENOENT;
  const status_t status = file->Sync();
  if (status == StatusOk && folderIsNew) return files_.SyncFolder(FolderOf(path_));
  return status;
}

std::function<void()> RecordLog::Compaction() {
  EndHeap();
  std::string text;
  for (const auto& [place, record] : records_) text += EncodeLine(record.Id, record.Fields);
  lines_ = records_.size();
  const std::lock_guard lock(guard_);
  return [this, text = std::move(text), covered = position_, old = file_] {
    if (old) Replace(text, covered, old);
  };
}

/// Renames first and then carries over what was appended meanwhile: whoever appends looks at the
/// name afterwards.
void RecordLog::Replace(const std::string& text, int64 covered,
                        const std::shared_ptr<OpenFile>& old) {
  const std::string temporary = path_ + "." + mark_;
  status_t status = StatusOk;
  std::shared_ptr<OpenFile> fresh =
      files_.Open(temporary, OpenReadWrite | OpenCreate | OpenErase | OpenAppend, status, Private);
  const auto giveUp = [&] { files_.Remove(temporary); };
  if (!fresh) return;
  if (!WriteWhole(*fresh, text) || fresh->Sync() != StatusOk) return giveUp();
  const std::unique_ptr<FileLock> held = Lock();
  const std::lock_guard lock(guard_);
  if (!held || file_ != old || !IsOurs()) return giveUp();
  const std::string since = ReadRest(*old, covered);
  if (!since.empty() && (!WriteWhole(*fresh, since) || fresh->Sync() != StatusOk)) return giveUp();
  if (files_.Rename(temporary, path_) != StatusOk) return giveUp();
  const std::string last = ReadRest(*old, covered + static_cast<int64>(since.size()));
  if (!last.empty()) WriteWhole(*fresh, last);
  files_.SyncFolder(FolderOf(path_));
  position_ += static_cast<int64>(text.size()) - covered;
  file_ = std::move(fresh);
  dirty_ = true;
}

}  // namespace kestrin
