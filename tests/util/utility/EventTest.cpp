#include "util/utility/Event.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using Orvo::Events::Event;

TEST(Event, RaisingWithoutSubscribersDoesNothing) {
  Event const event;
  EXPECT_FALSE(event.hasSubscribers());
  EXPECT_NO_THROW(event.raise(1));
}

TEST(Event, SubscribersAreCalledInOrderWithTheValue) {
  std::vector<std::pair<int, int>> calls;
  Event event;
  event.subscribe([&](int value) { calls.emplace_back(1, value); });
  event.subscribe([&](int value) { calls.emplace_back(2, value); });
  event.raise(7);
  event.raise(-3);
  EXPECT_EQ((std::vector<std::pair<int, int>>{{1, 7}, {2, 7}, {1, -3}, {2, -3}}), calls);
  EXPECT_EQ(2u, event.getNumberOfSubscribers());
}

TEST(Event, AnEmptyFunctionIsNoSubscriber) {
  Event event;
  event.subscribe(Event::Subscriber());
  event.subscribe(nullptr);
  EXPECT_FALSE(event.hasSubscribers());
  EXPECT_NO_THROW(event.raise(1));
}

TEST(Event, UnsubscribeAllDropsEveryone) {
  int calls = 0;
  Event event;
  event.subscribe([&](int) { ++calls; });
  event.unsubscribeAll();
  event.raise(1);
  EXPECT_EQ(0, calls);
}

TEST(Event, ACopyStartsWithoutSubscribers) {
  int calls = 0;
  Event original;
  original.subscribe([&](int) { ++calls; });
  Event const copy(original);
  copy.raise(1);
  EXPECT_EQ(0, calls);
  EXPECT_FALSE(copy.hasSubscribers());
  original.raise(1);
  EXPECT_EQ(1, calls);
}

TEST(Event, AssignmentKeepsTheSubscribersOfTheTarget) {
  std::vector<int> calls;
  Event target, source;
  target.subscribe([&](int) { calls.push_back(1); });
  source.subscribe([&](int) { calls.push_back(2); });
  target = source;
  target.raise(0);
  target = Event();
  target.raise(0);
  source.raise(0);
  EXPECT_EQ((std::vector<int>{1, 1, 2}), calls);
}

TEST(Event, MovingIntoANewEventTakesTheSubscribersAlong) {
  int calls = 0;
  Event original;
  original.subscribe([&](int) { ++calls; });
  Event moved(std::move(original));
  moved.raise(1);
  EXPECT_EQ(1, calls);
}

TEST(Event, ASubscriberAddedDuringARaiseIsCalledFromTheNextOne) {
  std::vector<int> calls;
  Event event;
  event.subscribe([&](int value) {
    calls.push_back(value);
    if (value == 1) event.subscribe([&](int v) { calls.push_back(100 + v); });
  });
  event.raise(1);
  event.raise(2);
  EXPECT_EQ((std::vector<int>{1, 2, 102}), calls);
}

TEST(Event, AnExceptionFromASubscriberSkipsTheRest) {
  int calls = 0;
  Event event;
  event.subscribe([](int) { throw std::runtime_error("stop"); });
  event.subscribe([&](int) { ++calls; });
  EXPECT_THROW(event.raise(1), std::runtime_error);
  EXPECT_EQ(0, calls);
}

}  // namespace
