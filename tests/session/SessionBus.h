// A private bus with a client of the session's own kind, folders, and the peers on it.
#pragma once

#include <gmock/gmock.h>

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <filesystem>
#include <memory>
#include <optional>

#include "harness/bus/PrivateBus.h"

namespace kestrin {

/// Sets variables of the environment, or removes them, until the end of the scope.
class ScopedVariables : NotCopied {
 public:
  using Values = std::map<std::string, std::optional<std::string>>;
  explicit ScopedVariables(Values values) : values_(std::move(values)) { Exchange(); }
  ScopedVariables(const char* name, const std::string& value) : values_{{name, value}} {
    Exchange();
  }
  ~ScopedVariables() { Exchange(); }

 private:
  void Exchange();
  Values values_;
};

/// Runs the event loop until the condition holds; false when patience ends first.
bool RunUntil(const std::function<bool()>& condition);

class SessionBus : public testing::Test {
 protected:
  SessionBus();
  ~SessionBus() override { QDBusConnection::disconnectFromBus("client"); }

  /// Another connection to the bus, which dispatches nothing by itself.
  QDBusConnection& Client() { return client_; }
  QDBusMessage CallBus(const char* member, const QVariantList& arguments = {});
  bool HasOwner(const char* name);
  /// Everything that the client has sent is where it should go.
  void Settle() { CallBus("GetId"); }

  /// The peer under another name, in `folder` below the test's folder.
  std::filesystem::path Install(const std::string& name, const std::string& folder = "bin");
  /// Runs it in the test's folder.
  std::unique_ptr<Child> Start(const std::string& program, std::vector<std::string> arguments = {});
  void Activatable(const std::string& name, const std::string& program);

  /// The next line that a peer has logged.
  std::string NextLine() { return log_.NextLine(); }
  bool NoLine() const { return log_.NothingWaits(); }

  const std::filesystem::path& Folder() const { return folder_; }
  PrivateBus& Bus() { return bus_; }

 private:
  TemporaryFolder home_;
  const std::filesystem::path folder_{home_.path};
  LinePipe log_{home_.path + "/log"};
  ScopedVariables variables_;  // what the bus starts inherits them
  PrivateBus bus_;
  ScopedVariables address_{"DBUS_SESSION_BUS_ADDRESS", bus_.Address()};
  QDBusConnection client_;
};

}  // namespace kestrin
