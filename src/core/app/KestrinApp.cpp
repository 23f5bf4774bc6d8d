#include "core/app/KestrinApp.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <utility>

#include "core/app/OldOpenAlerts.h"
#include "core/delivery/CommandQueue.h"
#include "core/delivery/UnfinishedActs.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/files/OwnSets.h"
#include "core/journal/Journal.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/BackgroundWork.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/ports/BackgroundArgument.h"
#include "core/ports/Desktop.h"
#include "core/ports/UserInterface.h"
#include "core/ports/Workers.h"
#include "core/settings/KestrinSettings.h"
#include "core/settings/SettingsFile.h"
#include "core/timing/EventTypes.h"

namespace kestrin {

namespace {

constexpr std::chrono::seconds MostTimeForCopies(2);

constexpr char HelpFile[] = "Kestrin documentation.html";

}  // namespace

KestrinApp::KestrinApp(Context& context, AppParts parts)
    : context_(context),
      parts_(std::move(parts)),
      pass_(context,
            [this](const Message& message, bool mayFail) {
              if (mayFail)
                parts_.background.Launch(&message, {});
              else
                background_.LaunchBackgroundApp(&message);
            }),
      later_(context.files, parts_.stateFolder, parts_.mark,
             [this](const std::string& words) { context_.queue.Post(ErrorFound(words)); }),
      putOff_(context, later_),
      recovery_(context.files, parts_.processes, parts_.stateFolder),
      background_(context.notices, parts_.background, parts_.KestrinDir),
      unsaved_(context, recovery_),
      saving_(context, recovery_),
      settling_(context, saving_, later_),
      openAlerts_(context),
      watch_([this](const std::string& record) { ActionOverruns(record); }),
      absent_(context, parts_.stateFolder),
      opening_(context, recovery_, absent_, parts_.addSampleEvents,
               [this](const Event& event) { return putOff_.Has(event); }),
      passedOver_(context),
      others_(context, parts_.watcher),
      ending_(context, parts_, pass_, settling_, background_) {}

KestrinApp::~KestrinApp() {
  context_.watch = nullptr;
  context_.settings.WhenChanged = nullptr;
  context_.alerts.KeepWith(nullptr);
}

/// In the watch's thread, while the action blocks the main one. Writing copies may block as well,
/// by what the action holds.
void KestrinApp::ActionOverruns(const std::string& record) {
  if (context_.journal && !record.empty()) context_.journal->FailedNow(record, Overrun);
  const auto written = std::make_shared<std::promise<void>>();
  const bool started = context_.workers.Start("Copies", [this, written] {
    saving_.SaveRecoveryCopies();
    written->set_value();
  });
  if (started) written->get_future().wait_for(MostTimeForCopies);
  std::fputs("Add-ons may not block or take more than one second to deal with an event\n", stderr);
  std::abort();
}

void KestrinApp::Construct() {
  context_.watch = &watch_;
  background_.LaunchBackgroundApp(nullptr);
  const AutoLock settings(context_.settings.Protect);
  InitSettings(context_.settings, parts_.settings, context_.notices);
  // The box begins as the region has it; from then on it is the person's.
  if (parts_.usesClock24 && !parts_.settings.Get("WhichEventsToDeliver"))
    context_.settings.Time24Hour = parts_.usesClock24();
  delivering_ = context_.settings.WhichEventsToDeliver;
  context_.settings.WhenChanged = [this] { context_.queue.Post(SETTINGS_CHANGED); };
  parts_.loadHandlers();
  if (context_.journal) context_.journal->Read();
  passedOver_.Begin();
  putOff_.Read();
  if (context_.ownSets) context_.ownSets->Read(context_.settings.SetFileNames);
  const AutoLock open(context_.openSets.Protect);
  opening_.ReadSelectedSets();
  context_.alerts.KeepWith(&putOff_);
  pass_.Include(putOff_);
  pass_.WakeAlsoAt([this] { return absent_.NextTry(); });
}

bool KestrinApp::IsBackgroundStart(const std::vector<std::string>& arguments) {
  return std::find(arguments.begin(), arguments.end(), BackgroundArgument) != arguments.end();
}

void KestrinApp::ArgvReceived(const std::vector<std::string>& arguments) {
  const bool background = IsBackgroundStart(arguments);
  BackgroundOnlyStartup = BackgroundOnlyStartup || background;
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  for (const std::string& argument : arguments) {
    if (argument == BackgroundArgument) continue;
    if (argument.empty())
      context_.notices.ReportCompoundError(
          "KestrinApp::ArgvReceived: Could not create BPath for file ", argument, ".");
    else
      opening_.OpenSet(argument, !background);
  }
}

void KestrinApp::ReadyToRun() {
  opening_.BeginRunning();
  ending_.BeginRunning();
  {
    const AutoLock settings(context_.settings.Protect);
    const AutoLock open(context_.openSets.Protect);
    if (!BackgroundOnlyStartup && !DeliverOnly) opening_.OpenUserInterface();
  }
  if (context_.ui.HasScreen())
    for (const JournalRecord& record : TakeOverOldAlerts(context_, recovery_))
      openAlerts_.Show(record);
  const std::vector<JournalRecord> unfinished = FindUnfinishedActs(context_);
  openAlerts_.ShowAgain();
  GoOnWithUnfinishedActs(context_, unfinished);
  CheckZone();
  if (!DeliverOnly) pass_.PassWithStartupFlag();
  if (!BackgroundOnlyStartup && !DeliverOnly) return;
  if (opening_.AnyWindow() || ending_.CountRegWindProcHolds() > 0) return;
  ending_.QuitWhenIdle();
}

void KestrinApp::MessageReceived(const Message& message) {
  if (ending_.HasQuit()) return;
  Handle(message);
  if (!ending_.HasQuit()) unsaved_.Look();
}

void KestrinApp::Handle(const Message& message) {
  if (message.what == DELIVER_EVENTS) {
    DeliverOnly = true;
    CheckZone();
    if (message.Get<int32>("Late").value_or(0) > MostLateness) opening_.HealOpenSets();
  }
  // What reading the sets has changed waits for the first pass of the start, which has its flag.
  if (message.what == EVENT_SETS_CHANGED && !opening_.IsRunning() && !DeliverOnly) return;
  if (pass_.MessageReceived(message)) return;
  if (WindowMessage(message) || BackgroundMessage(message) || EndingMessage(message)) return;
  switch (message.what) {
    case PROCESS_HOLD_DONE:
      context_.holds.ProcessDone();
      break;
    case PASSES_AT_REST:
      if (passedOver_.HasGoneBack()) {
        opening_.HealOpenSets();
        context_.queue.Post(EVENT_SETS_CHANGED);
      }
      passedOver_.Rest();
      settling_.Rest();
      putOff_.FollowNames();
      absent_.TryAgain();
      others_.Look();
      break;
    case FILES_CHANGED:
      others_.Look();
      break;
    case JOURNAL_SYNCED:
      settling_.Synced();
      break;
    case WORK_DONE:
      context_.work->Done(message);
      break;
    case START_COMMANDS:
      context_.commands->GoOn();
      break;
    case COPY_EDITS:
      unsaved_.Copy();
      break;
    case ALERTS_WAITING:
      context_.alerts.OpenWaiting();
      break;
    case ERROR_FOUND:
      context_.notices.ReportError(message.Get<std::string>("text").value_or(""));
      break;
    case SETTINGS_CHANGED:
      SettingsChanged();
      break;
    case RESUMED:
      CheckZone();
      opening_.HealOpenSets();
      pass_.PassWithStartupFlag();
      break;
    default:
      break;
  }
}

bool KestrinApp::EndingMessage(const Message& message) {
  switch (message.what) {
    case SESSION_SAVED:
      ending_.SessionSaved();
      return true;
    case QUIT_REQUESTED:
      ending_.QuitMessage(message);
      return true;
    case FULL_QUIT_REQUESTED:
      ending_.FullQuit();
      return true;
    case FORCED_QUIT:
      ending_.ForcedQuit();
      return true;
    default:
      return false;
  }
}

bool KestrinApp::WindowMessage(const Message& message) {
  switch (message.what) {
    case NEW_EVENT_SET: {
      const AutoLock settings(context_.settings.Protect);
      const AutoLock open(context_.openSets.Protect);
      opening_.OpenSet("", true);
      return true;
    }
    case SHOW_SAMPLE: {
      const AutoLock settings(context_.settings.Protect);
      const AutoLock open(context_.openSets.Protect);
      opening_.ShowSample();
      return true;
    }
    case OPEN_EVENT_SET:
      context_.ui.ShowOpenPanel();
      return true;
    case OPEN_SETTINGS_WINDOW:
      context_.ui.ShowSettingsWindow();
      return true;
    case SHOW_HISTORY:
      context_.ui.ShowHistoryWindow(parts_.stateFolder);
      return true;
    case HELP_REQUESTED:
      HelpRequested(message);
      return true;
    case ABOUT_REQUESTED:
      context_.ui.ShowAboutWindow();
      return true;
    case OPEN_FILES:
      OpenFiles(message);
      return true;
    case SETS_OPENED:
      pass_.PassWithStartupFlag();
      return true;
    case SET_DISCARDED:
      RevertToSavedIfRemembered(message.Get<std::string>("path").value_or(""));
      return true;
    case ACTIVATE:
      Activate();
      return true;
    default:
      return false;
  }
}

void KestrinApp::OpenFiles(const Message& message) {
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  const bool window = message.Get<bool>("window").value_or(true);
  for (int i = 0; auto path = message.Get<std::string>(std::to_string(i)); ++i)
    opening_.OpenSet(*path, window);
  if (window) DeliverOnly = BackgroundOnlyStartup = false;
}

void KestrinApp::Activate() {
  DeliverOnly = BackgroundOnlyStartup = false;
  if (!opening_.IsRunning()) return;  // ReadyToRun opens the user interface
  const AutoLock settings(context_.settings.Protect);
  const AutoLock open(context_.openSets.Protect);
  opening_.Activate();
}

void KestrinApp::RevertToSavedIfRemembered(const std::string& path) {
  {
    const AutoLock settings(context_.settings.Protect);
    const AutoLock open(context_.openSets.Protect);
    opening_.RevertToSaved(path);
  }
  pass_.PassWithStartupFlag();
}

void KestrinApp::SettingsChanged() {
  context_.ui.SettingsChanged();
  {
    const AutoLock settings(context_.settings.Protect);
    WriteSettings(context_.settings, parts_.settings, context_.notices);
  }
  // A set that delivers from now on is like an opened one.
  const int32 delivering = context_.settings.WhichEventsToDeliver;
  if (std::exchange(delivering_, delivering) != delivering) pass_.PassWithStartupFlag();
}

bool KestrinApp::BackgroundMessage(const Message& message) {
  switch (message.what) {
    case BACKGROUND_LAUNCHED:
      background_.Launched(message);
      return true;
    case BACKGROUND_GONE:
      if (ending_.FullQuitProcess) return true;
      background_.LaunchBackgroundApp(nullptr);
      pass_.SendNextTime();
      return true;
    default:
      return false;
  }
}

void KestrinApp::HelpRequested(const Message& message) {
  const std::string chapter = message.Get<std::string>("Chapter").value_or("");
  const std::string path = parts_.KestrinDir + "/" + HelpFile;
  if (context_.files.Kind(path) == FileKind::Missing) {
    context_.notices.Inform(
        "Help file error",
        "The help could not be found.  It should reside in the same folder as the Kestrin "
        "application.  If you want to keep it elsewhere, make a link to it in the Kestrin folder "
        "and make sure the link is named \"Kestrin documentation.html\".",
        "Cancel");
    return;
  }
  ending_.ProcessHold();
  const bool started = context_.workers.Start("Help", [&context = context_, path, chapter] {
    if (!context.desktop.OpenPage(path, chapter))
      context.notices.ReportCompoundError("Kestrin found no program that shows its help, \"", path,
                                          "\".  Any web browser does.");
    context.queue.Post(PROCESS_HOLD_DONE);
  });
  if (!started) ending_.ProcessDone();
}

void KestrinApp::RecomputeAll() {
  const int64 now = context_.clock.Now();
  const AutoLock open(context_.openSets.Protect);
  for (const auto& set : context_.openSets.Sets) {
    const AutoLock lock(*set);
    const EventSet::DeliveryChange byItself(*set);
    for (const auto& event : set->Events()) {
      const bool overdue = event->GetNextEventTime() != 0 && event->GetNextEventTime() <= now;
      if (!overdue && event->GetStatus() != WaitingToNag) event->UpdateEventTime();
    }
  }
}

void KestrinApp::CheckZone() {
  const Zone zone = parts_.systemZone();
  const bool changed = zone.Name() != context_.zone.Name();
  context_.zone = zone;
  const AutoLock settings(context_.settings.Protect);
  const bool known = !context_.settings.ZoneName.empty();
  if (context_.settings.ZoneName == zone.Name() && !changed) return;
  context_.settings.ZoneName = zone.Name();
  context_.settings.Changed();
  if (known || changed) RecomputeAll();
}

}  // namespace kestrin
