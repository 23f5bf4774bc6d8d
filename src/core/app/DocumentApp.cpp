#include "core/app/DocumentApp.h"

namespace kestrin {

void DocumentApp::RegisterWindow() {
  CancelQuitProcess();
  ProcessHold();
}

void DocumentApp::CancelQuitProcess() {
  quitInProgress_ = false;
  QuitAbandoned();
}

bool DocumentApp::QuitRequested() {
  quitInProgress_ = true;
  return CloseWindows();
}

}  // namespace kestrin
