// A private bus with a client of the session's own kind, folders, and the peers on it.
#pragma once

#include <gtest/gtest.h>

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus/PrivateBus.h"

namespace kestrin {

/// Sets a variable of the environment, or removes it, until the end of the scope.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, std::optional<std::string> value);
  ~ScopedVariable();
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  static void Set(const std::string& name, const std::optional<std::string>& value);
  std::string name_;
  std::optional<std::string> before_;
};

/// Runs the event loop until the condition holds; false when patience ends first.
bool RunUntil(const std::function<bool()>& condition);

class SessionBus : public testing::Test {
 protected:
  SessionBus();
  ~SessionBus() override;

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
  std::string ActivationFile(const std::string& name) const;

  /// The next line that a peer has logged.
  std::string NextLine() { return log_.NextLine(); }
  bool NoLine() const { return log_.NothingWaits(); }

  const std::filesystem::path& Folder() const { return folder_; }
  PrivateBus& Bus() { return *bus_; }

 private:
  TemporaryFolder home_;
  const std::filesystem::path folder_{home_.path};
  LinePipe log_{home_.path + "/log"};
  std::vector<std::unique_ptr<ScopedVariable>> variables_;
  std::unique_ptr<PrivateBus> bus_;
  QDBusConnection client_{QString()};
};

}  // namespace kestrin
