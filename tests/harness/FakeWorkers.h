// Workers without threads: work runs at once, later, or not at all.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/ports/Workers.h"

namespace kestrin {

class FakeWorkers final : public Workers {
 public:
  enum class Mode { Inline, Deferred, Refuse };

  Mode How = Mode::Inline;
  std::vector<std::string> Started;  ///< names, in order

  bool Start(const char* name, std::function<void()> work) override {
    if (How == Mode::Refuse) return false;
    Started.emplace_back(name);
    if (How == Mode::Inline)
      work();
    else
      pending_.push_back(std::move(work));
    return true;
  }

  bool StartLater(const char* name, int32, std::function<void()> work) override {
    return Start(name, std::move(work));
  }

  /// Runs what was deferred, also what that defers in turn.
  void RunPending() {
    while (!pending_.empty()) {
      const auto work = std::exchange(pending_, {});
      for (const auto& each : work) each();
    }
  }

 private:
  std::vector<std::function<void()>> pending_;
};

}  // namespace kestrin
