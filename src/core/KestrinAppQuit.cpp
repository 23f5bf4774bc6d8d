// How the application ends: by itself when nothing holds it, by the user's wish, or by force.
#include "core/AlertDesk.h"
#include "core/AlertRecord.h"
#include "core/EventSet.h"
#include "core/KestrinApp.h"
#include "core/KestrinSettings.h"
#include "core/MessageQueue.h"
#include "core/Notices.h"
#include "core/OpenSets.h"
#include "core/SettingsFile.h"
#include "core/UserInterface.h"

namespace kestrin {

void KestrinApp::QuitAbandoned() { FullQuitProcess = QuitProcess = false; }

void KestrinApp::FullQuit() {
  FullQuitProcess = true;
  context_.queue.Post(QUIT_REQUESTED);
}

bool KestrinApp::SomethingWaits() const {
  const MessageQueue& queue = context_.queue;
  for (const uint32 code :
       {uint32{NEW_EVENT_SET}, uint32{OPEN_FILES}, uint32{SETS_OPENED}, uint32{ACTIVATE},
        uint32{DELIVER_EVENTS}, uint32{EVENT_DEALT_WITH}, uint32{EVENT_SETS_CHANGED}})
    if (queue.Holds(code)) return true;
  return pass_.IsDealing();
}

/// "IfIdle": the last hold was given back, nobody asked. "Again": it was put off once.
void KestrinApp::QuitMessage(const Message& message) {
  const bool ifIdle = message.Get<bool>("IfIdle").value_or(false);
  if (ifIdle && CountRegWindProcHolds() > 0) return;
  if (message.Has("Again") && !IsQuitInProgress()) return;  // a window has opened since
  if (SomethingWaits()) {
    BeginQuit();
    Message again(QUIT_REQUESTED);
    again.Set("IfIdle", ifIdle);
    again.Set("Again", true);
    context_.queue.Post(std::move(again));
    return;
  }
  QuitProcess = true;
  CommitAllEdits();
  if (QuitRequested() && CountRegWindProcHolds() == 0) Quit();
}

bool KestrinApp::CloseWindows() {
  // Closing a window may destroy its set: by handle, not by place.
  std::vector<uint64> handles;
  for (const auto& set : OpenSets::Sets) handles.push_back(set->GetHandle());
  bool all = true;
  for (const uint64 handle : handles)
    if (EventSet* const set = OpenSets::FindHandle(handle); set && set->GetWindow())
      all &= set->GetWindow()->RequestClose();
  return all;
}

void KestrinApp::CommitAllEdits() {
  for (const auto& set : OpenSets::Sets) {
    for (const auto& event : set->Events())
      if (EditorWindow* const editor = event->GetWindow()) editor->CommitEdits();
    if (SetWindow* const window = set->GetWindow()) window->CommitEdits();
  }
}

void KestrinApp::SaveModifiedSets() {
  const AutoLock open(OpenSets::Protect);
  for (const auto& set : OpenSets::Sets) {
    if (!set->HasBeenModified()) continue;
    const bool saved =
        set->IsUntitled() ? recovery_.SaveCopy(*set) : set->SaveData(EventSet::SavedBy::Itself);
    // Told once: the quit that follows when the alert is closed goes on.
    if (saved || !saveReported_.insert(set->GetHandle()).second) continue;
    context_.notices.ReportCompoundError("Kestrin was unable to save the event set ",
                                         set->GetFileName(), ".");
    if (!set->IsUntitled()) recovery_.SaveCopy(*set);
  }
}

/// Before an overrun stops the program: everything modified, whatever the state it is in.
void KestrinApp::SaveRecoveryCopies() {
  for (const auto& set : OpenSets::Sets)
    if (set->HasBeenModified()) recovery_.SaveCopy(*set);
}

void KestrinApp::Quit() {
  if (FullQuitProcess)
    parts_.background.AskToQuit();
  else
    pass_.SendNextTime();
  SaveModifiedSets();
  {
    const AutoLock settings(KestrinSettings::Protect);
    WriteSettings(parts_.settings, context_.notices);
  }
  const bool told = context_.alerts.Empty();  // a failed save is still to be read
  if (!told || !parts_.bus.Leave()) {
    CancelQuitProcess();
    return;
  }
  End();
}

void KestrinApp::ForcedQuit() {
  ending_ = true;
  CommitAllEdits();
  std::vector<Message> records;
  for (const AlertRequest& request : context_.alerts.EndByForce())
    records.push_back(RecordAlert(request));
  recovery_.RecordAlerts(records);
  pass_.SendNextTime();
  SaveModifiedSets();
  {
    const AutoLock settings(KestrinSettings::Protect);
    WriteSettings(parts_.settings, context_.notices);
  }
  parts_.bus.Leave();
  End();
}

void KestrinApp::End() {
  hasQuit_ = true;
  std::vector<SetWindow*> windows;
  for (const auto& set : OpenSets::Sets)
    if (set->GetWindow()) windows.push_back(set->GetWindow());
  for (SetWindow* const window : windows) window->CloseNow();
  {
    const AutoLock open(OpenSets::Protect);
    OpenSets::Sets.clear();
  }
  parts_.unloadHandlers();
  parts_.endLoop();
}

}  // namespace kestrin
