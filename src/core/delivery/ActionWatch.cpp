#include "core/delivery/ActionWatch.h"

#include <system_error>
#include <utility>

namespace kestrin {

ActionWatch::ActionWatch(Overrun overrun, std::chrono::milliseconds tick)
    : overrun_(std::move(overrun)), tick_(tick) {}

ActionWatch::~ActionWatch() {
  {
    const std::lock_guard lock(guard_);
    ends_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

bool ActionWatch::Start() {
  if (thread_.joinable()) return true;
  try {
    thread_ = std::thread([this] { Run(); });
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

void ActionWatch::Begin(const std::string& record) {
  if (!Start()) return;
  const std::lock_guard lock(guard_);
  record_ = record;
  ticks_ = 0;
  acting_ = true;
  if (idle_) changed_.notify_all();
}

void ActionWatch::End() {
  std::unique_lock lock(guard_);
  acting_ = false;
  ticks_ = 0;
  changed_.wait(lock, [this] { return !overrunning_; });
}

/// Between actions it goes on for a while, so that many of them in a row wake it up once.
void ActionWatch::Run() {
  std::unique_lock lock(guard_);
  while (!ends_) {
    if (!acting_ && ticks_ >= TicksUntilIdle) {
      idle_ = true;
      changed_.wait(lock, [this] { return acting_ || ends_; });
      idle_ = false;
    }
    changed_.wait_for(lock, tick_, [this] { return ends_; });
    // The tick in which an action begins is not a whole one.
    if (++ticks_ <= MostTicks || !acting_ || ends_) continue;
    overrunning_ = true;
    const std::string record = record_;
    lock.unlock();
    overrun_(record);
    lock.lock();
    overrunning_ = false;
    ticks_ = 0;
    changed_.notify_all();
  }
}

}  // namespace kestrin
