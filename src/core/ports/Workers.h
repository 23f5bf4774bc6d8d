// Threads for what may take long.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "kestrin/Types.h"

namespace kestrin {

class Workers {
 public:
  virtual ~Workers() = default;
  /// Runs `work` in a thread of its own, named `name`. False when no thread can be had. The thread
  /// is not waited for at exit.
  virtual bool Start(const char* name, std::function<void()> work) = 0;
  /// The same, after that time.
  virtual bool StartLater(const char* name, int32 milliseconds, std::function<void()> work) = 0;
};

class ThreadWorkers final : public Workers {
 public:
  bool Start(const char* name, std::function<void()> work) override;
  bool StartLater(const char* name, int32 milliseconds, std::function<void()> work) override;
  /// How many have not come back yet. What they work with must outlive them.
  int32 Running() const { return *running_; }

 private:
  std::shared_ptr<std::atomic<int32>> running_ = std::make_shared<std::atomic<int32>>(0);
};

}  // namespace kestrin
