#include "core/app/AbsentSets.h"

#include <errno.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <utility>
#include <vector>

#include "core/loop/AppMessages.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/Workers.h"
#include "core/settings/KestrinSettings.h"
#include "kestrin/BufferedFile.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

constexpr int64 Hour = 3600, Day = 24 * Hour;

/// Missing, and not for want of its folder: nobody has only unplugged or unmounted it.
bool IsGone(FileDoor& files, const std::string& path) {
  status_t status = StatusOk;
  if (files.Open(path, OpenReadOnly, status) || status != -ENOENT) return false;
  const std::string folder = path.substr(0, path.rfind('/'));
  return files.Kind(folder.empty() ? "/" : folder) == FileKind::Folder;
}

}  // namespace

AbsentSets::AbsentSets(Context& context, const std::string& stateFolder)
    : context_(context), file_(stateFolder + "/absent-sets") {
  Read();
}

/// A line each. One that cannot be understood is left out: its file is reported once more.
void AbsentSets::Read() {
  status_t status = StatusOk;
  const std::string lines = ReadWholeFile(context_.files, file_, status).value_or("");
  for (size_t at = 0; at < lines.size();) {
    const size_t end = std::min(lines.find('\n', at), lines.size());
    const auto line = Message::Unflatten(std::string_view(lines).substr(at, end - at));
    const auto path = line ? line->Get<std::string>("Path") : std::nullopt;
    if (path) absent_[*path] = line->Get<int64>("MissingSince").value_or(0);
    at = end + 1;
  }
}

void AbsentSets::Write() {
  if (!std::exchange(changed_, false)) return;
  std::string lines;
  for (const auto& [path, since] : absent_) {
    Message line;
    line.Set("Path", path);
    line.Set("MissingSince", since);
    lines += line.Flatten() + "\n";
  }
  const std::string folder = file_.substr(0, file_.rfind('/'));
  status_t status = context_.files.MakeFolders(folder, 0700);
  if (status == StatusOk) status = WriteWholeFile(context_.files, file_, lines);
  if (status != StatusOk)
    std::fprintf(stderr, "kestrin: %s could not be written (%d)\n", file_.c_str(), status);
}

bool AbsentSets::StaysRemembered(const std::string& path) {
  const int64 now = context_.clock.Now();
  const bool known = absent_.contains(path);
  int64& since = absent_[path];
  const int64 before = std::exchange(since, IsGone(context_.files, path) ? now : 0);
  tried_ = now;
  if (before != 0 && since != 0) {
    if (now - before >= Day) {
      Forget(path);
      return false;
    }
    since = std::min(before, now);  // a clock that was ahead
  }
  changed_ = changed_ || !known || since != before;
  return true;
}

void AbsentSets::Forget(const std::string& path) { changed_ = absent_.erase(path) > 0 || changed_; }

/// A mount that does not answer keeps the worker, and nobody else; while it does, no second one is
/// started.
void AbsentSets::TryAgain() {
  {
    const AutoLock lock(context_.settings.Protect);
    for (auto each = absent_.begin(); each != absent_.end();) {
      const bool keeps = context_.settings.IsFileRemembered(each->first);
      changed_ = changed_ || !keeps;
      each = keeps ? std::next(each) : absent_.erase(each);
    }
  }
  Write();
  if (absent_.empty()) return;
  tried_ = context_.clock.Now();
  if (trying_->exchange(true)) return;
  std::vector<std::string> paths;
  for (const auto& [path, since] : absent_) paths.push_back(path);
  const auto look = [&files = context_.files, &queue = context_.queue, paths, trying = trying_] {
    std::vector<std::string> back;
    for (const std::string& path : paths) {
      status_t status = StatusOk;
      if (files.Open(path, OpenReadOnly, status)) back.push_back(path);
    }
    *trying = false;
    if (!back.empty()) queue.Post(OpenFiles(back, false));
  };
  if (!context_.workers.Start("Absent sets", look)) *trying_ = false;
}

int64 AbsentSets::NextTry() const { return absent_.empty() ? 0 : tried_ + Hour; }

}  // namespace kestrin
