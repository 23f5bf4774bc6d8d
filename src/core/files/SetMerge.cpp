#include "core/files/SetMerge.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "core/files/EventRecordFile.h"
#include "core/journal/JournalRecord.h"
#include "core/ports/UserInterface.h"
#include "kestrin/BufferedFile.h"
#include "support/Opened.h"

namespace kestrin {

namespace {

constexpr int32 MergeBuffer = 65536;

struct FreshEvent {
  std::unique_ptr<Event> event;
  int64 block = 0;  ///< where the data of its handler begin, with their count
  Event* known = nullptr;
};

std::vector<FreshEvent> ReadFresh(EventSet& set, const std::string& path, SetFileReport& report) {
  std::vector<std::unique_ptr<Event>> events;
  std::vector<int64> blocks;
  report.Events = &events;
  report.OnHandlerData = [&blocks](const Event&, int64 offset, int64) {
    blocks.push_back(offset - static_cast<int64>(sizeof(uint32)));
  };
  ReadSetFile(set, path, report);
  report.Events = nullptr;
  report.OnHandlerData = nullptr;
  std::vector<FreshEvent> fresh;
  for (size_t i = 0; i < events.size() && report.Fault.empty(); ++i)
    fresh.push_back({std::move(events[i]), blocks[i], nullptr});
  return fresh;
}

/// Those of the set that the file has not, and for the others who they are.
std::vector<Event*> Match(EventSet& set, std::vector<FreshEvent>& fresh) {
  std::map<EventName, Event*> known;
  for (const auto& event : set.Events())
    known.emplace(set.FileNames().Of(set, *event), event.get());
  std::map<std::pair<std::string, std::string>, int32> counts;
  for (FreshEvent& each : fresh) {
    EventName name{each.event->GetName(), each.event->GetHandlerName(), 0};
    name.Place = counts[{name.Name, name.Handler}]++;
    const auto found = known.find(name);
    if (found == known.end()) continue;
    each.known = found->second;
    known.erase(found);
  }
  std::vector<Event*> gone;
  for (const auto& [name, event] : known) gone.push_back(event);
  return gone;
}

/// Data know the event that they were made for: they are read once more for the one that stays.
/// What is kept unread stays so.
void TakeData(const FreshEvent& fresh, EndianIndependentFile& file, std::string& complaint) {
  Event& event = *fresh.known;
  if (fresh.event->GetSelectedHandler() == UnknownHandler &&
      event.GetSelectedHandler() == UnknownHandler)
    return;
  EditorWindow* const editor = event.GetWindow();
  if (editor) editor->RemoveEditView();
  file.Seek(fresh.block - 1, SEEK_SET);  // which does not count the marker
  ReadHandlerData(event, fresh.event->GetHandlerName(), file, complaint);
  if (editor) editor->AddEditView();
}

}  // namespace

bool MergeFromFile(EventSet& set, const std::string& path, SetFileReport& report) {
  std::vector<FreshEvent> fresh = ReadFresh(set, path, report);
  if (!report.Fault.empty()) return false;
  Opened<EndianIndependentFile> file(set.GetContext().files, path, OpenReadOnly, MergeBuffer);
  if (file.InitCheck() != StatusOk) return report.Fault = "it cannot be read again", false;
  const EventSet::DeliveryChange byItself(set);
  const AutoLock lock(set);
  if (const std::vector<Event*> gone = Match(set, fresh); !gone.empty()) set.RemoveEvents(gone);
  for (FreshEvent& each : fresh) {
    if (each.known) {
      each.known->TakeValues(*each.event);
      TakeData(each, file, report.Complaint);
    } else {
      each.event->SetShouldWindowOpen(false);
      set.AddEvent(std::move(each.event));
    }
  }
  return true;
}

}  // namespace kestrin
