#include "nc/AxisValueRange.h"

#include <gtest/gtest.h>

#include <cmath>

using Orvo::AxisValue;
using Orvo::AxisValueRange;

TEST(AxisValueRange, DefaultIsInfiniteWithDifferenceOfAtLeast360) {
  AxisValueRange const r;
  EXPECT_TRUE(r.isInfinite());
  EXPECT_GE(r.difference(), 360.0);
  EXPECT_TRUE(r.contains(1e300));
}

TEST(AxisValueRange, SingleValueRangeContainsItsValue) {
  AxisValue const v(42.5);
  AxisValueRange const r(v, v);
  EXPECT_TRUE(r.contains(v));
  EXPECT_FALSE(r.contains(42.6));
  EXPECT_EQ(r.difference(), 0.0);
}

TEST(AxisValueRange, IntersectingFiniteWithInfiniteGivesTheFiniteRange) {
  AxisValueRange const finite(-90.0, 90.0);
  auto const a = finite.intersect(AxisValueRange());
  auto const b = AxisValueRange().intersect(finite);
  ASSERT_TRUE(a && b);
  EXPECT_TRUE(*a == finite);
  EXPECT_TRUE(*b == finite);
}

TEST(AxisValueRange, IntersectOverlapAndDisjoint) {
  auto const o = AxisValueRange(0.0, 10.0).intersect(AxisValueRange(5.0, 20.0));
  ASSERT_TRUE(o);
  EXPECT_EQ(o->min().value(), 5.0);
  EXPECT_EQ(o->max().value(), 10.0);
  EXPECT_FALSE(AxisValueRange(0.0, 1.0).intersect(AxisValueRange(2.0, 3.0)));
  EXPECT_TRUE(AxisValueRange(0.0, 1.0).intersect(AxisValueRange(1.0, 3.0)));  // touching ends
}

TEST(AxisValueRange, MakeNeedsBothEndsInOrder) {
  EXPECT_TRUE(AxisValueRange::make(AxisValue(1.0), AxisValue(2.0)));
  EXPECT_TRUE(AxisValueRange::make(AxisValue(1.0), AxisValue(1.0)));
  EXPECT_FALSE(AxisValueRange::make(AxisValue(2.0), AxisValue(1.0)));
  EXPECT_FALSE(AxisValueRange::make(std::nullopt, AxisValue(1.0)));
  EXPECT_FALSE(AxisValueRange::make(AxisValue(1.0), std::nullopt));
  EXPECT_FALSE(AxisValueRange::make(AxisValue(std::nan("")), AxisValue(1.0)));
}

TEST(AxisValueRange, RemapCyclicMovesByWholeTurns) {
  AxisValueRange const r(-180.0, 180.0);
  EXPECT_DOUBLE_EQ(r.remapCyclic(270.0).value(), -90.0);
  EXPECT_DOUBLE_EQ(r.remapCyclic(-450.0).value(), -90.0);
  EXPECT_DOUBLE_EQ(r.remapCyclic(10.0).value(), 10.0);
  EXPECT_DOUBLE_EQ(r.remapCyclic(180.0).value(), 180.0);
  AxisValueRange const full(0.0, 360.0);
  EXPECT_DOUBLE_EQ(full.remapCyclic(725.0).value(), 5.0);
  EXPECT_DOUBLE_EQ(AxisValueRange().remapCyclic(725.0).value(), 725.0);
}

TEST(AxisValueRange, RemapCyclicOnNarrowRangeGivesNearestCandidate) {
  AxisValueRange const r(-30.0, 30.0);
  EXPECT_DOUBLE_EQ(r.remapCyclic(400.0).value(), 40.0);    // 40 is 10 beyond, -320 far away
  EXPECT_DOUBLE_EQ(r.remapCyclic(-400.0).value(), -40.0);
}

TEST(AxisValueRange, Equality) {
  EXPECT_TRUE(AxisValueRange() == AxisValueRange());
  EXPECT_FALSE(AxisValueRange() == AxisValueRange(0.0, 1.0));
  EXPECT_TRUE(AxisValueRange(0.0, 1.0) == AxisValueRange(0.0, 1.0));
  EXPECT_TRUE(AxisValueRange(0.0, 1.0) != AxisValueRange(0.0, 2.0));
}
