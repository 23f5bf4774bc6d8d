// A session bus of the test's own, in a folder of its own, and the processes on it.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

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

/// Runs the event loop until the condition holds; false after ten seconds.
bool RunUntil(const std::function<bool()>& condition);

/// A process that ends with the test.
class Process {
 public:
  Process(const std::filesystem::path& program, std::vector<std::string> arguments,
          const std::filesystem::path& folder, int output = 1);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  void Signal(int signal) const;
  /// Waits for its end; the exit status, or -1 if a signal ended it.
  int Status();

 private:
  pid_t id_ = 0;
};

class PrivateBus : public testing::Test {
 protected:
  PrivateBus();
  ~PrivateBus() override;

  /// Another connection to the bus, which dispatches nothing by itself.
  QDBusConnection& Client() { return client_; }
  QDBusMessage CallBus(const char* member, const QVariantList& arguments = {});
  bool HasOwner(const char* name);
  /// Everything that the client has sent is where it should go.
  void Settle() { CallBus("GetId"); }

  /// The peer under another name, in `folder` below the test's folder.
  std::filesystem::path Install(const std::string& name, const std::string& folder = "bin");
  void Activatable(const std::string& name, const std::filesystem::path& program);
  std::filesystem::path ActivationFile(const std::string& name) const;

  /// The next line that a peer has logged; a note when none comes within ten seconds.
  std::string NextLine();
  bool NoLine() const;

  const std::filesystem::path& Folder() const { return folder_; }
  Process& Daemon() { return *daemon_; }

 private:
  std::filesystem::path folder_;
  std::vector<std::unique_ptr<ScopedVariable>> variables_;
  std::unique_ptr<Process> daemon_;
  QDBusConnection client_{QString()};
  int log_ = -1;
};

}  // namespace kestrin
