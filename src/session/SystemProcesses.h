// Processes of this machine, as /proc tells of them.
#pragma once

#include "core/ports/Processes.h"

namespace kestrin {

class SystemProcesses final : public Processes {
 public:
  SystemProcesses();
  ProcessOwner Self() const override { return self_; }
  bool Lives(const ProcessOwner& owner) const override;

 private:
  ProcessOwner self_;
};

}  // namespace kestrin
