// How the application opens its sets and shows them again.
#pragma once

#include <functional>
#include <string>

#include "core/app/AbsentSets.h"
#include "core/events/Context.h"
#include "core/files/RecoveryFolder.h"
#include "support/Message.h"

namespace kestrin {

class Event;
class EventSet;
enum class ConstructorResult : int32;

/// Main thread. Callers hold the locks of the settings and of the open sets.
class SetOpening {
 public:
  /// `addSampleEvents`: as in AppParts. `isPutOff`: whether a reminder of the event was put off.
  SetOpening(Context& context, RecoveryFolder& recovery, AbsentSets& absent,
             const std::function<void(EventSet& set)>& addSampleEvents,
             std::function<bool(const Event& event)> isPutOff)
      : context_(context),
        recovery_(recovery),
        absent_(absent),
        addSampleEvents_(addSampleEvents),
        isPutOff_(std::move(isPutOff)) {}

  /// The start is over: what is opened from now on is followed by a pass with the start-up flag,
  /// in which what was due already meets the rule for missed events.
  void BeginRunning() { running_ = true; }
  bool IsRunning() const { return running_; }

  /// Loads the remembered sets, without windows. What cannot be read is reported once, and
  /// forgotten only as AbsentSets says.
  void ReadSelectedSets();
  /// Loads a set or, for an empty path, makes a new one. Opening a file twice shows its window. A
  /// set that gets a window takes up what was not saved of it.
  void OpenSet(const std::string& path, bool openWindow);
  /// A new set that holds the sample; at most one is open.
  void ShowSample();
  /// The remembered sets if the settings say so, what was recovered, and at least one window: of
  /// the last used set or a new one.
  void OpenUserInterface();
  /// Raises a window of a set, or opens the user interface when there is none.
  void Activate();
  /// The clock has been set: heals what open sets have of the wrong one.
  void HealOpenSets();
  /// Re-reads an open set from its file, with a window if it had one; what was delivered stays
  /// delivered.
  void RevertToSaved(const std::string& path);

  std::string GetNextUntitledWindowName();
  bool AnyWindow() const;

 private:
  EventSet* LoadSet(const std::string& file, bool quietly = false);
  void Show(EventSet& set);
  void Used(const EventSet& set);
  std::string LastUsed() const;
  void OpenRecovered();
  EventSet* TakeUp(const RecoveredCopy& copy);
  EventSet* TakeUpUntitled(const RecoveredCopy& copy);
  void TakeUpCopyOf(const std::string& file);
  void ReportOpening(ConstructorResult result, const std::string& path);
  void ForgetGone(const std::string& path);

  Context& context_;
  RecoveryFolder& recovery_;
  AbsentSets& absent_;
  const std::function<void(EventSet& set)>& addSampleEvents_;
  const std::function<bool(const Event& event)> isPutOff_;
  int32 nextUntitled_ = 1;
  bool running_ = false;
};

}  // namespace kestrin
