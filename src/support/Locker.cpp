#include "support/Locker.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace kestrin {

namespace {

#ifndef NDEBUG

struct HeldLock {
  const Locker* lock;
  LockRank rank;
};

thread_local std::vector<HeldLock> heldLocks;

void CheckOrder(const Locker& lock, LockRank rank) {
  if (rank == LockRank::None) return;
  for (const HeldLock& held : heldLocks) {
    if (held.rank == LockRank::None || held.rank < rank) continue;
    std::fprintf(stderr, "Lock order broken: \"%s\" is taken while \"%s\" is held\n",
                 lock.Name().c_str(), held.lock->Name().c_str());
    std::abort();
  }
}

void NoteTaken(const Locker& lock, LockRank rank) { heldLocks.push_back({&lock, rank}); }

void NoteReleased(const Locker& lock) {
  std::erase_if(heldLocks, [&](const HeldLock& held) { return held.lock == &lock; });
}

#else

void CheckOrder(const Locker&, LockRank) {}
void NoteTaken(const Locker&, LockRank) {}
void NoteReleased(const Locker&) {}

#endif

}  // namespace

Locker::Locker(std::string name, LockRank rank) : name_(std::move(name)), rank_(rank) {}

Locker::~Locker() {
  // Who deletes what it has locked means to release it too.
  while (IsLocked()) Unlock();
}

bool Locker::Lock() {
  if (!IsLocked()) CheckOrder(*this, rank_);
  mutex_.lock();
  return Taken();
}

bool Locker::TryLock() { return mutex_.try_lock() && Taken(); }

bool Locker::Taken() {
  const std::lock_guard<std::mutex> guard(ownerGuard_);
  owner_ = std::this_thread::get_id();
  if (++depth_ == 1) NoteTaken(*this, rank_);
  return true;
}

void Locker::Unlock() {
  {
    const std::lock_guard<std::mutex> guard(ownerGuard_);
    if (owner_ != std::this_thread::get_id()) return;
    if (--depth_ == 0) {
      owner_ = std::thread::id();
      NoteReleased(*this);
    }
  }
  mutex_.unlock();
}

bool Locker::IsLocked() const {
  const std::lock_guard<std::mutex> guard(ownerGuard_);
  return owner_ == std::this_thread::get_id();
}

void AssertNoSetLocked([[maybe_unused]] const char* what) {
#ifndef NDEBUG
  for (const HeldLock& held : heldLocks) {
    if (held.rank != LockRank::EventSet) continue;
    std::fprintf(stderr, "%s while the lock \"%s\" is held\n", what, held.lock->Name().c_str());
    std::abort();
  }
#endif
}

}  // namespace kestrin
