// All alerts of the application: which stand open, which wait, and what happens when one is
// answered.
#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "core/loop/AlertRecorder.h"
#include "core/loop/MessageQueue.h"
#include "core/loop/PutOffKeeper.h"
#include "core/ports/Alert.h"
#include "core/ports/AlertScreen.h"

namespace kestrin {

/// At most MaxOpenAlerts stand open as boxes; the others wait their turn, in order. Prompts wait
/// for nobody. More reminders than the user interface has boxes for become rows of one window,
/// those that are open with them, until that is empty. Windows are opened on a later turn of the
/// message loop (ALERTS_WAITING), never inside Show. Without a screen an alert's text goes to
/// standard error and it is answered harmlessly. docs/reminders.md tells what several alerts of one
/// event do.
class AlertDesk {
 public:
  static constexpr int32 MaxOpenAlerts = 24;

  /// Built in the main thread.
  AlertDesk(MessageQueue& queue, AlertScreen& ui)
      : queue_(queue), ui_(ui), mainThread_(std::this_thread::get_id()) {}

  /// Any thread. The request's Done is called exactly once, in the main thread: when the alert is
  /// answered, or with the harmless button when it is brought up to date by another or ended. Once
  /// EndByForce has begun, Done is called before Show returns, in the calling thread. No set may be
  /// locked.
  void Show(AlertRequest request);

  /// On ALERTS_WAITING. Main thread, as all that follows.
  void OpenWaiting();
  /// From the user interface; the screen closes what shows the alert still.
  void Answered(AlertId id, int which);
  /// Who keeps what is put off. Without one nothing can be put off.
  void KeepWith(PutOffKeeper* keeper) { keeper_ = keeper; }
  /// Who writes down what was shown and answered; may be null.
  void RecordWith(AlertRecorder* recorder) { recorder_ = recorder; }
  bool CanPutOff() const { return keeper_ != nullptr; }
  /// From the user interface: the alert is to come back, and its Done gets the harmless answer. It
  /// stands open still when a sentence comes back that says why it cannot be put off.
  std::string PutOff(AlertId id, const PutOffMoment& when);
  /// An alert that comes at that moment for the first time; what comes back is as above.
  std::string ShowAt(const AlertRequest& request, const PutOffMoment& when);
  /// Brings the prompt about the set to the front; false when none stands open or waits.
  bool RaisePrompt(uint64 set);
  /// Closes every prompt, those that wait too, with its harmless answer.
  void DismissPrompts();
  /// Whether a question about the event stands open or waits.
  bool Asks(uint64 event) const;
  /// A person is about to delete the event: what was put off for it does not return.
  void EventDeleted(uint64 set, uint64 event);
  void SetSaved(uint64 set);
  bool Empty() const;

  /// Closes everything with the harmless answer, which counts as none: the recorder is not told.
  /// Later requests are answered harmlessly at once.
  void EndByForce();

 private:
  struct Open {
    AlertRequest request;
    std::optional<AlertRequest> added;  ///< a reminder that stands in it as lines
    int32 place;
    AlertRequest Shown() const;
    /// What each of the two is answered with when that button is pressed.
    int ButtonOfRequest(int which) const;
    int ButtonOfAdded(int which) const;
    void AnswerAll(int which);
  };
  static constexpr int MostTurnsWaited = 5000;

  void Record(AlertRequest& request);
  void RecordShown();
  void BringUpToDate();
  bool ReplaceWaiting();
  bool TakeIntoOpen(AlertRequest& fresh);
  void Outdated(AlertRequest& request);
  void Finish(AlertId id, int which);
  std::optional<AlertRequest> TakeNext();
  std::optional<AlertRequest> TakeWaiting(size_t at);
  bool WaitsForTheHeap();
  bool GoesToWindow(const AlertRequest& request) const;
  void MoveBoxes();
  size_t CountWaiting() const;
  int32 CountBoxes() const;
  int32 FreePlace() const;

  MessageQueue& queue_;
  AlertScreen& ui_;
  mutable std::mutex guard_;  ///< of waiting_ and ended_; all else belongs to the main thread
  std::deque<AlertRequest> waiting_;
  bool ended_ = false;
  size_t settled_ = 0;  ///< how many of waiting_, from its front, bring no other alert up to date
  std::map<AlertId, Open> open_;
  AlertId nextId_ = 1;
  PutOffKeeper* keeper_ = nullptr;
  AlertRecorder* recorder_ = nullptr;
  const std::thread::id mainThread_;
  bool asWindow_ = false;  ///< reminders are rows
  int turnsWaited_ = 0;
};

}  // namespace kestrin
