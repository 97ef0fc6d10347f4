#include "util/utility/Process.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

TEST(Process, TheProgramWideMutexIsOneLockForAllThreads) {
  Orvo::Mutex::Lock const lock(Orvo::Process::mutex);
  bool taken = true;
  std::thread([&] { taken = Orvo::Process::mutex.tryLock(); }).join();
  EXPECT_FALSE(taken);
}

TEST(Process, TheProgramWideMutexIsFreeBetweenUses) {
  ASSERT_TRUE(Orvo::Process::mutex.tryLock());
  Orvo::Process::mutex.unlock();
}

}  // namespace
