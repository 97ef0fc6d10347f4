// Several threads make, copy, assign and destroy script-facing objects at the
// same time. Every one of them is a unit consumer on the one program-wide
// list, so this is the list's lock at work. Built alone with ThreadSanitizer
// by scripts/run-tsan-tests.sh; in an ordinary build it checks the count.

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

#include "machine/machine/PostMachineConfig/Axis.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/Range.h"
#include "machine/machine/PostMachineConfig/UnitConsumer.h"
#include "machine/machine/PostMachineConfig/Vector.h"

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;
using com::vantora::post::UnitConsumer;

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 1000;

/// One thread's share: objects made, copied into containers, assigned,
/// moved and dropped again, with a little reading in between so that the
/// copies are used.
int churn(int seed, std::atomic<bool> const& go) {
  while (!go.load()) std::this_thread::yield();
  int checks = 0;
  for (int round = 0; round < kRounds; ++round) {
    Range const range(-1.0 - seed, 1.0 + round, Range::ROTATIONAL);
    Axis const axis(true, Vector(0, 0, 1), Vector(seed, round, 0), 2, range);
    std::vector<Axis> axes(3, axis);
    axes.push_back(Axis(false, Vector(0, 1, 0), Vector(), 1));
    axes[1] = axes[3];
    MachineConfiguration configuration(axes[0], axes[1]);
    MachineConfiguration copy = configuration;
    copy.setInchMode(round % 2 == 0);
    copy.setToolLength(round);
    MachineConfiguration assigned;
    assigned = copy;
    std::vector<MachineConfiguration> configurations(2, assigned);
    configurations.emplace_back(std::move(assigned));
    std::vector<Range> ranges(5, range);
    ranges.erase(ranges.begin() + 1);
    if (configurations.back().getNumberOfAxes() == 5 && ranges.size() == 4 && axes.size() == 4) ++checks;
  }
  return checks;
}

TEST(ConcurrentConsumers, ThreadsMakingCopyingAndDestroyingObjectsLeaveTheListAsItWas) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  std::atomic<bool> go{false};
  std::vector<int> results(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &go, &results] { results[t] = churn(t, go); });
  }
  go.store(true);
  for (auto& thread : threads) thread.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(kRounds, results[t]) << t;
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
}

TEST(ConcurrentConsumers, ObjectsLivingAcrossThreadsAreCountedWhileTheyLive) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  std::vector<Axis> kept;
  std::thread maker([&kept] {
    for (int i = 0; i < 10; ++i) kept.emplace_back(true, Vector(1, 0, 0), Vector(), 0);
  });
  std::thread other([] {
    for (int i = 0; i < 100; ++i) Range const r(i, i + 1, Range::LINEAR);
  });
  maker.join();
  other.join();
  // An axis is two consumers: itself and its range.
  EXPECT_EQ(before + 2 * kept.size(), UnitConsumer::getNumberOfConsumers());
  kept.clear();
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
}

}  // namespace
