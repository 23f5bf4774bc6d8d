// The application object: roles, opening and quitting, and the table of messages.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/app/DocumentApp.h"
#include "core/delivery/DeliveryPass.h"
#include "core/events/Context.h"
#include "core/events/Event.h"
#include "core/files/RecoveryFolder.h"
#include "core/ports/BackgroundMessenger.h"
#include "core/ports/BusPresence.h"
#include "core/settings/SettingsStore.h"

namespace kestrin {

/// What main hands over besides the context. All outlive the application.
struct AppParts {
  BackgroundMessenger& background;
  BusPresence& bus;
  SettingsStore& settings;
  std::string KestrinDir;   ///< folder of the real executable
  std::string stateFolder;  ///< $XDG_STATE_HOME/kestrin
  std::function<void()> loadHandlers;
  std::function<void()> unloadHandlers;
  std::function<Zone()> systemZone;
  std::function<void()> endLoop;  ///< called when the program is to end
};

/// Main thread only. main calls Construct, feeds every queued message to MessageReceived, one per
/// turn of its event loop, and calls ReadyToRun once, after what the bus had waiting.
class KestrinApp : public DocumentApp {
 public:
  KestrinApp(Context& context, AppParts parts);
  ~KestrinApp() override;

  /// Starts the background deliverer, reads the settings, loads handlers and the remembered sets.
  void Construct();
  /// Whether "-background" is among the arguments.
  static bool IsBackgroundStart(const std::vector<std::string>& arguments);
  /// Opens the files named on the command line; with "-background" among them, without windows.
  void ArgvReceived(const std::vector<std::string>& arguments);
  void ReadyToRun();
  void MessageReceived(const Message& message);

  /// Loads a set or, for an empty path, makes a new one. Opening a file twice shows its window.
  void OpenSet(const std::string& path, bool openWindow);
  void OpenUserInterface();
  /// Re-reads an open set from its file, without a window; what was delivered stays delivered.
  void RevertToSavedIfRemembered(const std::string& path);
  std::string GetNextUntitledWindowName();
  /// Starts the background deliverer unless it runs, and hands it the message (may be null). Waits
  /// for nothing; a failure is told when it is known.
  void LaunchBackgroundApp(const Message* message);
  void FullQuit();
  void HelpRequested();
  /// The system's zone has changed, or may have: recomputes every set if so.
  void CheckZone();

  Context& GetContext() { return context_; }
  DeliveryPass& Pass() { return pass_; }
  bool HasQuit() const { return hasQuit_; }

  // The roles in which the program runs. Main thread.
  bool BackgroundOnlyStartup = false;  ///< started with "-background": hand the time over and leave
  bool DeliverOnly = false;            ///< woken by the background deliverer: deliver and leave
  bool AlreadyToldUser = false;        ///< that the background deliverer could not be started
  bool FullQuitProcess = false;        ///< the background deliverer is to quit too
  bool QuitProcess = false;            ///< a quit is under way

 protected:
  bool CloseWindows() override;
  void QuitAbandoned() override;

 private:
  // Opening.
  void ReadSelectedSets();
  void OpenRecovered();
  EventSet* LoadSet(const std::string& file);
  void Show(EventSet& set);
  void OpenFiles(const Message& message);
  void Activate();
  void ReportOpening(ConstructorResult result, const std::string& path);
  bool AnyWindow() const;
  bool KeepsMissingFile(const std::string& path) const;

  // Messages.
  bool WindowMessage(const Message& message);
  bool BackgroundMessage(const Message& message);
  void BackgroundLaunched(const Message& outcome);
  void SettingsChanged();
  void SessionSaved();
  void SaveDeliveredSets();
  void RecomputeAll();

  // Ending.
  void QuitMessage(const Message& message);
  void QuitWhenIdle();
  void QuitAgain(bool ifIdle);
  void Quit();
  void ForcedQuit();
  void SaveModifiedSets();
  bool SaveItself(EventSet& set);
  void ReportUnsaved(const EventSet& set);
  void SaveRecoveryCopies();
  void CommitAllEdits();
  void End();
  bool SomethingWaits() const;

  // Alerts that outlived an earlier process.
  void ShowRecordedAlerts();
  void ShowRecorded(size_t place);
  void RecordedAlertDone(size_t place);

  Context& context_;
  AppParts parts_;
  DeliveryPass pass_;
  RecoveryFolder recovery_;
  std::vector<std::optional<Message>> recorded_;  ///< shown again, not yet answered
  bool recordShown_ = false;       ///< else the record is as an earlier process left it
  std::set<uint64> saveReported_;  ///< sets whose automatic saving has failed
  int32 nextUntitled_ = 1;
  bool running_ = false;
  bool ending_ = false;
  bool hasQuit_ = false;
};

}  // namespace kestrin
