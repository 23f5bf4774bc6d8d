// Open alerts outlive a forced end: they are recorded then, and the next process shows them again.
#pragma once

#include <optional>
#include <vector>

#include "core/events/Context.h"
#include "core/files/RecoveryFolder.h"
#include "support/Message.h"

namespace kestrin {

class Event;
struct AlertRequest;

/// Main thread.
class RecordedAlerts {
 public:
  RecordedAlerts(Context& context, RecoveryFolder& recovery)
      : context_(context), recovery_(recovery) {}

  /// Shows what an earlier process has recorded. Without a screen the record stays.
  void ShowAgain();
  /// The process ends by force: closes every alert and records all but those that ask whether to
  /// save.
  void EndByForce();

 private:
  void Show(size_t place);
  void ShowWithReply(AlertRequest request, const Event* event, size_t place);
  void Done(size_t place);

  Context& context_;
  RecoveryFolder& recovery_;
  std::vector<std::optional<Message>> records_;  ///< shown again, not yet answered
  bool shown_ = false;                           ///< else the record is as it was found
  bool ended_ = false;
};

}  // namespace kestrin
