// All alerts on the screen.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>
#include <map>
#include <memory>

#include "core/ports/Alert.h"
#include "core/timing/LaterMoments.h"

namespace kestrin {

class AlertWindow;
class RemindersWindow;
struct Context;

/// How alerts are heard. Both return at once; Stop may be null.
struct AlertSound {
  std::function<void()> Play, Stop;
};

/// The calls are those of the UserInterface port. Main thread only.
class AlertViews final : public QObject {
  Q_OBJECT

 public:
  /// The sound is played once for each heap of alerts, or, where the settings say so, again and
  /// again until they are answered.
  explicit AlertViews(AlertSound sound);
  ~AlertViews() override;

  /// Before the first alert that is to be answered. Outlives this object's windows.
  void Connect(Context& context) { context_ = &context; }
  /// The person's screens have changed.
  void KeepOnScreen();

  void Open(AlertId id, const AlertRequest& request, int32 place);
  void Update(AlertId id, const AlertRequest& request);
  bool MoveToWindow(AlertId id, const AlertRequest& request);
  int32 MostReminderBoxes() const;
  void Raise(AlertId id);
  void Close(AlertId id);
  void WaitForFatalError(const AlertRequest& request);

 private:
  void OpenBox(AlertId id, const AlertRequest& request, int32 place);
  void AddRow(AlertId id, const AlertRequest& request);
  void OpenReminders();
  void Sound();
  bool GoesOnSounding() const;
  void Silence(AlertId id);
  void Answer(AlertId id, int which);
  void PutOff(AlertId id, const PutOffMoment& when);
  bool MayOpenEvent(const AlertRequest& request) const;

  AlertSound sound_;
  QTimer repeat_;
  QElapsedTimer sounded_;               ///< since the last sound, but for repeated ones
  std::map<AlertId, AlertRole> heard_;  ///< every alert that is open
  bool soundIsComing_ = false;
  bool announcementIsComing_ = false;
  Context* context_ = nullptr;
  std::map<AlertId, std::unique_ptr<AlertWindow>> boxes_;
  RemindersWindow* reminders_ = nullptr;  ///< deletes itself once it is empty
};

}  // namespace kestrin
