// The engine without a screen, a bus or a desktop, on a clock that its owner sets.
#pragma once

#include <functional>

#include "core/events/Context.h"
#include "core/events/HandlerTable.h"
#include "core/events/OpenSets.h"
#include "core/loop/AlertDesk.h"
#include "core/loop/Holds.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/Notices.h"
#include "core/ports/BackgroundMessenger.h"
#include "core/ports/Desktop.h"
#include "core/ports/EventActions.h"
#include "core/ports/UserInterface.h"
#include "core/ports/Workers.h"
#include "core/settings/KestrinSettings.h"

namespace kestrin {

class VirtualClock final : public Clock {
 public:
  int64 Now() const override { return Time; }
  int64 SteadyMicroseconds() const override { return 0; }
  int64 Time = 0;
};

/// A screen on which nothing is ever shown.
class EmptyUserInterface final : public UserInterface {
 public:
  bool HasScreen() const override { return true; }
  SetWindow* OpenSetWindow(EventSet&) override { return nullptr; }
  EditorWindow* OpenEventWindow(Event&) override { return nullptr; }
  void OpenAlert(AlertId, const AlertRequest&, int32) override {}
  void UpdateAlert(AlertId, const AlertRequest&) override {}
  bool MoveToWindow(AlertId, const AlertRequest&) override { return false; }
  int32 MostReminderBoxes() const override { return INT32_MAX; }
  bool KeepsAbove() const override { return true; }
  void RaiseAlert(AlertId) override {}
  void CloseAlert(AlertId) override {}
  void WaitForFatalError(const std::string&, const std::string&, const std::string&) override {}
  void ShowOpenPanel() override {}
  void ShowSettingsWindow() override {}
  void ShowAboutWindow() override {}
  void ShowHistoryWindow(const std::string&) override {}
  void CloseOtherWindows() override {}
  void SettingsChanged() override {}
  QWidget* CreateEditView(EventAddOnData&, Rect) override { return nullptr; }
  void DestroyEditView(QWidget*) override {}
};

/// A desktop and workers that carry nothing out.
class EmptyDesktop final : public Desktop {
 public:
  FileDescription Describe(const std::string&) override { return {}; }
  bool Launch(const std::string&) override { return false; }
  bool OpenPage(const std::string&, const std::string&) override { return false; }
  int32 StartCommand(const std::string&) override { return 0; }
  int32 WaitForCommand(int32) override { return 0; }
};

class EmptyWorkers final : public Workers {
 public:
  bool Start(const char*, std::function<void()>) override { return false; }
  bool StartLater(const char*, int32, std::function<void()>) override { return false; }
};

enum class DeliveryKind { Prewarning, Event, Nag };

/// Writes down what would be delivered, as if every alert were answered with "OK".
class RecordingActions final : public EventActions {
 public:
  void DeliverPrewarnMessage(Event& event) override;
  void DeliverNagMessage(Event& event) override;
  void DeliverEvent(Event& event, bool missed) override;
  bool CanDeliver(const Event&) const override { return true; }
  ActionPlan PlanOf(const Event&) const override { return {}; }
  void CarryOut(Context&, const std::string&, const ActionPlan&) override {}

  /// May be empty.
  std::function<void(DeliveryKind kind, Event& event, bool missed)> OnDelivery;
};

/// Complete in itself: there may be several. Its table of handlers is empty at first.
struct VirtualEngine {
  VirtualEngine();

  VirtualClock clock;
  SystemFileDoor files;
  MessageQueue queue;
  Holds holds{queue};
  EmptyUserInterface ui;
  AlertDesk alerts{queue, ui};
  Notices notices{alerts, holds, ui};
  EmptyDesktop desktop;
  EmptyWorkers workers;
  RecordingActions actions;
  KestrinSettings settings;
  HandlerTable handlers;
  Context context;
  OpenSets openSets;
};

}  // namespace kestrin
