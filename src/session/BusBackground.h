// The background deliverer, reached over the session bus.
#pragma once

#include <QtDBus/QDBusConnection>
#include <chrono>
#include <optional>

#include "core/ports/BackgroundMessenger.h"
#include "session/DetachedProgram.h"
#include "support/FileDoor.h"

namespace kestrin {

/// Blocks without an event loop: no message of the application is handled inside a call.
class BusBackground final : public BackgroundMessenger {
 public:
  static constexpr std::chrono::milliseconds Patience{3000};

  /// `patience` is how long each call may take. Without a bus every call fails at once.
  BusBackground(QDBusConnection bus, FileDoor& files,
                std::chrono::milliseconds patience = Patience);

  LaunchResult Launch(const Message* message) override;
  /// A program that has been started this way, but did not take its name in time, is not started
  /// again as long as it runs.
  LaunchResult LaunchFile(const std::string& path, const Message* message) override;
  /// Writes an activation file for the application in the same folder, too. Does nothing while the
  /// bus knows both programs and they are there.
  void RegisterFile(const std::string& path) override;
  void AskToQuit() override;

 private:
  enum class Reached { Yes, NoOwner, Failed };
  using Deadline = std::chrono::steady_clock::time_point;

  Reached Reach(const Message* message, bool start, Deadline deadline);
  QDBusMessage Call(const QDBusMessage& call, Deadline deadline);
  bool Knows(const std::string& name, const QStringList& activatable);

  QDBusConnection bus_;
  FileDoor& files_;
  std::chrono::milliseconds patience_;
  std::optional<DetachedProgram> program_;
};

}  // namespace kestrin
