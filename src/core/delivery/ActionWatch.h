// Sees that no action takes too long, from a thread of its own.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "kestrin/Types.h"

namespace kestrin {

/// Counts ticks while an action runs. An action that blocks is counted; a process that was stopped,
/// or a machine that slept, is not: the thread did not run either.
class ActionWatch {
 public:
  static constexpr int32 MostTicks = 20;

  /// `overrun` is called in the watch's thread with the journal's record of the action, while the
  /// action still runs.
  using Overrun = std::function<void(const std::string& record)>;
  explicit ActionWatch(Overrun overrun,
                       std::chrono::milliseconds tick = std::chrono::milliseconds(50));
  ~ActionWatch();
  ActionWatch(const ActionWatch&) = delete;
  ActionWatch& operator=(const ActionWatch&) = delete;

  /// Main thread. Without a thread to be had nothing is watched.
  void Begin(const std::string& record);
  /// Does not return once `overrun` has begun, before that has returned.
  void End();

 private:
  static constexpr int32 TicksUntilIdle = 100;
  void Run();
  bool Start();

  const Overrun overrun_;
  const std::chrono::milliseconds tick_;
  std::mutex guard_;  ///< of all that follows
  std::condition_variable changed_;
  std::thread thread_;
  std::string record_;
  int32 ticks_ = 0;
  bool acting_ = false, idle_ = false, overrunning_ = false, ends_ = false;
};

}  // namespace kestrin
