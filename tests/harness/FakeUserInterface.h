// A screen that only writes down what it is asked to show, and a person who answers alerts.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app/DocumentApp.h"
#include "core/loop/AlertDesk.h"
#include "core/ports/UserInterface.h"
#include "harness/FakeWindows.h"

namespace kestrin {

class FakeUserInterface final : public UserInterface {
 public:
  struct Alert {
    AlertId Id;
    AlertRequest Request;
    int32 Place;
  };

  FakeUserInterface() = default;
  ~FakeUserInterface() override {
    for (auto* window : std::vector(EditorWindows)) window->Orphan(), window->CloseNow();
    for (auto* window : std::vector(SetWindows)) window->Orphan(), window->CloseNow();
  }

  bool Screen = true, Above = true;
  int32 MostBoxes = INT32_MAX;
  std::string Busy = "-";             ///< what the box says that the person is at
  AlertDesk* Desk = nullptr;          ///< gets the answers
  DocumentApp* App = nullptr;         ///< set windows register there; may be null
  std::vector<Alert> Alerts;          ///< stand open, in the order of opening
  std::vector<AlertRequest> History;  ///< all that were ever opened or brought up to date
  std::vector<FakeSetWindow*> SetWindows;
  std::vector<FakeEditorWindow*> EditorWindows;
  std::vector<std::string> Calls;  ///< "ShowOpenPanel" and the like, fatal errors with their text
  std::function<void()> WhenClosingOthers;  ///< may be null

  /// Presses the button of the alert with that very text; false when there is no such alert.
  bool AnswerText(std::string_view text, int which) {
    const auto found = std::find_if(Alerts.begin(), Alerts.end(), [text](const Alert& alert) {
      return alert.Request.Text == text;
    });
    return Answer(found == Alerts.end() ? nullptr : &*found, which);
  }
  /// Presses the button of the alert that opened first, or closes it by its harmless button.
  bool AnswerFirst(int which) { return Answer(Alerts.empty() ? nullptr : &Alerts[0], which); }
  bool CloseFirst() { return !Alerts.empty() && AnswerFirst(Alerts[0].Request.HarmlessButton); }

  /// What the open alerts say, in the order of opening.
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Alert& alert : Alerts) texts.push_back(alert.Request.Text);
    return texts;
  }

  bool HasScreen() const override { return Screen; }
  SetWindow* OpenSetWindow(EventSet& set) override {
    if (!Screen) return nullptr;
    if (App) App->RegisterWindow();
    return SetWindows.emplace_back(new FakeSetWindow(set, [this](auto* window) {
      std::erase(SetWindows, window);
      if (App) App->UnregisterWindow();
    }));
  }
  EditorWindow* OpenEventWindow(Event& event) override {
    if (!Screen) return nullptr;
    return EditorWindows.emplace_back(
        new FakeEditorWindow(event, [this](auto* window) { std::erase(EditorWindows, window); }));
  }
  void OpenAlert(AlertId id, const AlertRequest& request, int32 place) override {
    CloseAlert(id);  // one that was only heard
    Alerts.push_back({id, request, place});
    History.push_back(request);
  }
  void UpdateAlert(AlertId id, const AlertRequest& request) override {
    for (Alert& alert : Alerts)
      if (alert.Id == id) alert.Request = request;
    History.push_back(request);
  }
  bool MoveToWindow(AlertId id, const AlertRequest&) override {
    for (Alert& alert : Alerts)
      if (alert.Id == id && alert.Request.Text != Busy) return alert.Place = RowPlace, true;
    return false;
  }
  int32 MostReminderBoxes() const override { return MostBoxes; }
  bool KeepsAbove() const override { return Above; }
  void RaiseAlert(AlertId) override { Calls.emplace_back("RaiseAlert"); }
  void CloseAlert(AlertId id) override {
    std::erase_if(Alerts, [id](const Alert& alert) { return alert.Id == id; });
  }
  void WaitForFatalError(const std::string&, const std::string& text, const std::string&) override {
    Calls.push_back(text);
  }
  void ShowOpenPanel() override { Calls.emplace_back("ShowOpenPanel"); }
  void ShowSettingsWindow() override { Calls.emplace_back("ShowSettingsWindow"); }
  void ShowAboutWindow() override { Calls.emplace_back("ShowAboutWindow"); }
  void ShowHistoryWindow(const std::string& folder) override {
    Calls.push_back("ShowHistoryWindow " + folder);
  }
  void CloseOtherWindows() override {
    if (WhenClosingOthers) WhenClosingOthers();
  }
  void SettingsChanged() override { Calls.emplace_back("SettingsChanged"); }
  QWidget* CreateEditView(EventAddOnData&, Rect) override { return nullptr; }
  void DestroyEditView(QWidget*) override {}

 private:
  bool Answer(const Alert* alert, int which) {
    if (!alert) return false;
    const AlertId id = alert->Id;
    CloseAlert(id);
    Desk->Answered(id, which);
    return true;
  }
};

}  // namespace kestrin
