// Windows and notifications as the two faces of an alert.
#pragma once

#include <map>

#include "core/ports/AlertScreen.h"
#include "core/ports/NotificationService.h"

namespace kestrin {

struct Context;

/// Stands between the desk and the windows: shows each alert as a window, as a notification or as
/// both, and sees to it that what was a notification alone becomes a window when nobody has
/// answered it. docs/reminders.md has the states. Main thread only.
class ReminderFaces final : public AlertScreen {
 public:
  /// Both outlive this.
  ReminderFaces(AlertScreen& windows, NotificationService& service)
      : windows_(windows), service_(service) {}

  /// Before the first alert.
  void Connect(const Context& context) { context_ = &context; }

  bool HasScreen() const override { return windows_.HasScreen(); }
  void OpenAlert(AlertId id, const AlertRequest& request, int32 place) override;
  void UpdateAlert(AlertId id, const AlertRequest& request) override;
  bool MoveToWindow(AlertId id, const AlertRequest& request) override;
  int32 MostReminderBoxes() const override { return windows_.MostReminderBoxes(); }
  bool KeepsAbove() const override { return windows_.KeepsAbove(); }
  void RaiseAlert(AlertId id) override { windows_.RaiseAlert(id); }
  void CloseAlert(AlertId id) override;

 private:
  /// An alert that came as a notification, alone or beside its window.
  struct Face {
    AlertRequest request;
    int32 place = 0;
    bool hasWindow = false;
    uint64 notification = 0;  ///< 0: none stands
  };

  int32 FacesOf(const AlertRequest& request) const;
  void Notify(AlertId id);
  void Withdraw(Face& face);
  void Replied(AlertId id, const NotificationReply& reply);
  void PutOff(AlertId id);
  void ShowWindow(AlertId id);

  AlertScreen& windows_;
  NotificationService& service_;
  const Context* context_ = nullptr;
  std::map<AlertId, Face> faces_;
};

}  // namespace kestrin
