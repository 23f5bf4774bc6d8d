#include "interface/sets/EventSetWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QVBoxLayout>
#include <utility>

#include "core/app/DocumentApp.h"
#include "core/events/EventSet.h"
#include "core/loop/MessageCodes.h"
#include "core/settings/KestrinSettings.h"
#include "interface/common/DroppedFiles.h"
#include "interface/common/Frames.h"
#include "interface/common/HelpKey.h"
#include "interface/common/ShownText.h"
#include "interface/list/ListEventView.h"
#include "interface/sets/EmptySetHint.h"
#include "interface/sets/EventCommands.h"
#include "interface/sets/EventSetMenus.h"
#include "interface/sets/OpenFilePanel.h"
#include "interface/sets/SetCommands.h"
#include "interface/sets/SetSaving.h"
#include "interface/sets/StatusLine.h"
#include "interface/sets/StepTexts.h"

namespace kestrin {

EventSetWindow::EventSetWindow(EventSet& set, DocumentApp& application)
    : set_(&set),
      application_(application),
      menus_(new EventSetMenus(*menuBar(), set.GetContext())),
      list_(new ListEventView(set)),
      status_(new StatusLine(set)),
      commands_(new EventCommands(set, *list_)),
      saving_(new SetSaving(set, application, *this)) {
  setObjectName("eventSetWindow");
  setAcceptDrops(true);
  BuildBody();
  ConnectCommands();
  menus_->ShowLayout(set.Layout());
  SetChanged();
  OpenAtFrame();
  application_.RegisterWindow();
}

void EventSetWindow::BuildBody() {
  auto* body = new QWidget;
  auto* column = new QVBoxLayout(body);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  list_->setFrameShape(QFrame::NoFrame);
  column->addWidget(list_, 1);
  column->addWidget(status_);
  hint_ = new EmptySetHint(set_->GetContext().queue, *list_);
  hint_->setVisible(set_->CountEvents() == 0);
  setCentralWidget(body);
  list_->setFocus();
}

void EventSetWindow::ConnectCommands() {
  connect(menus_, &EventSetMenus::Chosen, this, &EventSetWindow::Command);
  connect(menus_, &EventSetMenus::ViewModeChosen, this, &EventSetWindow::SetViewMode);
  connect(list_, &ListEventView::EventInvoked, commands_, &EventCommands::Edit);
  connect(list_, &ListEventView::DeleteRequested, commands_, &EventCommands::DeleteSelected);
  connect(list_, &ListEventView::ToggleRequested, commands_, &EventCommands::ToggleActive);
  connect(list_, &ListEventView::SelectedEventChanged, this, [this] { Command(EVENT_SELECTED); });
  connect(status_, &StatusLine::UndoRequested, this, [this] { Command(UNDO_EDIT); });
  connect(status_, &StatusLine::RememberRequested, this, [this] { Command(REMEMBER_SET); });
  connect(status_, &StatusLine::RememberedIs, menus_, &EventSetMenus::ShowRemembered);
  connect(hint_, &EmptySetHint::NewEventRequested, this, [this] { Command(NEW_EVENT); });
  connect(commands_, &EventCommands::Added, this, [this] { list_->setFocus(); });
  connect(commands_, &EventCommands::Noted, this,
          [this](const QString& note) { status_->Report(note, false); });
  commands_->History().Changed = [this] { ShowSteps(); };
  connect(qApp, &QApplication::focusChanged, this, [this] { commands_->History().EndSitting(); });
  menus_->AddListKeys(*list_);
  OpenHelpByKey(*this, set_->GetContext(), [] { return "sets"; });
  connect(saving_, &SetSaving::CloseAllowed, this, &EventSetWindow::CloseNow);
  list_->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(list_, &QWidget::customContextMenuRequested, this, &EventSetWindow::ShowRowMenu);
  list_->header()->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(list_->header(), &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
    menus_->DisplayMenu().popup(list_->header()->viewport()->mapToGlobal(at));
  });
}

EventSetWindow::~EventSetWindow() { Detach(); }

void EventSetWindow::OpenAtFrame() {
  const Rect fallback = set_->GetContext().settings.SetWindowPosition.DefaultFrame();
  const Rect usual = SetLayout().WindowFrame;
  Rect frame = set_->Layout().WindowFrame;
  const float width = frame.right - frame.left;
  const bool isChosen = width != usual.right - usual.left;
  const auto needed = static_cast<float>(list_->WidthOfColumns());
  // What was wide enough for a small font is so for a larger one.
  const bool mayGrow = !isChosen || list_->ShowedAllColumns(width);
  if (mayGrow && width < needed) frame.right = frame.left + needed;
  opened_ = GeometryOnScreen(frame, fallback, minimumSizeHint());
  setGeometry(opened_);
}

void EventSetWindow::Activate() { BringToFront(*this); }

void EventSetWindow::EventAdded(Event& event) {
  list_->AddEvent(&event);
  hint_->hide();
  status_->Refresh();
}

void EventSetWindow::EventRemoved(Event& event) { EventsRemoved({&event}); }

/// A delivery may have taken away what the next step was about.
void EventSetWindow::EventsRemoved(const std::vector<Event*>& events) {
  list_->RemoveEvents(events);
  hint_->setVisible(set_->CountEvents() == static_cast<int32>(events.size()));  // still counted
  status_->Refresh();
  QMetaObject::invokeMethod(this, &EventSetWindow::ShowSteps, Qt::QueuedConnection);
}

void EventSetWindow::CommitEdits() { list_->CommitRename(); }

