// A program that is started to live on its own.
#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>

namespace kestrin {

/// The program is started as Spawn.h says, outlives this object and leaves no zombie.
class DetachedProgram {
 public:
  /// Without arguments. Nothing when the file cannot be started.
  static std::optional<DetachedProgram> Start(const std::string& path);

  const std::string& Path() const { return path_; }
  /// Waits until it has ended, but no longer than that; whether it has.
  bool EndsWithin(std::chrono::milliseconds patience) const;

 private:
  explicit DetachedProgram(std::string path);

  std::string path_;
  std::shared_ptr<std::promise<void>> end_;  // kept by the thread that waits for it, too
  std::future<void> ended_;
};

}  // namespace kestrin
