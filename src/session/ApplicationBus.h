// The application on the session bus: one process holds its name, those after it hand over.
#pragma once

#include <QtDBus/QDBusConnection>
#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "core/ports/BusPresence.h"
#include "session/BusReceiver.h"

namespace kestrin {

/// How the process was started; see ProcessInfo.h.
struct Start {
  std::vector<std::string> arguments;  ///< without the program's own name
  std::string activationToken;
  bool byBus = false;
  /// For what the bus starts; see DisplayProbe.h.
  std::map<std::string, std::string> environment = {};
};

enum class Arrival {
  First,       ///< the name is ours: go on
  HandedOver,  ///< the running application has taken the arguments: end with status 0
  NoAnswer,    ///< it has not: end with status 1
  NoBus,       ///< there is no bus to be reached
};

/// Main thread only.
class ApplicationBus final : public BusPresence {
 public:
  static constexpr std::chrono::milliseconds HandOverPatience{10000};

  /// `patience` is how long the running application may take to answer what is handed over.
  explicit ApplicationBus(MessageQueue& queue,
                          std::chrono::milliseconds patience = HandOverPatience);
  ~ApplicationBus() override;
  ApplicationBus(const ApplicationBus&) = delete;
  ApplicationBus& operator=(const ApplicationBus&) = delete;

  /// Takes the name, or hands the arguments over. Works before the
  /// toolkit's application object is built. Call once.
  Arrival Arrive(const Start& start);
  /// In words, for NoAnswer and NoBus; one line.
  const std::string& Reason() const { return reason_; }

  /// After the toolkit's application object is built: whatever was sent to the name before this
  /// call stands in the queue afterwards. A DELIVER_EVENTS among it makes the process deliver only.
  void Dispatch();

  bool Leave() override;

  /// For other talk on the same connection; not connected unless Arrive returned First.
  const QDBusConnection& Connection() const { return connection_; }

 private:
  bool TakeName();
  bool NameHasOwner();
  Arrival HandOver(const Start& start, bool& ownerIsGone);
  void TellEnvironment(const std::map<std::string, std::string>& told);
  void RememberTold(const std::map<std::string, std::string>& told);
  void Forward(const std::vector<BusReceiver::Held>& held);
  QDBusMessage Call(const QDBusMessage& call, std::chrono::milliseconds patience = BusPatience);
  QDBusMessage LastCall(const QDBusMessage& call);

  static constexpr std::chrono::milliseconds BusPatience{3000}, LeavingPatience{1000};

  MessageQueue& queue_;
  std::chrono::milliseconds patience_;
  BusReceiver receiver_;
  QDBusConnection connection_;
  std::string reason_;
  bool hasName_ = false;
  std::chrono::steady_clock::time_point leaveBy_;
};

}  // namespace kestrin
