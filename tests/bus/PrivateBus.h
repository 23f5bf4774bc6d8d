// A session bus of the test's own and processes on it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kestrin {

inline constexpr std::chrono::seconds Patience{10};

/// Throws `what` unless it is good.
void Require(bool good, const char* what);

/// Microseconds since 1970.
int64_t RealTime();

/// A folder that goes away with the object.
struct TemporaryFolder {
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  std::string path;
};

/// A named pipe that other processes write lines to.
class LinePipe {
 public:
  explicit LinePipe(const std::string& path);
  ~LinePipe();
  LinePipe(const LinePipe&) = delete;
  LinePipe& operator=(const LinePipe&) = delete;
  /// The next line without its end, or what has come of it when patience ends.
  std::string NextLine();
  bool NothingWaits() const;

 private:
  int pipe_;
};

/// A process whose standard error is kept. Killed, if it still runs, with the object.
class Child {
 public:
  /// `environment`: additions to this process's own; an empty value removes the name.
  explicit Child(std::vector<std::string> arguments,
                 const std::map<std::string, std::string>& environment = {},
                 const std::string& folder = ".");
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t Id() const { return pid_; }
  void Signal(int number) const;
  /// Exit status, minus the signal that ended it, or -1000 when patience ends first.
  int Wait();
  /// What it has written to standard error; complete only after Wait().
  const std::string& Errors();

 private:
  pid_t pid_ = -1;
  int errors_ = -1;
  std::string text_;
};

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
  void End() { daemon_.Signal(15); }
  /// What the daemon and the programs it started have written to standard error so far.
  const std::string& Errors() { return daemon_.Errors(); }

 private:
  TemporaryFolder folder_;
  LinePipe addressPipe_;
  std::string address_;
  Child daemon_;
};

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

}  // namespace kestrin
