// The alerts of deliveries, in the journal from the moment they are asked for until they are
// answered; the next process with a screen shows again what nobody has answered.
#pragma once

#include <set>
#include <string>

#include "core/events/Context.h"
#include "core/loop/AlertRecorder.h"

namespace kestrin {

class Event;
class Journal;
struct JournalRecord;

/// Main thread.
class OpenAlerts final : public AlertRecorder {
 public:
  /// Registers with the context's alert desk.
  explicit OpenAlerts(Context& context);
  ~OpenAlerts() override;
  OpenAlerts(const OpenAlerts&) = delete;
  OpenAlerts& operator=(const OpenAlerts&) = delete;

  void Shown(AlertRequest& request) override;
  void Opening() override;
  void Answered(const AlertRequest& request, int which) override;
  void PutOff(const AlertRequest& request) override;

  /// What stood open when its process ended, in whatever way. Nothing happens without a screen.
  void ShowAgain();
  /// One that is this process's own and that nobody has shown yet.
  void Show(const JournalRecord& record);

 private:
  void AskAnew(const JournalRecord& record, Event& event);
  std::string RecordOfDelivery(const AlertRequest& request) const;

  Context& context_;
  std::set<std::string> again_;  ///< ids of what is being shown again
};

}  // namespace kestrin
