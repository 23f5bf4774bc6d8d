#include "interface/sets/EventSetWindow.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QStyle>
#include <utility>

#include "core/DocumentApp.h"
#include "core/EventSet.h"
#include "core/MessageCodes.h"
#include "core/Notices.h"
#include "interface/Frames.h"
#include "interface/ShownText.h"
#include "interface/list/ListEventView.h"
#include "interface/sets/EventSetMenus.h"

namespace kestrin {

EventSetWindow::EventSetWindow(EventSet& set, DocumentApp& application)
    : set_(&set),
      application_(application),
      menus_(new EventSetMenus(*menuBar(), set.GetContext().queue)),
      list_(new ListEventView(set)) {
  setObjectName("eventSetWindow");
  setCentralWidget(list_);
  list_->setFrameShape(QFrame::NoFrame);
  list_->setFocus();
  connect(menus_, &EventSetMenus::Chosen, this, &EventSetWindow::Command);
  SetChanged();
  OpenAtFrame();
  application_.RegisterWindow();
}

EventSetWindow::~EventSetWindow() { Detach(); }

void EventSetWindow::OpenAtFrame() {
  const Rect fallback = KestrinSettings::SetWindowPosition.DefaultFrame();
  opened_ = GeometryOnScreen(set_->Layout().WindowFrame, fallback);
  setGeometry(opened_);
}

void EventSetWindow::Activate() {
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void EventSetWindow::EventAdded(Event& event) { list_->AddEvent(&event); }
void EventSetWindow::EventRemoved(Event& event) { list_->RemoveEvent(&event); }
void EventSetWindow::EventModified(Event& event) { list_->EventModified(&event); }
void EventSetWindow::SetChanged() { setWindowTitle(WindowTitle(set_->GetLeaf())); }
void EventSetWindow::SettingsChanged() { list_->viewport()->update(); }

void EventSetWindow::Command(uint32 command) {
  if (command == QUIT_REQUESTED) RequestClose();
}

bool EventSetWindow::RequestClose() {
  if (!set_) return true;
  if (set_->HasBeenModified() && !SaveBeforeClose()) {
    application_.CancelQuitProcess();
    return false;
  }
  CloseNow();
  return true;
}

/// A set without a file is safe as long as its recovery copy is there: it opens again.
bool EventSetWindow::SaveBeforeClose() {
  if (set_->IsUntitled()) return !set_->RecoveredFrom().empty();
  if (set_->SaveData()) return true;
  set_->GetContext().notices.ReportCompoundError(
      "There was an error attempting to save the event set \"", set_->GetLeaf(), "\".");
  return false;
}

void EventSetWindow::CloseNow() {
  hide();
  Detach();
  deleteLater();
}

void EventSetWindow::Detach() {
  if (!set_) return;
  RememberAsDefault();
  list_->Clear();
  std::exchange(set_, nullptr)->WindowClosed();
  application_.UnregisterWindow();
}

void EventSetWindow::RememberAsDefault() {
  AutoLock settings(KestrinSettings::Protect);
  if (!KestrinSettings::RememberWindowSetupAsDefault) return;
  AutoLock lock(*set_);
  const SetLayout& layout = set_->Layout();
  KestrinSettings::SetWindowPosition.SetDefaultFrame(FrameOf(geometry()));
  KestrinSettings::ColumnOrder = layout.ColumnOrder;
  KestrinSettings::ColumnShown = layout.ColumnShown;
  KestrinSettings::ColumnWidth = layout.ColumnWidth;
  KestrinSettings::NumberOfKeys = std::min(layout.NumberOfKeys, MaxSortKeys);
  KestrinSettings::SortKeys = layout.SortKeys;
  KestrinSettings::SortModes = layout.SortModes;
  KestrinSettings::ViewMode = layout.ViewMode;
  KestrinSettings::Changed();
}

void EventSetWindow::closeEvent(QCloseEvent* event) {
  if (!RequestClose()) event->ignore();
}

void EventSetWindow::moveEvent(QMoveEvent* event) {
  QMainWindow::moveEvent(event);
  StoreFrame();
}

void EventSetWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  StoreFrame();
}

void EventSetWindow::StoreFrame() {
  const bool isPlaced = isVisible() && !isMinimized() && !isMaximized() && !isFullScreen();
  if (!set_ || !isPlaced || geometry() == opened_) return;
  opened_ = QRect();
  AutoLock lock(*set_);
  set_->Layout().WindowFrame = FrameOf(geometry());
}

}  // namespace kestrin
