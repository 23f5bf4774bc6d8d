// An application that lives as long as something holds it: a window, an alert, a running command.
#pragma once

#include "core/Holds.h"

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
  void CancelQuitProcess() { quitInProgress_ = false; }

 protected:
  /// Asks every window to close; true when none refused.
  virtual bool CloseWindows() = 0;
  bool QuitRequested();

 private:
  Holds& holds_;
  bool quitInProgress_ = false;
};

}  // namespace kestrin
