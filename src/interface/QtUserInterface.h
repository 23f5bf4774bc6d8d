// The screen as core knows it, made of Qt's windows.
#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

#include "core/ports/UserInterface.h"
#include "interface/alerts/AlertViews.h"
#include "interface/common/FilePanels.h"

namespace kestrin {

class AboutWindow;
class DocumentApp;
class HistoryWindow;
class SettingsWindow;
class OpenFilePanel;
struct Context;

/// Built before the services that need it and connected to them afterwards. It has a screen when a
/// QApplication exists. Main thread only.
class QtUserInterface final : public QObject, public UserInterface {
  Q_OBJECT

 public:
  /// How alerts are heard: see AlertViews.
  explicit QtUserInterface(std::function<void()> play, std::function<void()> stop = {});
  QtUserInterface();
  ~QtUserInterface() override;

  /// Before the first window or alert. Both outlive this object's windows.
  void Connect(Context& context, DocumentApp& application);

  bool HasScreen() const override;
  SetWindow* OpenSetWindow(EventSet& set) override;
  EditorWindow* OpenEventWindow(Event& event) override;
  void OpenAlert(AlertId id, const AlertRequest& request, int32 place) override;
  void UpdateAlert(AlertId id, const AlertRequest& request) override;
  bool MoveToWindow(AlertId id, const AlertRequest& request) override;
  int32 MostReminderBoxes() const override;
  bool KeepsAbove() const override;
  void RaiseAlert(AlertId id) override;
  void CloseAlert(AlertId id) override;
  void WaitForFatalError(const std::string& title, const std::string& text,
                         const std::string& button) override;
  void ShowOpenPanel() override;
  void ShowSettingsWindow() override;
  void ShowAboutWindow() override;
  void ShowHistoryWindow(const std::string& stateFolder) override;
  void CloseOtherWindows() override;
  void SettingsChanged() override;
  QWidget* CreateEditView(EventAddOnData& data, Rect frame) override;
  void DestroyEditView(QWidget* view) override;

 private:
  template <typename Window, typename... Parts>
  void ShowOnly(QPointer<Window>& window, Parts&... parts);
  void ShowOwnOpenPanel();
  void WatchScreens();

  AlertViews alerts_;
  Context* context_ = nullptr;
  DocumentApp* application_ = nullptr;
  QPointer<SettingsWindow> settingsWindow_;
  QPointer<AboutWindow> aboutWindow_;
  QPointer<HistoryWindow> historyWindow_;
  QPointer<OpenFilePanel> openPanel_;
  DesktopPanel desktopPanel_;  ///< the one that opens sets
};

}  // namespace kestrin
