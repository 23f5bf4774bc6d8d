// How the application opens its sets and shows them again.
#include <cstdio>

#include "core/app/AlertRecord.h"
#include "core/app/KestrinApp.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/files/EventSetFile.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/ports/EventActions.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

std::string KestrinApp::GetNextUntitledWindowName() {
  return "Untitled event set " + std::to_string(nextUntitled_++);
}

void KestrinApp::ReportOpening(ConstructorResult result, const std::string& path) {
  switch (result) {
    case ConstructorResult::Success:
      break;
    case ConstructorResult::CouldNotOpen:
      context_.notices.ReportCompoundError("Kestrin: Attempt to open event set ", path, " failed.");
      break;
    case ConstructorResult::CouldNotRead:
      context_.notices.ReportCompoundError(
          "Kestrin: Attempt to read event set ", path,
          " failed because a file error occurred.  The file may be corrupted.");
      break;
    default:
      context_.notices.ReportCompoundError("Kestrin: Attempt to create event set ", path,
                                           " failed because of an unknown error.");
  }
}

void KestrinApp::OpenSet(const std::string& path, bool openWindow) {
  if (path.empty()) {
    context_.openSets.Sets.push_back(
        std::make_unique<EventSet>(context_, GetNextUntitledWindowName()));
    if (openWindow) Show(*context_.openSets.Sets.back());
    return;
  }
  const std::string file = context_.files.Canonical(path);
  if (EventSet* const open = context_.openSets.FindFile(file)) {
    if (openWindow) Show(*open);
    return;
  }
  EventSet* const set = LoadSet(file);
  if (!set) return;
  if (openWindow) set->OpenWindow();
  // What was due when the set was opened meets the rule for missed events.
  if (running_) context_.queue.Post(SETS_OPENED);
}

/// A set may deliver because it is shown: a new window is like an opened set.
void KestrinApp::Show(EventSet& set) {
  if (!set.GetWindow() && running_) context_.queue.Post(SETS_OPENED);
  set.OpenWindow();
}

EventSet* KestrinApp::LoadSet(const std::string& file) {
  ConstructorResult result = ConstructorResult::Success;
  bool versionOK = true;
  SetFileReport report;
  auto set = std::make_unique<EventSet>(context_, file, &result, &versionOK, &report);
  if (!report.Fault.empty())
    std::fprintf(stderr, "kestrin: %s: %s\n", file.c_str(), report.Fault.c_str());
  ReportOpening(result, file);
  if (result != ConstructorResult::Success || !versionOK) return nullptr;
  context_.openSets.Sets.push_back(std::move(set));
  return context_.openSets.Sets.back().get();
}

/// A set on a disk that is not mounted is only away for now.
bool KestrinApp::KeepsMissingFile(const std::string& path) const {
  const std::string folder = path.substr(0, path.rfind('/'));
  return context_.files.Kind(path) == FileKind::Missing && !folder.empty() &&
         context_.files.Kind(folder) != FileKind::Folder;
}

void KestrinApp::ReadSelectedSets() {
  std::vector<std::string>& names = context_.settings.SetFileNames;
  for (size_t i = 0; i < names.size();) {
    names[i] = context_.files.Canonical(names[i]);
    OpenSet(names[i], false);
    if (context_.openSets.FindFile(names[i]) || KeepsMissingFile(names[i])) {
      ++i;
      continue;
    }
    names.erase(names.begin() + static_cast<std::ptrdiff_t>(i));
    context_.settings.Changed();
  }
}

bool KestrinApp::AnyWindow() const {
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets)
    if (set->GetWindow()) return true;
  return false;
}

void KestrinApp::OpenRecovered() {
  for (const std::string& path : recovery_.Copies()) {
    bool isOpen = false;
    for (const auto& set : context_.openSets.Sets) isOpen |= set->RecoveredFrom() == path;
    if (isOpen) continue;
    EventSet* const set = LoadSet(path);
    if (!set) continue;
    set->BecomeRecovered(GetNextUntitledWindowName());
    Show(*set);
  }
}

