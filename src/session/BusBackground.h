// The background deliverer, reached over the session bus.
#pragma once

#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusServiceWatcher>
#include <chrono>
#include <memory>
#include <optional>

#include "core/loop/MessageQueue.h"
#include "core/ports/BackgroundMessenger.h"
#include "session/DetachedProgram.h"
#include "support/FileDoor.h"

namespace kestrin {

/// Goes step by step, each begun by the answer to the one before; docs/bus.md, "Reaching the
/// deliverer", has the table. After the toolkit's application object.
class BusBackground final : public BackgroundMessenger {
 public:
  struct Patience {
    std::chrono::milliseconds answer{10'000};  ///< of a deliverer that runs
    std::chrono::milliseconds start{25'000};   ///< until one has its name
    std::chrono::milliseconds leaving{1'000};  ///< of Finish
    std::chrono::milliseconds again{10'000};   ///< between two BACKGROUND_GONE
  };

  BusBackground(QDBusConnection bus, FileDoor& files, MessageQueue& queue);
  BusBackground(QDBusConnection bus, FileDoor& files, MessageQueue& queue, Patience patience);

  /// A file that was started, but has not taken its name, is not started again while it runs. An
  /// activation file is written for the application in the same folder, too; none while the bus
  /// knows both programs and they are there.
  void Launch(const Message* message, const std::string& file) override;
  void AskToQuit() override;
  std::optional<Message> Finish() override;

 private:
  enum class Step { None, Asking, Starting, Spawned, Naming, Reloading };
  using Clock = std::chrono::steady_clock;

  void Ask();
  void Start();
  void Spawn();
  void LookAgain();
  bool WriteFiles(const QDBusMessage& names);
  bool Knows(const std::string& name, const QStringList& activatable);
  void Send(Step step, const QDBusMessage& call, std::chrono::milliseconds patience);
  void Answered(const QDBusMessage& reply);
  void AskAnswered(const QDBusMessage& reply);
  void NobodyThere();
  void Reset();
  void End(bool runs);
  void DelivererGone();

  QDBusConnection bus_;
  FileDoor& files_;
  MessageQueue& queue_;
  const Patience patience_;

  Step step_ = Step::None;
  std::optional<Message> message_;  // what the deliverer is to get
  std::string file_;
  bool quitting_ = false;
  bool inTrash_ = false;
  bool started_ = false;   // by the bus, on our word
  bool spawned_ = false;   // by its path: the bus has to be told
  bool lastLook_ = false;  // it has ended, or had time enough to take its name
  Clock::time_point answerBy_, startBy_;
  std::unique_ptr<QDBusPendingCallWatcher> call_;
  std::optional<DetachedProgram> program_;
  QTimer look_, later_;
  QDBusServiceWatcher watcher_;
  std::optional<Clock::time_point> lastGone_;
  bool finishing_ = false;
  std::optional<Message> outcome_;
};

}  // namespace kestrin
