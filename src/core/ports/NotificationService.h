// The desktop's notification service, as a port. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

struct Notification {
  std::string Title, Text;  ///< plain, in any encoding
  NotificationUrgency Urgency = UrgencyNormal;
  /// Keys and labels, left out where the service has no actions. "default": it is clicked.
  std::vector<std::pair<std::string, std::string>> Actions;
};

struct NotificationReply {
  enum class Kind {
    Lost,       ///< it is not on the screen, and no person has seen to that
    Dismissed,  ///< by the person
    Action
  };
  Kind What = Kind::Lost;
  std::string Key;  ///< of the action
};

class NotificationService {
 public:
  using Replied = std::function<void(const NotificationReply& reply)>;
  virtual ~NotificationService() = default;
  /// Asks for it and returns at once; `replied` is called once, on a later turn of the event loop,
  /// unless the notification is closed before. The result is never 0. What does not stand on the
  /// screen within a second is lost, and never comes afterwards.
  virtual uint64 Show(const Notification& notification, Replied replied) = 0;
  /// Takes it from the screen and calls nobody. Nothing happens when it has replied.
  virtual void Close(uint64 notification) = 0;
};

}  // namespace kestrin
