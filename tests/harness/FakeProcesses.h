// A process that is told who it is, and who has died.
#pragma once

#include <set>

#include "core/ports/Processes.h"

namespace kestrin {

class FakeProcesses final : public Processes {
 public:
  explicit FakeProcesses(int64 number, const std::set<int64>* dead = nullptr)
      : number_(number), dead_(dead) {}
  ProcessOwner Self() const override { return {"boot", number_, 7}; }
  bool Lives(const ProcessOwner& owner) const override {
    return owner.Boot == "boot" && !(dead_ && dead_->contains(owner.Process));
  }

 private:
  int64 number_;
  const std::set<int64>* dead_;
};

}  // namespace kestrin
