// kestrin: edits event sets and delivers events; one process per session bus.
#include <QApplication>
#include <QFontDatabase>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "core/app/KestrinApp.h"
#include "core/delivery/CommandQueue.h"
#include "core/delivery/ReminderFaces.h"
#include "core/events/AddOnServices.h"
#include "core/events/HandlerTable.h"
#include "core/events/OpenSets.h"
#include "core/files/OwnSets.h"
#include "core/journal/Journal.h"
#include "core/journal/JournalRecord.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/AppMessages.h"
#include "core/loop/BackgroundWork.h"
#include "core/loop/MessageCodes.h"
#include "core/loop/Notices.h"
#include "core/ports/Clock.h"
#include "core/ports/Workers.h"
#include "core/settings/BuiltInPrefs.h"
#include "core/settings/KestrinSettings.h"
#include "handlers/HandlerActions.h"
#include "handlers/LoadEventHandlers.h"
#include "handlers/SampleEvents.h"
#include "interface/QtUserInterface.h"
#include "interface/fields/Region.h"
#include "programs/Asked.h"
#include "programs/kestrin/DesktopSession.h"
#include "session/ApplicationBus.h"
#include "session/BusBackground.h"
#include "session/BusNotifications.h"
#include "session/CtlReminderCheck.h"
#include "session/DisplayProbe.h"
#include "session/LogindWatch.h"
#include "session/LoopTimers.h"
#include "session/PortalFilePanels.h"
#include "session/ProcessInfo.h"
#include "session/QueueRunner.h"
#include "session/ReminderSound.h"
#include "session/SystemDesktop.h"
#include "session/SystemFileWatcher.h"
#include "session/SystemProcesses.h"
#include "session/UnixSignals.h"
#include "support/LocalTime.h"

namespace kestrin {
namespace {

constexpr char Help[] =
    "usage: kestrin [FILE...]        open event sets; without one, what the settings say\n"
    "       kestrin -background      give the time of the next event to KestrinBackground and "
    "leave\n"
    "       kestrin --help | --version\n";
constexpr char Version[] = "kestrin " KESTRIN_VERSION "\n";

/// The first reminder of the sample, in seconds: time enough to see what is in it.
constexpr int32 WelcomeAfter = 10;

constexpr char UserAddOns[] = "/.local/lib/kestrin/add-ons";

std::string FromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

std::string ProcessMark() {
  char mark[17];
  std::snprintf(mark, sizeof mark, "%016llx",
                static_cast<unsigned long long>(Fnv64(TextOf(SystemProcesses().Self()))));
  return mark;
}

/// Everything the application is made of, in the order in which it is built.
struct Parts {
  Parts(MessageQueue& messages, ApplicationBus& applicationBus)
      : queue(messages), bus(applicationBus) {
    context.timers = &timers;
    context.work = &work;
    context.commands = &commands;
    context.ownSets = &ownSets;
    context.filePanels = &filePanels;
    context.journal = &journal;
    context.reminderCheck = &reminderCheck;
    ui.Connect(context, app.Ending());
    faces.Connect(context);
  }

  AppParts ForApp() {
    return {background,
            bus,
            store,
            processes,
            ExecutableFolder(),
            StateFolder() + "/kestrin",
            [this] {
              LoadEventHandlers(context, &store, ExecutableFolder(),
                                FromEnvironment("HOME") + UserAddOns);
            },
            [this] { UnloadEventHandlers(context); },
            Zone::System,
            [] { QCoreApplication::exit(); },
            ProcessMark(),
            [](EventSet& set) { SampleEvents(set).AddSample(WelcomeAfter); },
            [] { return UsesClock24(QLocale::system()); },
            &watcher};
  }

  void Sound() {
    const AutoLock lock(settings.Protect);
    if (settings.ReminderSound == NoSound) return;
    const bool isFile = settings.ReminderSound == FileSound;
    sound.Play({isFile ? settings.ReminderSoundFile : "", settings.ReminderVolume});
  }

