#include "core/app/AppEnding.h"

#include <utility>

#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/MessageQueue.h"
#include "core/ports/UserInterface.h"
#include "core/settings/SettingsFile.h"

namespace kestrin {

AppEnding::AppEnding(Context& context, const AppParts& parts, DeliveryPass& pass,
                     Settling& settling, BackgroundContact& background)
    : DocumentApp(context.holds),
      context_(context),
      parts_(parts),
      pass_(pass),
      settling_(settling),
      background_(background) {}

/// Nobody needs to be asked any longer whether their changes are to be saved.
void AppEnding::QuitAbandoned() {
  const bool asked = std::exchange(QuitProcess, false);
  FullQuitProcess = false;
  if (asked) context_.alerts.DismissPrompts();
}

void AppEnding::FullQuit() {
  FullQuitProcess = true;
  QuitAgain(false);
}

/// Puts a quit that has begun at the queue's end.
void AppEnding::QuitAgain(bool ifIdle) {
  BeginQuit();
  context_.queue.Post(QuitOnceMore(ifIdle));
}

bool AppEnding::SomethingWaits() const {
  const MessageQueue& queue = context_.queue;
  for (const uint32 code :
       {uint32{NEW_EVENT_SET}, uint32{OPEN_FILES}, uint32{SETS_OPENED}, uint32{SET_DISCARDED},
        uint32{ACTIVATE}, uint32{DELIVER_EVENTS}, uint32{EVENT_DEALT_WITH},
        uint32{EVENT_SETS_CHANGED}, uint32{BACKGROUND_LAUNCHED}})
    if (queue.Holds(code)) return true;
  return pass_.IsDealing();
}

void AppEnding::QuitWhenIdle() { context_.queue.Post(QuitIfIdle()); }

/// "IfIdle": the last hold was given back, nobody asked. "Again": it has begun before.
void AppEnding::QuitMessage(const Message& message) {
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

bool AppEnding::CloseWindows() {
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

void AppEnding::CommitAllEdits() {
  for (const auto& set : context_.openSets.Sets) set->CommitEdits();
}

void AppEnding::Quit() {
  if (FullQuitProcess)
    parts_.background.AskToQuit();
  else
    pass_.SendNextTime();
  settling_.SaveEverything();
  WriteSettings();
  background_.Finish();
  if (!context_.alerts.Empty())
    return;  // a failed save is to be read first; its hold ends in a quit
  if (parts_.bus.Leave()) {
    CloseEverything();
    WriteSettings();  // what handlers have left there as they went
    parts_.endLoop();
    return;
  }
  CancelQuitProcess();
  QuitWhenIdle();
}

void AppEnding::WriteSettings() {
  const AutoLock settings(context_.settings.Protect);
  kestrin::WriteSettings(context_.settings, parts_.settings, context_.notices);
}

/// The session may go on all the same: nothing closes.
void AppEnding::SessionSaved() {
  CommitAllEdits();
  settling_.SaveEverything();
  WriteSettings();
}

void AppEnding::ForcedQuit() {
  CommitAllEdits();
  context_.alerts.EndByForce();
  pass_.SendNextTime();
  settling_.SaveEverything();
  CloseEverything();
  WriteSettings();
  parts_.background.Finish();
  parts_.bus.Leave();
  parts_.endLoop();
}

/// Windows, sets, handlers: each may still say something to the settings, which are written after.
void AppEnding::CloseEverything() {
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
  settling_.Finish();
  parts_.unloadHandlers();
}

}  // namespace kestrin
