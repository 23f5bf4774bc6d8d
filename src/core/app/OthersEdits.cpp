#include "core/app/OthersEdits.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/BackgroundWork.h"
#include "core/loop/MessageCodes.h"
#include "core/loop/MessageQueue.h"
#include "core/settings/KestrinSettings.h"
#include "support/FileDoor.h"

namespace kestrin {

void OthersEdits::Look() {
  if (looks_) {
    again_ = true;
    return;
  }
  std::set<std::string> files;
  std::vector<std::pair<std::string, FileStamp>> known;
  {
    const AutoLock open(context_.openSets.Protect);
    for (const auto& set : context_.openSets.Sets) {
      const auto stamp = set->File().KnownStamp();
      if (stamp) files.insert(set->GetFileName());
      if (stamp && !set->HasBeenModified()) known.emplace_back(set->GetFileName(), *stamp);
    }
  }
  if (watcher_) watcher_->Watch(files);
  if (known.empty()) return;
  const auto look = [&files = context_.files, known = std::move(known)] {
    Message answer;
    for (const auto& [path, stamp] : known) {
      const std::optional<FileStamp> now = files.Stamp(path);
      if (now && *now != stamp) answer.Set("Changed", true);
    }
    return answer;
  };
  looks_ = context_.work->Start("Others' edits", look, [this](const Message& answer) {
    looks_ = false;
    if (answer.Has("Changed")) Take();
    if (std::exchange(again_, false)) Look();
  });
}

void OthersEdits::Take() {
  bool hasTaken = false;
  {
    const AutoLock settings(context_.settings.Protect);
    const AutoLock open(context_.openSets.Protect);
    for (const auto& set : context_.openSets.Sets)
      hasTaken = set->File().TakeOthersEdits() || hasTaken;
  }
  if (hasTaken) context_.queue.Post(EVENT_SETS_CHANGED);
}

}  // namespace kestrin
