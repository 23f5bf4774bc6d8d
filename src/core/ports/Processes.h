// Who a process is, and whether another one still lives, as a port.
#pragma once

#include <compare>
#include <string>

#include "kestrin/Types.h"

namespace kestrin {

/// Tells a process from every other one of this machine, earlier boots included.
struct ProcessOwner {
  std::string Boot;
  int64 Process = 0;
  int64 Started = 0;  ///< clock ticks after boot
  auto operator<=>(const ProcessOwner&) const = default;
};

/// Any thread.
class Processes {
 public:
  virtual ~Processes() = default;
  virtual ProcessOwner Self() const = 0;
  virtual bool Lives(const ProcessOwner& owner) const = 0;
};

}  // namespace kestrin
