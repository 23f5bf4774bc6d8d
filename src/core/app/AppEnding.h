// How the application ends: by itself when nothing holds it, by the user's wish, or by force.
#pragma once

#include "core/app/AppParts.h"
#include "core/app/BackgroundContact.h"
#include "core/app/DocumentApp.h"
#include "core/app/Settling.h"
#include "core/delivery/DeliveryPass.h"
#include "core/events/Context.h"

namespace kestrin {

/// Main thread. Everything handed in outlives it.
class AppEnding final : public DocumentApp {
 public:
  AppEnding(Context& context, const AppParts& parts, DeliveryPass& pass, Settling& settling,
            BackgroundContact& background);

  /// The start is over: until then giving the last hold back ends nothing.
  void BeginRunning() { running_ = true; }
  /// QUIT_REQUESTED.
  void QuitMessage(const Message& message);
  /// Asks for an end, by message, as soon as nothing holds the application.
  void QuitWhenIdle();
  /// The background deliverer is to quit too.
  void FullQuit();
  /// The desktop's session is saved, or is about to end: saves what can be saved, and goes on.
  void SessionSaved();
  /// Saves what can be saved and ends, without a question.
  void ForcedQuit();
  /// The program is at its end: no message is to be handled any more.
  bool HasQuit() const { return hasQuit_; }

  bool FullQuitProcess = false;  ///< the background deliverer is to quit too
  bool QuitProcess = false;      ///< a quit is under way

 protected:
  bool CloseWindows() override;
  void QuitAbandoned() override;

 private:
  void QuitAgain(bool ifIdle);
  void Quit();
  void WriteSettings();
  void CommitAllEdits();
  bool SomethingWaits() const;
  void CloseEverything();

  Context& context_;
  const AppParts& parts_;
  DeliveryPass& pass_;
  Settling& settling_;
  BackgroundContact& background_;
  bool running_ = false;
  bool hasQuit_ = false;
};

}  // namespace kestrin
