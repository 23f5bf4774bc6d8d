// A recursive lock with a name, an owner and a place in the order of locks.
#pragma once

#include <mutex>
#include <string>
#include <thread>

#include "kestrin/Types.h"

namespace kestrin {

/// Locks are taken in rising rank; never two of rank EventSet at once. Debug builds abort on a
/// broken order.
enum class LockRank : int { Settings = 1, OpenSets = 2, EventSet = 3, None = 100 };

class Locker {
 public:
  explicit Locker(std::string name, LockRank rank = LockRank::None);
  virtual ~Locker();
  Locker(const Locker&) = delete;
  Locker& operator=(const Locker&) = delete;

  bool Lock();
  /// False, at once, when another thread has it.
  bool TryLock();
  /// A release by a thread that does not hold the lock is ignored.
  void Unlock();
  bool IsLocked() const;  ///< by the calling thread
  const std::string& Name() const { return name_; }

 private:
  bool Taken();

  std::string name_;
  LockRank rank_;
  std::recursive_mutex mutex_;
  std::thread::id owner_;  // guarded by ownerGuard_
  int32 depth_ = 0;
  mutable std::mutex ownerGuard_;
};

class AutoLock {
 public:
  explicit AutoLock(Locker& lock) : lock_(lock) { lock_.Lock(); }
  ~AutoLock() { lock_.Unlock(); }
  AutoLock(const AutoLock&) = delete;
  AutoLock& operator=(const AutoLock&) = delete;

 private:
  Locker& lock_;
};

/// Debug builds abort with `what` when the calling thread holds a lock of rank EventSet.
void AssertNoSetLocked(const char* what);

}  // namespace kestrin
