// Asks `kestrinctl status`.
#pragma once

#include <QtCore/QObject>
#include <chrono>

#include "core/ports/ReminderCheck.h"

namespace kestrin {

/// Each Look starts the program, so what is shown is what a shell would say. Nothing here blocks.
class CtlReminderCheck final : public QObject, public ReminderCheck {
 public:
  static constexpr std::chrono::milliseconds Patience{20000};

  /// `folder` is where kestrinctl lies; one that takes longer than `patience` is ended.
  explicit CtlReminderCheck(const std::string& folder,
                            std::chrono::milliseconds patience = Patience)
      : program_(folder + "/kestrinctl"), patience_(patience) {}

  void Look(Done done) override;

 private:
  std::string program_;
  std::chrono::milliseconds patience_;
};

}  // namespace kestrin
