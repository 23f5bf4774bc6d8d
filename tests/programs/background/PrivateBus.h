// A session bus of the test's own, processes on it, and a connection that plays the application.
#pragma once

#include <sys/types.h>
#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kestrin {

inline constexpr std::chrono::seconds Patience{10};

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

 private:
  int pipe_;
};

/// A process whose standard error is kept. Killed, if it still runs, with the object.
class Child {
 public:
  /// `environment`: additions to this process's own; an empty value removes the name.
  Child(std::vector<std::string> arguments, std::map<std::string, std::string> environment);
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

/// A connection to the bus. With a name it is the application: it takes every message posted.
class Peer {
 public:
  struct Taken {
    uint32_t what;
    int64_t at;  ///< microseconds since 1970
  };

  explicit Peer(const PrivateBus& bus, const char* name = nullptr);
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  /// Serves the connection until `until` holds; false when patience ends first.
  bool WaitUntil(const std::function<bool()>& until);
  /// Whether the name gets, or loses, its owner within patience.
  bool WaitForOwner(const char* name, bool owned = true);
  bool HasOwner(const char* name);
  /// The process that owns the name, or 0.
  pid_t ProcessOf(const char* name);

  /// One field for Post: `type` is its bus type (one of i, u, x, b, s).
  struct Field {
    const char* name;
    char type;
    int64_t value;
  };
  /// Posts to the deliverer. The error's name; empty for an answer.
  std::string Post(uint32_t what, const std::vector<Field>& fields = {});
  std::string SetWhen(int64_t when) { return Post(0x53657445, {{"When", 'i', when}}); }
  /// The deliverer's property.
  int32_t When();

  std::vector<Taken> taken;
  std::vector<int32_t> announced;  ///< values of "When" in PropertiesChanged

 private:
  static int OnPost(sd_bus_message* message, void* self, sd_bus_error* error);
  static int OnChanged(sd_bus_message* signal, void* self, sd_bus_error* error);
  static const sd_bus_vtable table_[];
  sd_bus* bus_ = nullptr;
};

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

}  // namespace kestrin
