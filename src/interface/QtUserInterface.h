// The screen as core knows it, made of Qt's windows.
#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <map>
#include <memory>

#include "core/ports/UserInterface.h"

namespace kestrin {

class AboutWindow;
class AlertWindow;
class DocumentApp;
class SettingsWindow;
class OpenFilePanel;
struct Context;

/// Built before the services that need it and connected to them afterwards. It has a screen when a
/// QApplication exists. Main thread only.
class QtUserInterface final : public QObject, public UserInterface {
  Q_OBJECT

 public:
  /// `bell` sounds once for each alert.
  explicit QtUserInterface(std::function<void()> bell);
  QtUserInterface();
  ~QtUserInterface() override;

  /// Before the first window or alert. Both outlive this object's windows.
  void Connect(Context& context, DocumentApp& application);

  bool HasScreen() const override;
  SetWindow* OpenSetWindow(EventSet& set) override;
  EditorWindow* OpenEventWindow(Event& event) override;
  void OpenAlert(AlertId id, const AlertRequest& request, int32 place) override;
  void UpdateAlert(AlertId id, const AlertRequest& request) override;
  void RaiseAlert(AlertId id) override;
  void CloseAlert(AlertId id) override;
  void WaitForFatalError(const std::string& title, const std::string& text,
                         const std::string& button) override;
  void ShowOpenPanel() override;
  void ShowSettingsWindow() override;
  void ShowAboutWindow() override;
  void CloseOtherWindows() override;
  void SettingsChanged() override;
  QWidget* CreateEditView(EventAddOnData& data, Rect frame) override;
  void DestroyEditView(QWidget* view) override;

 private:
  void Answer(AlertId id, int which);
  void RemoveAlert(AlertId id);
  template <typename Window, typename... Parts>
  void ShowOnly(QPointer<Window>& window, Parts&... parts);
  void WatchScreens();
  void KeepAlertsOnScreen();

  std::function<void()> bell_;
  Context* context_ = nullptr;
  DocumentApp* application_ = nullptr;
  std::map<AlertId, std::unique_ptr<AlertWindow>> alerts_;
  QPointer<SettingsWindow> settingsWindow_;
  QPointer<AboutWindow> aboutWindow_;
  QPointer<OpenFilePanel> openPanel_;
};

}  // namespace kestrin
