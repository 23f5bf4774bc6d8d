// A session bus of the test's own.
#pragma once

#include "harness/bus/Processes.h"

namespace kestrin {

/// A bus daemon in a folder of its own.
class PrivateBus {
 public:
  PrivateBus();
  const std::string& Folder() const { return folder_.path; }
  const std::string& Address() const { return address_; }
  /// $XDG_RUNTIME_DIR of the processes on this bus, and the file that the deliverer keeps there.
  std::string RuntimeFolder() const { return Folder() + "/run"; }
  std::string KeptFile() const { return RuntimeFolder() + "/kestrin/next-event"; }
  std::map<std::string, std::string> Environment() const;
  void AddService(const std::string& name, const std::string& command) const;
  /// Lets the bus find what the programs register below $XDG_DATA_HOME.
  void ServeDataFolder(const std::string& dataHome) const;
  void End() { daemon_.Signal(15); }
  void Stop() { daemon_.Signal(19); }
  /// What the daemon and the programs it started have written to standard error so far.
  const std::string& Errors() { return daemon_.Errors(); }

 private:
  TemporaryFolder folder_;
  LinePipe addressPipe_;
  std::string address_;
  Child daemon_;
};

}  // namespace kestrin
