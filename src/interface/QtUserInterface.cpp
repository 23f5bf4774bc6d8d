#include "interface/QtUserInterface.h"

#include <QApplication>
#include <QEventLoop>
#include <QScreen>

#include "core/events/Context.h"
#include "core/loop/AlertDesk.h"
#include "interface/alerts/AlertAccessible.h"
#include "interface/alerts/AlertCascade.h"
#include "interface/alerts/AlertWindow.h"
#include "interface/common/ApplicationIcon.h"
#include "interface/editor/EventWindow.h"
#include "interface/handlerviews/HandlerViews.h"
#include "interface/sets/EventSetWindow.h"
#include "interface/sets/OpenFilePanel.h"
#include "interface/settings/AboutWindow.h"
#include "interface/settings/SettingsWindow.h"

namespace kestrin {

QtUserInterface::QtUserInterface() : QtUserInterface(&QApplication::beep) {}

QtUserInterface::QtUserInterface(std::function<void()> bell) : bell_(std::move(bell)) {
  if (!HasScreen()) return;
  QApplication::setWindowIcon(ApplicationIcon());
  InstallAlertAccessibility();
  WatchScreens();
}

QtUserInterface::~QtUserInterface() { delete openPanel_; }

void QtUserInterface::Connect(Context& context, DocumentApp& application) {
  context_ = &context;
  application_ = &application;
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
  auto& window = alerts_[id] = std::make_unique<AlertWindow>(request, place);
  connect(window.get(), &AlertWindow::Pressed, this, [this, id](int which) { Answer(id, which); });
  window->Announce();
  bell_();
}

void QtUserInterface::UpdateAlert(AlertId id, const AlertRequest& request) {
  const auto found = alerts_.find(id);
  if (found == alerts_.end()) return;
  found->second->Update(request);
  found->second->Announce();
  bell_();
}

void QtUserInterface::RaiseAlert(AlertId id) {
  const auto found = alerts_.find(id);
  if (found != alerts_.end()) found->second->Raise();
}

void QtUserInterface::CloseAlert(AlertId id) { RemoveAlert(id); }

void QtUserInterface::Answer(AlertId id, int which) {
  RemoveAlert(id);
  context_->alerts.Answered(id, which);
}

void QtUserInterface::RemoveAlert(AlertId id) {
  const auto found = alerts_.find(id);
  if (found == alerts_.end()) return;
  // One of the window's own buttons may be what calls this.
  AlertWindow* window = found->second.release();
  alerts_.erase(found);
  window->hide();
  window->deleteLater();
}

void QtUserInterface::WaitForFatalError(const std::string& title, const std::string& text,
                                        const std::string& button) {
  if (!HasScreen()) return;
  AlertRequest request;
  request.Title = title;
  request.Text = text;
  request.Buttons = {button};
  request.Kind = AlertKind::Warning;
  AlertWindow window(request, AlertCascade::Places - 1);
  window.setAttribute(Qt::WA_ShowWithoutActivating, false);
  QEventLoop loop;
  connect(&window, &AlertWindow::Pressed, &loop, &QEventLoop::quit);
  window.Announce();
  loop.exec();
}

void QtUserInterface::ShowOpenPanel() {
  if (!openPanel_) openPanel_ = new OpenFilePanel(*context_);
  openPanel_->show();
  openPanel_->raise();
  openPanel_->activateWindow();
}

void QtUserInterface::ShowSettingsWindow() { ShowOnly(settingsWindow_, context_->settings); }
void QtUserInterface::ShowAboutWindow() { ShowOnly(aboutWindow_); }

/// Activates the window, and builds it first unless it is open already.
template <typename Window, typename... Parts>
void QtUserInterface::ShowOnly(QPointer<Window>& window, Parts&... parts) {
  if (!HasScreen()) return;
  if (!window || window->IsClosed()) window = new Window(parts..., *application_);
  window->Activate();
}

void QtUserInterface::CloseOtherWindows() {
  for (SideWindow* window : std::initializer_list<SideWindow*>{settingsWindow_, aboutWindow_})
    if (window && !window->IsClosed()) window->close();
  if (openPanel_) openPanel_->reject();
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
    connect(screen, &QScreen::availableGeometryChanged, this, &QtUserInterface::KeepAlertsOnScreen);
  };
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
  connect(qGuiApp, &QGuiApplication::screenRemoved, this, &QtUserInterface::KeepAlertsOnScreen);
}

void QtUserInterface::KeepAlertsOnScreen() {
  for (auto& [id, window] : alerts_) window->KeepOnScreen();
}

}  // namespace kestrin
