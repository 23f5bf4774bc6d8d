#include "interface/QtUserInterface.h"

#include <QApplication>
#include <QPalette>
#include <QScreen>

#include "core/events/Context.h"
#include "core/loop/Holds.h"
#include "interface/alerts/AlertAccessible.h"
#include "interface/common/ApplicationIcon.h"
#include "interface/common/Wayland.h"
#include "interface/editor/EventWindow.h"
#include "interface/handlerviews/HandlerViews.h"
#include "interface/history/HistoryWindow.h"
#include "interface/sets/EventSetWindow.h"
#include "interface/sets/OpenFilePanel.h"
#include "interface/settings/AboutWindow.h"
#include "interface/settings/SettingsWindow.h"

namespace kestrin {

namespace {

/// Hints in pale text: there are themes that leave it black on a dark ground.
void MendPaleText() {
  constexpr int HalfSeen = 128, LeastContrast = 60;
  const QPalette shown = QApplication::palette();
  const auto lightness = [&shown](QPalette::ColorRole role) {
    return shown.color(role).lightness();
  };
  const bool isDark = lightness(QPalette::Base) < lightness(QPalette::Text);
  if (!isDark || lightness(QPalette::PlaceholderText) > lightness(QPalette::Base) + LeastContrast)
    return;
  QColor pale = shown.color(QPalette::Text);
  pale.setAlpha(HalfSeen);
  QPalette mended;
  mended.setColor(QPalette::PlaceholderText, pale);
  QApplication::setPalette(mended);
}

}  // namespace

QtUserInterface::QtUserInterface() : QtUserInterface(&QApplication::beep) {}

QtUserInterface::QtUserInterface(std::function<void()> play, std::function<void()> stop)
    : alerts_(AlertSound{std::move(play), std::move(stop)}) {
  if (!HasScreen()) return;
  QApplication::setWindowIcon(ApplicationIcon());
  MendPaleText();
  InstallAlertAccessibility();
  WatchScreens();
}

QtUserInterface::~QtUserInterface() { delete openPanel_; }

void QtUserInterface::Connect(Context& context, DocumentApp& application) {
  context_ = &context;
  application_ = &application;
  alerts_.Connect(context);
}

bool QtUserInterface::HasScreen() const {
  return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

SetWindow* QtUserInterface::OpenSetWindow(EventSet& set) {
  if (!HasScreen()) return nullptr;
  auto* window = new EventSetWindow(set, *application_);
  window->Activate();
  return window;
}

EditorWindow* QtUserInterface::OpenEventWindow(Event& event) {
  if (!HasScreen()) return nullptr;
  auto* window = new EventWindow(event);
  window->Activate();
  return window;
}

void QtUserInterface::OpenAlert(AlertId id, const AlertRequest& request, int32 place) {
  alerts_.Open(id, request, place);
}
void QtUserInterface::UpdateAlert(AlertId id, const AlertRequest& request) {
  alerts_.Update(id, request);
}
bool QtUserInterface::MoveToWindow(AlertId id, const AlertRequest& request) {
  return alerts_.MoveToWindow(id, request);
}
int32 QtUserInterface::MostReminderBoxes() const { return alerts_.MostReminderBoxes(); }
bool QtUserInterface::KeepsAbove() const { return !IsOnWayland(); }
void QtUserInterface::RaiseAlert(AlertId id) { alerts_.Raise(id); }
void QtUserInterface::CloseAlert(AlertId id) { alerts_.Close(id); }

void QtUserInterface::WaitForFatalError(const std::string& title, const std::string& text,
                                        const std::string& button) {
  if (!HasScreen()) return;
  AlertRequest request;
  request.Title = title;
  request.Text = text;
  request.Buttons = {button};
  request.Kind = AlertKind::Warning;
  alerts_.WaitForFatalError(request);
}

void QtUserInterface::ShowOpenPanel() {
  if (openPanel_) {
    ShowOwnOpenPanel();
    return;
  }
  if (desktopPanel_.IsOpen()) return;
  context_->holds.ProcessHold();
  desktopPanel_.Ask(context_->filePanels, RequestForSets(), [this](const FilePanelAnswer& answer) {
    if (answer.What == FilePanelAnswer::Kind::Unavailable) ShowOwnOpenPanel();
    if (answer.What == FilePanelAnswer::Kind::Chosen) PostOpenFiles(*context_, answer.Files);
    context_->holds.ProcessDone();
  });
}

void QtUserInterface::ShowOwnOpenPanel() {
  if (!openPanel_) openPanel_ = new OpenFilePanel(*context_);
  openPanel_->Ask();
}

void QtUserInterface::ShowSettingsWindow() { ShowOnly(settingsWindow_, *context_); }
void QtUserInterface::ShowAboutWindow() { ShowOnly(aboutWindow_); }

void QtUserInterface::ShowHistoryWindow(const std::string& stateFolder) {
  ShowOnly(historyWindow_, *context_, stateFolder);
}

/// Activates the window, and builds it first unless it is open already.
template <typename Window, typename... Parts>
void QtUserInterface::ShowOnly(QPointer<Window>& window, Parts&... parts) {
  if (!HasScreen()) return;
  if (!window || window->IsClosed()) window = new Window(parts..., *application_);
  window->Activate();
}

void QtUserInterface::CloseOtherWindows() {
  for (SideWindow* window :
       std::initializer_list<SideWindow*>{settingsWindow_, aboutWindow_, historyWindow_})
    if (window && !window->IsClosed()) window->close();
  if (openPanel_) openPanel_->reject();
  if (!desktopPanel_.IsOpen()) return;
  desktopPanel_.Withdraw();
  context_->holds.ProcessDone();
}

void QtUserInterface::SettingsChanged() {
  if (settingsWindow_) settingsWindow_->SettingsChanged();
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* window = qobject_cast<EventSetWindow*>(widget)) window->SettingsChanged();
    if (auto* editor = qobject_cast<EventWindow*>(widget)) editor->SettingsChanged();
  }
}

QWidget* QtUserInterface::CreateEditView(EventAddOnData& data, Rect frame) {
  return HasScreen() ? CreateHandlerView(data, frame) : nullptr;
}

void QtUserInterface::DestroyEditView(QWidget* view) { delete view; }

void QtUserInterface::WatchScreens() {
  const auto watch = [this](QScreen* screen) {
    connect(screen, &QScreen::availableGeometryChanged, &alerts_, &AlertViews::KeepOnScreen);
  };
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
  connect(qGuiApp, &QGuiApplication::screenRemoved, &alerts_, &AlertViews::KeepOnScreen);
}

}  // namespace kestrin