void EventSetWindow::ShowSteps() {
  if (!set_) return;
  const auto undo = commands_->History().NextUndo(), redo = commands_->History().NextRedo();
  menus_->ShowSteps(undo ? StepPhrase(*undo) : QString(), redo ? StepPhrase(*redo) : QString());
  const QString report = undo ? StepReport(*undo) : QString();
  if (report.isEmpty())
    status_->HideReport();
  else
    status_->Report(report, true);
}

void EventSetWindow::EventModified(Event& event) {
  list_->EventModified(&event);
  status_->Refresh();
}

void EventSetWindow::SetChanged() {
  setWindowTitle(WindowTitle(set_->GetLeaf()) + "[*]");
  setWindowModified(set_->HasBeenModified() && !set_->OnlyDeliveriesChanged());
  status_->Refresh();
}

void EventSetWindow::SettingsChanged() {
  list_->viewport()->update();
  status_->Refresh();
}

void EventSetWindow::Command(uint32 command) {
  if (!set_ || SaveCommand(command) || EventCommand(command) || EditCommand(command)) return;
  if (EventSetMenus::ColumnOf(command))
    ToggleColumn(command);
  else if (command == QUIT_REQUESTED)
    RequestClose();
}

bool EventSetWindow::SaveCommand(uint32 command) {
  switch (command) {
    case SAVE_SET:
      saving_->Save();
      return true;
    case SAVE_SET_AS:
      saving_->SaveAs();
      return true;
    case REMEMBER_SET:
      saving_->RememberOrForget();
      status_->Refresh();
      return true;
    default:
      return false;
  }
}

bool EventSetWindow::EventCommand(uint32 command) {
  switch (command) {
    case CUT_EVENT:
      commands_->Cut();
      return true;
    case COPY_EVENT:
      commands_->Copy();
      return true;
    case PASTE_EVENT:
      commands_->Paste();
      return true;
    case NEW_EVENT:
      commands_->New();
      return true;
    case EDIT_EVENT:
      commands_->EditSelected();
      return true;
    case DELETE_EVENT:
      commands_->DeleteSelected();
      return true;
    case EVENT_SELECTED:
      menus_->EnableForSelection(list_->GetSelectedEvent() != nullptr);
      return true;
    default:
      return false;
  }
}

bool EventSetWindow::EditCommand(uint32 command) {
  switch (command) {
    case UNDO_EDIT:
      commands_->Undo();
      return true;
    case REDO_EDIT:
      commands_->Redo();
      return true;
    case DUPLICATE_EVENT:
      commands_->Duplicate();
      return true;
    case RENAME_EVENT:
      list_->Rename();
      return true;
    case ACTIVATE_EVENT:
    case DEACTIVATE_EVENT:
      commands_->SetActive(command == ACTIVATE_EVENT);
      return true;
    case DELETE_FINISHED:
      commands_->DeleteFinished();
      return true;
    default:
      return false;
  }
}

/// The list is the only view there is, and shows every mode.
void EventSetWindow::SetViewMode(int32 mode) {
  if (!set_ || set_->Layout().ViewMode == mode) return;
  const AutoLock lock(*set_);
  set_->Layout().ViewMode = mode;
}

void EventSetWindow::ToggleColumn(uint32 command) {
  const Columns column = *EventSetMenus::ColumnOf(command);
  list_->SetColumnShown(column, !set_->Layout().ColumnShown[static_cast<size_t>(column)]);
  menus_->ShowLayout(set_->Layout());
}

/// The menu key asks for the menu of the selected row, wherever the mouse is.
void EventSetWindow::ShowRowMenu(const QPoint& at) {
  const QModelIndex row = list_->indexAt(at);
  QMenu& menu = row.isValid() ? menus_->RowMenu() : menus_->EmptyMenu();
  menu.popup(list_->viewport()->mapToGlobal(at));
}

bool EventSetWindow::RequestClose() {
  if (!saving_->MayClose()) return false;
  CloseNow();
  return true;
}

void EventSetWindow::CloseNow() {
  hide();
  Detach();
  deleteLater();
}

void EventSetWindow::Detach() {
  if (!set_) return;
  RememberAsDefault();
  saving_->Forget();
  commands_->Forget();
  status_->Forget();
  list_->Clear();
  std::exchange(set_, nullptr)->WindowClosed();
  application_.UnregisterWindow();
}

void EventSetWindow::RememberAsDefault() {
  KestrinSettings& settings = set_->GetContext().settings;
  const AutoLock settingsLock(settings.Protect);
  if (!settings.RememberWindowSetupAsDefault) return;
  const AutoLock lock(*set_);
  settings.SetWindowPosition.SetDefaultFrame(PlainFrameOf(*this));
  settings.Layout = set_->Layout();
  settings.Layout.NumberOfKeys = std::min(settings.Layout.NumberOfKeys, MaxSortKeys);
  settings.Changed();
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

void EventSetWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!LocalFiles(*event->mimeData()).empty()) AcceptAsCopy(*event);
}

void EventSetWindow::dropEvent(QDropEvent* event) {
  const std::vector<std::string> files = LocalFiles(*event->mimeData());
  if (!set_ || files.empty()) return;
  PostOpenFiles(set_->GetContext(), files);
  AcceptAsCopy(*event);
}

void EventSetWindow::StoreFrame() {
  const bool isPlaced = isVisible() && !isMinimized() && !isMaximized() && !isFullScreen();
  if (!set_ || !isPlaced || geometry() == opened_) return;
  opened_ = QRect();
  AutoLock lock(*set_);
  set_->Layout().WindowFrame = FrameOf(geometry());
}

}  // namespace kestrin