void KestrinApp::OpenUserInterface() {
  const int32 handling = context_.settings.SelectedSetHandling;
  if (handling < ShowNever && (handling == ShowAlways || !AnyWindow()))
    for (const std::string& name : context_.settings.SetFileNames)
      if (EventSet* const set = context_.openSets.FindFile(name)) Show(*set);
  OpenRecovered();
  if (!AnyWindow()) OpenSet("", true);
}

void KestrinApp::OpenFiles(const Message& message) {
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  const bool window = message.Get<bool>("window").value_or(true);
  for (int i = 0; auto path = message.Get<std::string>(std::to_string(i)); ++i)
    OpenSet(*path, window);
  if (window) DeliverOnly = BackgroundOnlyStartup = false;
}

void KestrinApp::Activate() {
  DeliverOnly = BackgroundOnlyStartup = false;
  if (!running_) return;  // ReadyToRun opens the user interface
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets)
    if (set->GetWindow()) {
      set->OpenWindow();
      return;
    }
  OpenUserInterface();
}

void KestrinApp::RevertToSavedIfRemembered(const std::string& path) {
  {
    const AutoLock settings(context_.settings.Protect);
    const AutoLock open(context_.openSets.Protect);
    if (EventSet* const set = context_.openSets.FindFile(path)) {
      const EventSet::DeliveredEvents delivered = set->DeliveredUnsaved();
      const uint64 handle = set->GetHandle();
      SetWindow* const window = set->GetWindow();
      if (window) window->CloseNow();  // which may be the end of the set
      context_.openSets.Destroy(context_.openSets.FindHandle(handle));
      EventSet* const fresh = LoadSet(path);
      if (fresh) {
        const AutoLock lock(*fresh);
        fresh->MoveOnDelivered(delivered, context_.clock.Now());
      }
      if (fresh && window) fresh->OpenWindow();
    }
  }
  pass_.PassWithStartupFlag();
}

void KestrinApp::ShowRecordedAlerts() {
  if (!context_.ui.HasScreen()) return;
  recordShown_ = true;
  for (Message& record : recovery_.RecordedAlerts()) recorded_.emplace_back(std::move(record));
  for (size_t place = 0; place < recorded_.size(); ++place) ShowRecorded(place);
}

void KestrinApp::ShowRecorded(size_t place) {
  const Message record = *recorded_[place];
  std::optional<AlertRequest> request = AlertOfRecord(record);
  Event* const event = EventOfRecord(record, context_.openSets);
  if (!request) {
    RecordedAlertDone(place);
    return;
  }
  if (request->Role == AlertRole::Question && event) {
    // Asks again; when it occurred is only known while it stands at that occurrence.
    const bool same = event->GetActualEventTime() == request->Occurrence;
    context_.actions.DeliverEvent(*event, same);
    RecordedAlertDone(place);
    return;
  }
  const bool reply =
      event && (request->Role == AlertRole::Prewarning || request->Role == AlertRole::Nag);
  const uint32 code = !reply                                   ? PROCESS_HOLD_DONE
                      : request->Role == AlertRole::Prewarning ? PREWARN_ALERT_REPLY
                                                               : NAG_ALERT_REPLY;
  Message done(code);
  if (reply) {
    request->Set = event->GetOwner()->GetHandle();
    request->Event = event->GetHandle();
    done.Set("Event", static_cast<int64>(request->Event));
    done.Set("EventSet", static_cast<int64>(request->Set));
    done.Set("Occurrence", request->Occurrence);
  }
  context_.holds.ProcessHold(request->Set);
  request->Done = [this, place, done](int which) mutable {
    done.Set("which", int32{which});
    context_.queue.Post(done);
    RecordedAlertDone(place);
  };
  context_.alerts.Show(std::move(*request));
}

/// An alert that was shown again and is answered needs no record any more.
void KestrinApp::RecordedAlertDone(size_t place) {
  if (ending_) return;
  recorded_[place].reset();
  std::vector<Message> left;
  for (const std::optional<Message>& record : recorded_)
    if (record) left.push_back(*record);
  recovery_.RecordAlerts(left);
}

}  // namespace kestrin
