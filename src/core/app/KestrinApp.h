// The application object: its roles and the table of messages.
#pragma once

#include <string>
#include <vector>

#include "core/app/AbsentSets.h"
#include "core/app/AppEnding.h"
#include "core/app/AppParts.h"
#include "core/app/BackgroundContact.h"
#include "core/app/OthersEdits.h"
#include "core/app/PassedOver.h"
#include "core/app/SavingByItself.h"
#include "core/app/SetOpening.h"
#include "core/app/Settling.h"
#include "core/app/UnsavedEdits.h"
#include "core/delivery/ActionWatch.h"
#include "core/delivery/DeliveryPass.h"
#include "core/delivery/OpenAlerts.h"
#include "core/delivery/PutOffAlerts.h"
#include "core/events/Context.h"
#include "core/files/RecoveryFolder.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

/// Main thread only. main calls Construct, feeds every queued message to MessageReceived, one per
/// turn of its event loop, and calls ReadyToRun once, after what the bus had waiting.
class KestrinApp {
 public:
  KestrinApp(Context& context, AppParts parts);
  ~KestrinApp();
  KestrinApp(const KestrinApp&) = delete;
  KestrinApp& operator=(const KestrinApp&) = delete;

  /// Starts the background deliverer, reads the settings, loads handlers and the remembered sets.
  void Construct();
  /// Whether BackgroundArgument is among the arguments.
  static bool IsBackgroundStart(const std::vector<std::string>& arguments);
  /// Opens the files named on the command line; in a background start, without windows.
  void ArgvReceived(const std::vector<std::string>& arguments);
  void ReadyToRun();
  void MessageReceived(const Message& message);

  /// Re-reads an open set from its file; what was delivered stays delivered.
  void RevertToSavedIfRemembered(const std::string& path);
  void HelpRequested(const Message& message);
  /// The system's zone has changed, or may have: recomputes every set if so.
  void CheckZone();

  Context& GetContext() { return context_; }
  AppEnding& Ending() { return ending_; }

  // The roles in which the program runs.
  bool BackgroundOnlyStartup = false;  ///< started at login: hand the time over and leave
  bool DeliverOnly = false;            ///< woken by the background deliverer: deliver and leave

 private:
  void Handle(const Message& message);
  bool EndingMessage(const Message& message);
  bool WindowMessage(const Message& message);
  void OpenFiles(const Message& message);
  void Activate();
  bool BackgroundMessage(const Message& message);
  void SettingsChanged();
  void ActionOverruns(const std::string& record);
  void RecomputeAll();

  Context& context_;
  const AppParts parts_;
  DeliveryPass pass_;
  Later later_;
  PutOffAlerts putOff_;
  RecoveryFolder recovery_;
  BackgroundContact background_;
  UnsavedEdits unsaved_;
  SavingByItself saving_;
  Settling settling_;
  OpenAlerts openAlerts_;
  ActionWatch watch_;
  AbsentSets absent_;
  SetOpening opening_;
  PassedOver passedOver_;
  OthersEdits others_;
  AppEnding ending_;
  int32 delivering_ = DeliverShownOrRemembered;  ///< which events, when a pass last asked
};

}  // namespace kestrin