  MessageQueue& queue;
  ApplicationBus& bus;
  SystemClock clock;
  SystemFileDoor files;
  Holds holds{queue};
  PortalFilePanels filePanels{bus.Connection()};
  CtlReminderCheck reminderCheck{ExecutableFolder()};
  ReminderSound sound{[] {
    QMetaObject::invokeMethod(
        qApp, [] { QApplication::beep(); }, Qt::QueuedConnection);
  }};
  QtUserInterface ui{[this] { Sound(); }, [this] { sound.Stop(); }};
  BusNotifications notifications{bus.Connection()};
  ReminderFaces faces{ui, notifications};
  AlertDesk alerts{queue, faces};
  Notices notices{alerts, holds, ui};
  SystemDesktop desktop;
  LoopTimers timers{queue};
  BackgroundWork work{workers, queue};
  ThreadWorkers workers;
  HandlerActions actions;
  KestrinSettings settings;
  HandlerTable handlers;
  Context context{clock,   files,   queue,    holds,    ui,       alerts,         notices, desktop,
                  workers, actions, openSets, settings, handlers, Zone::System(), 1};
  SystemProcesses processes;
  Journal journal{files, processes, clock, StateFolder() + "/kestrin",
                  [this](const std::string& words) { queue.Post(ErrorFound(words)); }};
  CommandQueue commands{context};
  OwnSets ownSets{files, StateFolder() + "/kestrin",
                  [this](const std::string& words) { queue.Post(ErrorFound(words)); }};
  OpenSets openSets;
  const ServesAddOns serves{context};
  BusBackground background{bus.Connection(), files, queue};
  SystemFileWatcher watcher{queue};
  SettingsStore store{
      OpenPrefs(files, ConfigFolder(), ExecutableFolder(), FromEnvironment("LIBRARY_PATH"))};
  KestrinApp app{context, ForApp()};
};

/// With a screen the toolkit's windows, without one its event loop alone.
std::unique_ptr<QCoreApplication> BuildToolkit(int& argc, char** argv, bool screen) {
  QCoreApplication::setApplicationName("kestrin");
  QCoreApplication::setQuitLockEnabled(false);  // the program decides when it ends
  if (!screen) return std::make_unique<QCoreApplication>(argc, argv);
  QGuiApplication::setDesktopFileName("vnd.ZR.Kestrin");
  auto toolkit = std::make_unique<QApplication>(argc, argv);
  QGuiApplication::setQuitOnLastWindowClosed(false);
  return toolkit;
}

/// The toolkit takes long to learn which fonts there are, and asks when it lays out the first
/// window. Its font database has a lock of its own: it learns while the sets and the journal are
/// read.
std::jthread LearnFonts() {
  try {
    return std::jthread([] { QFontDatabase::families(); });
  } catch (const std::system_error&) {
    return {};  // later, then
  }
}

int RunLoop(Parts& parts, const std::vector<std::string>& arguments) {
  KestrinApp& app = parts.app;
  const UnixSignals unixSignals(parts.queue);
  app.Construct();
  app.ArgvReceived(arguments);
  // What the bus had waiting decides the role: it comes before ReadyToRun.
  while (auto message = parts.queue.Take()) app.MessageReceived(*message);
  if (!app.Ending().HasQuit()) app.ReadyToRun();
  if (app.Ending().HasQuit()) return 0;
  const LogindWatch logind(parts.queue);
  std::optional<DesktopSession> session;
  if (auto* const gui = qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
    session.emplace(*gui, app, parts.queue);
  const QueueRunner runner(parts.queue,
                           [&app](const Message& message) { app.MessageReceived(message); });
  return app.Ending().HasQuit() ? 0 : QCoreApplication::exec();
}

int Run(int argc, char** argv) {
  if (const char* const answer = AnswerTo(argc, argv, Help, Version)) return Say(answer);
  Start start{ArgumentsOf(argc, argv), ActivationToken(), StartedByBus(), {}};
  if (!start.byBus) start.environment = DisplayEnvironment();
  ForgetHowStarted();
  MessageQueue queue;
  ApplicationBus bus(queue);
  const Arrival arrival = bus.Arrive(start);
  if (arrival == Arrival::HandedOver) return 0;
  if (arrival != Arrival::First) std::fprintf(stderr, "kestrin: %s\n", bus.Reason().c_str());
  if (arrival == Arrival::NoAnswer) return 1;
  const std::optional<std::string> whyNoDisplay = WhyNoDisplay();
  const auto toolkit = BuildToolkit(argc, argv, !whyNoDisplay);
  const std::jthread fonts = whyNoDisplay ? std::jthread() : LearnFonts();
  bus.Dispatch();
  const bool inBackground = KestrinApp::IsBackgroundStart(start.arguments);
  if (whyNoDisplay && !inBackground && !queue.Holds(DELIVER_EVENTS)) {
    std::fprintf(stderr, "kestrin: no window can be opened: %s\n", whyNoDisplay->c_str());
    return 1;
  }
  // A person's start opens the user interface, whatever the bus had waiting.
  if (!start.byBus && !inBackground && !whyNoDisplay) queue.Post(ACTIVATE);
  Parts parts(queue, bus);
  const int status = RunLoop(parts, start.arguments);
  // Threads that know these parts may still be waiting, for a command or a disk.
  if (parts.holds.Count() > 0 || parts.workers.Running() > 0) std::_Exit(status);
  return status;
}

}  // namespace
}  // namespace kestrin

int main(int argc, char** argv) { return kestrin::Run(argc, argv); }
