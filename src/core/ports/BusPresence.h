// The application's name on the session bus, as a port.
#pragma once

namespace kestrin {

class BusPresence {
 public:
  virtual ~BusPresence() = default;
  /// Releases the name and takes what arrived until then into the message queue. When something
  /// did arrive, takes the name back and returns false: the application goes on. If somebody else
  /// has the name by then, what arrived is forwarded to it, and the result is true.
  virtual bool Leave() = 0;
};

}  // namespace kestrin
