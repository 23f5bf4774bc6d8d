// Threads for what may take long.
#pragma once

#include <functional>

namespace kestrin {

class Workers {
 public:
  virtual ~Workers() = default;
  /// Runs `work` in a thread of its own, named `name`. False when no thread can be had. The thread
  /// is not waited for at exit.
  virtual bool Start(const char* name, std::function<void()> work) = 0;
};

class ThreadWorkers final : public Workers {
 public:
  bool Start(const char* name, std::function<void()> work) override;
};

}  // namespace kestrin
