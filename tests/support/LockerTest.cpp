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

#ifndef NDEBUG

struct LockOrderDeathTest : testing::Test {
  LockOrderDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  Locker settings{"Settings", LockRank::Settings}, open{"Open sets", LockRank::OpenSets},
      set{"EventSet", LockRank::EventSet}, other{"Other set", LockRank::EventSet}, free{"Free"};
};

TEST_F(LockOrderDeathTest, ABrokenOrderStopsTheProgramAndNamesBothLocks) {
  const std::tuple<Locker*, Locker*, const char*> rows[] = {
      {&set, &open, "\"Open sets\".*\"EventSet\""},
      {&open, &settings, "\"Settings\".*\"Open sets\""},
      {&set, &other, "\"Other set\".*\"EventSet\""}};
  for (const auto& [first, second, said] : rows) {
    const AutoLock held(*first);
    EXPECT_DEATH(second->Lock(), said);
  }
  {
    const AutoLock held(set);
    EXPECT_DEATH(AssertNoSetLocked("An alert"), "An alert.*\"EventSet\"");
  }
  auto gone = std::make_unique<Locker>("Gone", LockRank::EventSet);
  gone->Lock();
  gone.reset();  // forgotten, though its holder had not released it
  AutoLock a(settings), b(open);
  AssertNoSetLocked("An alert");
  AutoLock c(set), again(settings), d(free);
  InAnotherThread([&] { AutoLock own(other); });
}

#endif

}  // namespace
}  // namespace kestrin
