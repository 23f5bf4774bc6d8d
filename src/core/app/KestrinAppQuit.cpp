// How the application ends: by itself when nothing holds it, by the user's wish, or by force.
#include <utility>

#include "core/app/AlertRecord.h"
#include "core/app/KestrinApp.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/ports/UserInterface.h"
#include "core/settings/KestrinSettings.h"
#include "core/settings/SettingsFile.h"

namespace kestrin {

/// Nobody needs to be asked any longer whether their changes are to be saved.
void KestrinApp::QuitAbandoned() {
  const bool asked = std::exchange(QuitProcess, false);
  FullQuitProcess = false;
  if (asked) context_.alerts.DismissPrompts();
}

void KestrinApp::FullQuit() {
  FullQuitProcess = true;
  QuitAgain(false);
}

/// Puts a quit that has begun at the queue's end.
void KestrinApp::QuitAgain(bool ifIdle) {
  BeginQuit();
  Message again(QUIT_REQUESTED);
  again.Set("IfIdle", ifIdle);
  again.Set("Again", true);
  context_.queue.Post(std::move(again));
}

bool KestrinApp::SomethingWaits() const {
  const MessageQueue& queue = context_.queue;
  for (const uint32 code :
       {uint32{NEW_EVENT_SET}, uint32{OPEN_FILES}, uint32{SETS_OPENED}, uint32{SET_DISCARDED},
        uint32{ACTIVATE}, uint32{DELIVER_EVENTS}, uint32{EVENT_DEALT_WITH},
        uint32{EVENT_SETS_CHANGED}, uint32{BACKGROUND_LAUNCHED}})
    if (queue.Holds(code)) return true;
  return pass_.IsDealing();
}

void KestrinApp::QuitWhenIdle() {
  Message quit(QUIT_REQUESTED);
  quit.Set("IfIdle", true);
  context_.queue.Post(std::move(quit));
}

/// "IfIdle": the last hold was given back, nobody asked. "Again": it has begun before.
void KestrinApp::QuitMessage(const Message& message) {
  const bool ifIdle = message.Get<bool>("IfIdle").value_or(false);
  if (ifIdle && (!running_ || CountRegWindProcHolds() > 0)) return;  // ReadyToRun asks by itself
  if (message.Has("Again") && !IsQuitInProgress()) return;           // a window has opened since
  if (SomethingWaits()) {
    QuitAgain(ifIdle);
    return;
  }
  QuitProcess = true;
  CommitAllEdits();
  if (QuitRequested() && CountRegWindProcHolds() == 0) Quit();
}

bool KestrinApp::CloseWindows() {
  // Closing a window may destroy its set: by handle, not by place.
  std::vector<uint64> handles;
  for (const auto& set : context_.openSets.Sets) handles.push_back(set->GetHandle());
  bool all = true;
  for (const uint64 handle : handles)
    if (EventSet* const set = context_.openSets.FindHandle(handle); set && set->GetWindow())
      all &= set->GetWindow()->RequestClose();
  // While a set's window stays, the quit may still be given up.
  if (all) context_.ui.CloseOtherWindows();
  return all;
}

void KestrinApp::CommitAllEdits() {
  for (const auto& set : context_.openSets.Sets) set->CommitEdits();
}

void KestrinApp::SaveModifiedSets() {
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets) {
    const bool titled = !set->IsUntitled();
    if (!set->HasBeenModified() || (titled && SaveItself(*set))) {
      if (titled) recovery_.Forget(*set);
      continue;
    }
    // What only deliveries have changed is delivered again.
    if (titled && set->OnlyDeliveriesChanged()) continue;
    if (!recovery_.SaveCopy(*set) && !titled) ReportUnsaved(*set);
  }
}

bool KestrinApp::SaveItself(EventSet& set) {
  if (!set.SaveData(EventSet::SavedBy::Itself)) {
    ReportUnsaved(set);
    return false;
  }
  saveReported_.erase(set.GetHandle());
  return true;
}

/// Once: the quit that follows when the alert is closed goes on.
void KestrinApp::ReportUnsaved(const EventSet& set) {
  if (!saveReported_.insert(set.GetHandle()).second) return;
  context_.notices.ReportCompoundError("Kestrin was unable to save the event set ",
                                       set.GetFileName(), ".");
}

/// Before an overrun stops the program: everything modified, whatever the state it is in.
void KestrinApp::SaveRecoveryCopies() {
  for (const auto& set : context_.openSets.Sets)
    if (set->HasBeenModified()) recovery_.SaveCopy(*set);
}

void KestrinApp::Quit() {
  if (FullQuitProcess)
    parts_.background.AskToQuit();
  else
    pass_.SendNextTime();
  SaveModifiedSets();
  {
    const AutoLock settings(context_.settings.Protect);
    WriteSettings(context_.settings, parts_.settings, context_.notices);
  }
  if (const auto outcome = parts_.background.Finish()) BackgroundLaunched(*outcome);
  if (!context_.alerts.Empty())
    return;  // a failed save is to be read first; its hold ends in a quit
  if (parts_.bus.Leave()) {
    End();
    return;
  }
  CancelQuitProcess();
  QuitWhenIdle();
}

/// The session may go on all the same: nothing closes.
void KestrinApp::SessionSaved() {
  CommitAllEdits();
  SaveModifiedSets();
  const AutoLock settings(context_.settings.Protect);
  WriteSettings(context_.settings, parts_.settings, context_.notices);
}

void KestrinApp::ForcedQuit() {
  ending_ = true;
  CommitAllEdits();
  std::vector<Message> records;
  if (!recordShown_) records = recovery_.RecordedAlerts();
  for (const AlertRequest& request : context_.alerts.EndByForce())
    if (request.Role != AlertRole::Prompt)
      records.push_back(RecordAlert(request, context_.openSets));
  recovery_.RecordAlerts(records);
  pass_.SendNextTime();
  SaveModifiedSets();
  {
    const AutoLock settings(context_.settings.Protect);
    WriteSettings(context_.settings, parts_.settings, context_.notices);
  }
  parts_.background.Finish();
  parts_.bus.Leave();
  End();
}

void KestrinApp::End() {
  hasQuit_ = true;
  std::vector<SetWindow*> windows;
  for (const auto& set : context_.openSets.Sets)
    if (set->GetWindow()) windows.push_back(set->GetWindow());
  for (SetWindow* const window : windows) window->CloseNow();
  context_.ui.CloseOtherWindows();
  {
    const AutoLock open(context_.openSets.Protect);
    context_.openSets.Sets.clear();
  }
  parts_.unloadHandlers();
  parts_.endLoop();
}

}  // namespace kestrin
