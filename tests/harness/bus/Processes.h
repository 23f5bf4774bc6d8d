// Processes that the tests start, and the files and pipes between them.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kestrin {

inline constexpr std::chrono::seconds Patience{10};

/// Throws `what` unless it is good.
void Require(bool good, const char* what);

/// Looks again and again; false when patience ends first.
bool Until(const std::function<bool()>& condition);

/// Microseconds since 1970.
int64_t RealTime();

std::string ReadFile(const std::string& path);
/// `mode` 0: as the process makes files.
void WriteFile(const std::string& path, const std::string& text, mode_t mode = 0);

/// What is made for one place only.
struct NotCopied {
  NotCopied() = default;
  NotCopied(const NotCopied&) = delete;
  NotCopied& operator=(const NotCopied&) = delete;
};

/// A folder that goes away with the object.
struct TemporaryFolder : NotCopied {
  TemporaryFolder();
  ~TemporaryFolder();
  std::string path;
};

/// A named pipe that other processes write lines to.
class LinePipe : NotCopied {
 public:
  explicit LinePipe(const std::string& path);
  ~LinePipe();
  /// The next line without its end, or what has come of it when patience ends.
  std::string NextLine();
  bool NothingWaits() const;

 private:
  int pipe_;
};

/// A process whose standard error is kept. Killed, if it still runs, with the object.
class Child : NotCopied {
 public:
  /// `environment`: additions to this process's own; an empty value removes the name.
  explicit Child(std::vector<std::string> arguments,
                 const std::map<std::string, std::string>& environment = {},
                 const std::string& folder = ".");
  ~Child();

  pid_t Id() const { return pid_; }
  void Signal(int number) const;
  /// Exit status, minus the signal that ended it, or -1000 when patience ends first.
  int Wait(std::chrono::milliseconds patience = Patience);
  /// What it has written to standard error; complete only after Wait().
  const std::string& Errors();

 private:
  pid_t pid_ = -1;
  int errors_ = -1;
  std::string text_;
};

}  // namespace kestrin
