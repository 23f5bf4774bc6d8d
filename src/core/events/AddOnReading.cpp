#include "core/events/AddOnReading.h"

#include "core/journal/Journal.h"

namespace kestrin {

AddOnReading::AddOnReading(Context& context, std::string path)
    : context_(context), path_(std::move(path)) {}

AddOnReading::~AddOnReading() {
  if (!id_.empty()) context_.journal->Forget(id_);
}

bool AddOnReading::Begin(const std::string& name, const std::string& handler) {
  if (!context_.journal) return true;
  const EventName event{name, handler, counts_[{name, handler}]++};
  if (context_.journal->IsKeptUnread(path_, event)) return false;
  Begin(event);
  return true;
}

void AddOnReading::Begin(const EventName& event) {
  if (!context_.journal) return;
  if (!id_.empty()) return context_.journal->GoesOnWith(id_, event);
  JournalRecord record;
  record.Set = path_;
  record.Event = event;
  record.Act = ActStage::Reading;
  id_ = context_.journal->Begin(std::move(record));
}

}  // namespace kestrin
