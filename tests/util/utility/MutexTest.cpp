#include "util/utility/Mutex.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <type_traits>

namespace {

TEST(Mutex, IsNeitherCopiedNorMoved) {
  static_assert(!std::is_copy_constructible<Orvo::Mutex>::value, "one lock, one object");
  static_assert(!std::is_copy_assignable<Orvo::Mutex>::value, "one lock, one object");
}

TEST(Mutex, TryLockFailsWhileAnotherThreadHoldsIt) {
  Orvo::Mutex mutex;
  mutex.lock();
  bool taken = true;
  std::thread([&] { taken = mutex.tryLock(); }).join();
  EXPECT_FALSE(taken);
  mutex.unlock();
  std::thread([&] {
    taken = mutex.tryLock();
    if (taken) mutex.unlock();
  }).join();
  EXPECT_TRUE(taken);
}

TEST(Mutex, LockHoldsForItsScope) {
  Orvo::Mutex mutex;
  {
    Orvo::Mutex::Lock const lock(mutex);
    bool taken = true;
    std::thread([&] { taken = mutex.tryLock(); }).join();
    EXPECT_FALSE(taken);
  }
  EXPECT_TRUE(mutex.tryLock());
  mutex.unlock();
}

TEST(Mutex, WorksWithTheStandardGuards) {
  Orvo::Mutex mutex;
  {
    std::scoped_lock const lock(mutex);
  }
  std::unique_lock<Orvo::Mutex> lock(mutex, std::try_to_lock);
  EXPECT_TRUE(lock.owns_lock());
}

TEST(Mutex, KeepsTwoThreadsOutOfEachOther) {
  Orvo::Mutex mutex;
  long counter = 0;
  auto const work = [&] {
    for (int i = 0; i < 100000; ++i) {
      Orvo::Mutex::Lock const lock(mutex);
      ++counter;
    }
  };
  std::thread a(work), b(work);
  a.join();
  b.join();
  EXPECT_EQ(200000, counter);
}

}  // namespace
