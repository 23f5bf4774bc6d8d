// What the application has to do with the background deliverer, and says about it.
#pragma once

#include <string>

#include "core/loop/Notices.h"
#include "core/ports/BackgroundMessenger.h"
#include "support/Message.h"

namespace kestrin {

/// Main thread.
class BackgroundContact {
 public:
  /// `folder`: of the application's executable, in which the deliverer's lies too.
  BackgroundContact(Notices& notices, BackgroundMessenger& background, const std::string& folder)
      : notices_(notices), background_(background), folder_(folder) {}

  /// Starts the background deliverer unless it runs, and hands it the message (may be null). Waits
  /// for nothing; a failure is told when it is known.
  void LaunchBackgroundApp(const Message* message);
  /// BACKGROUND_LAUNCHED. The user is told of a failure once, and once more when a later attempt
  /// succeeds.
  void Launched(const Message& outcome);
  /// When leaving: waits, a second at most, for what is under way, and tells of it.
  void Finish();

  bool AlreadyToldUser = false;  ///< that the background deliverer could not be started

 private:
  Notices& notices_;
  BackgroundMessenger& background_;
  const std::string& folder_;
};

}  // namespace kestrin
