// Where alerts are seen, as a port. Main thread only.
#pragma once

#include "core/ports/Alert.h"

namespace kestrin {

class AlertScreen {
 public:
  virtual ~AlertScreen() = default;

  /// False when the process has no display: no window can be opened.
  virtual bool HasScreen() const = 0;

  /// Alerts are opened, changed and answered by id; the answer goes to AlertDesk::Answered. `place`
  /// is the alert's position in the cascade, 0 and up, free of any other open box, or RowPlace, or
  /// NoPlace. One that was opened at NoPlace is opened again when it is to be seen.
  virtual void OpenAlert(AlertId id, const AlertRequest& request, int32 place) = 0;
  virtual void UpdateAlert(AlertId id, const AlertRequest& request) = 0;
  /// A box becomes a row of the Reminders window; false when the person is at it: it stays.
  virtual bool MoveToWindow(AlertId id, const AlertRequest& request) = 0;
  /// So many reminders stand as boxes; with one more, all are rows.
  virtual int32 MostReminderBoxes() const = 0;
  /// Whether an alert can be kept above other windows.
  virtual bool KeepsAbove() const = 0;
  /// Brings the alert to the front and gives it the focus.
  virtual void RaiseAlert(AlertId id) = 0;
  /// Closes whatever shows the alert still, without an answer.
  virtual void CloseAlert(AlertId id) = 0;
};

}  // namespace kestrin
