// A connection to the private bus that talks to the deliverer, and may play the application.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <string>
#include <vector>

#include "harness/bus/PrivateBus.h"
#include "programs/background/BusContract.h"
#include "session/BusNames.h"

namespace kestrin {

/// A connection of its own to the bus; throws when there is none.
sd_bus* Connect(const PrivateBus& bus);

/// A connection to the bus. With a name it is the application: it takes every message posted.
class Peer : NotCopied {
 public:
  struct Taken {
    uint32_t what;
    int64_t at;  ///< microseconds since 1970
    int32_t late = 0;
  };

  explicit Peer(const PrivateBus& bus, const char* name = nullptr);
  ~Peer();

  /// Serves the connection until `until` holds; false when patience ends first.
  bool WaitUntil(const std::function<bool()>& until);
  /// Whether the name gets, or loses, its owner within patience.
  bool WaitForOwner(const char* name, bool owned = true);
  bool HasOwner(const char* name) { return ProcessOf(name) != 0; }
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
  std::string SetWhen(int64_t when) { return Post(NextEventCode, {{"When", 'i', when}}); }
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

}  // namespace kestrin
