// What was put off: kept on disk, brought back at its moment, ended when it has nothing to return
// for.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/delivery/ReturningAlert.h"
#include "core/events/Context.h"
#include "core/events/EventSet.h"
#include "core/journal/Later.h"
#include "core/loop/PutOffKeeper.h"

namespace kestrin {

class EventSet;
class Event;

/// Main thread. docs/reminders.md tells what becomes of each kind.
class PutOffAlerts final : public PutOffKeeper {
 public:
  /// Both outlive this.
  PutOffAlerts(Context& context, Later& later) : context_(context), later_(later) {}

  /// At the start, after the journal was read. What was put off by a process that died before the
  /// journal said so does not stand open as well.
  void Read();
  std::string Keep(const AlertRequest& request, const PutOffMoment& when) override;
  void Asked(AlertRequest& request) override;
  void Opening(AlertRequest& request) override;
  void Ended(const AlertRequest& request) override;
  void EventDeleted(uint64 set, uint64 event) override;
  void SetSaved(uint64 set) override;

  /// When the next one returns that does not stand on the screen already; 0 for none.
  int64 NextReturn();
  /// Whether anything about the event was put off. Its set need not be among the open ones.
  bool Has(const Event& event);
  /// Asks for the alerts of all that is due. No set may be locked.
  void ReturnDue();
  /// Stores under which names the files of saved sets know the events.
  void FollowNames();

 private:
  struct Handles {
    uint64 Set = 0, Event = 0;
  };
  FoundEvent Known(const std::string& id);
  FoundEvent Find(const PutOffAlert& alert);
  std::vector<PutOffAlert> About(EventSet& set, const Event& event);
  void Return(const PutOffAlert& alert);
  bool AskAnew(const PutOffAlert& alert, Event& event);
  void End(const std::string& id);
  void TakeBackUndone();

  Context& context_;
  Later& later_;
  std::map<std::string, Handles> handles_;  ///< by id; of those that this process has met
  std::set<std::string> standing_;          ///< shown again, not yet answered
  std::map<std::string, uint64>
      deleted_;  ///< do not return; until the set of that handle is saved or the event is back
  std::map<uint64, std::string> askedAnew_;  ///< ids by the event whose handler asks again
  std::optional<int64> next_;                ///< NextReturn, until something changes
};

}  // namespace kestrin
