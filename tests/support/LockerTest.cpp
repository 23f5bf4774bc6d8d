#include "support/Locker.h"

#include <gtest/gtest.h>

#include <memory>

namespace kestrin {
namespace {

void InAnotherThread(const std::function<void()>& work) { std::thread(work).join(); }

TEST(Locker, BelongsToTheThreadThatTookItUntilItsLastRelease) {
  Locker lock("Test");
  EXPECT_FALSE(lock.IsLocked());
  EXPECT_TRUE(lock.Lock());
  EXPECT_TRUE(lock.Lock());
  lock.Unlock();
  EXPECT_TRUE(lock.IsLocked());
  InAnotherThread([&] {
    EXPECT_FALSE(lock.IsLocked());
    lock.Unlock();  // not its own: ignored
  });
  EXPECT_TRUE(lock.IsLocked());
  lock.Unlock();
  EXPECT_FALSE(lock.IsLocked());
  lock.Unlock();
  InAnotherThread([&] {
    AutoLock held(lock);
    EXPECT_TRUE(lock.IsLocked());
  });
}

TEST(Locker, KeepsOthersOut) {
  Locker lock("Test");
  int64 counter = 0;
  const auto work = [&] {
    for (int i = 0; i < 20000; ++i) {
      AutoLock outer(lock);
      AutoLock inner(lock);
      ++counter;
    }
  };
  std::thread first(work), second(work);
  first.join();
  second.join();
  EXPECT_EQ(counter, 40000);
}

#ifndef NDEBUG

struct LockOrderDeathTest : testing::Test {
  LockOrderDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  Locker settings{"Settings", LockRank::Settings}, open{"Open sets", LockRank::OpenSets},
      set{"EventSet", LockRank::EventSet}, other{"Other set", LockRank::EventSet}, free{"Free"};
};

TEST_F(LockOrderDeathTest, RisingRanksAndRecursionAreFree) {
  AutoLock a(settings), b(open), c(set), again(settings), d(free), more(set);
  InAnotherThread([&] { AutoLock own(other); });
}

TEST_F(LockOrderDeathTest, ABrokenOrderStopsTheProgramAndNamesBothLocks) {
  EXPECT_DEATH(
      {
        AutoLock a(set);
        AutoLock b(open);
      },
      "\"Open sets\".*\"EventSet\"");
  EXPECT_DEATH(
      {
        AutoLock a(open);
        AutoLock b(settings);
      },
      "\"Settings\".*\"Open sets\"");
  EXPECT_DEATH(
      {
        AutoLock a(set);
        AutoLock b(other);
      },
      "\"Other set\".*\"EventSet\"");
  EXPECT_DEATH(
      {
        AutoLock a(set);
        AssertNoSetLocked("An alert");
      },
      "An alert.*\"EventSet\"");
  set.Lock(), open.IsLocked(), set.Unlock();
  AutoLock held(open);
  AssertNoSetLocked("An alert");
}

TEST_F(LockOrderDeathTest, ALockDeletedByItsHolderIsForgotten) {
  auto gone = std::make_unique<Locker>("Gone", LockRank::EventSet);
  gone->Lock();
  gone->Lock();
  gone.reset();
  AssertNoSetLocked("The check");
  AutoLock next(set);
}

#endif

}  // namespace
}  // namespace kestrin
