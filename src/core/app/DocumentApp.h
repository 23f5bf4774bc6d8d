// An application that lives as long as something holds it: a window, an alert, a running command.
#pragma once

#include "core/loop/Holds.h"

namespace kestrin {

class DocumentApp {
 public:
  explicit DocumentApp(Holds& holds) : holds_(holds) {}
  virtual ~DocumentApp() = default;

  /// For each window that is a document's, when it opens and when it has closed.
  void RegisterWindow();
  void UnregisterWindow() { ProcessDone(); }
  void ProcessHold() { holds_.ProcessHold(); }
  void ProcessDone() { holds_.ProcessDone(); }
  int32 CountRegWindProcHolds() const { return holds_.Count(); }

  bool IsQuitInProgress() const { return quitInProgress_; }
  /// A quit that waits is given up: somebody opened a window or said "Cancel".
  void CancelQuitProcess();

 protected:
  /// Asks every window to close; true when none refused.
  virtual bool CloseWindows() = 0;
  virtual void QuitAbandoned() = 0;
  void BeginQuit() { quitInProgress_ = true; }
  bool QuitRequested();

 private:
  Holds& holds_;
  bool quitInProgress_ = false;
};

}  // namespace kestrin
