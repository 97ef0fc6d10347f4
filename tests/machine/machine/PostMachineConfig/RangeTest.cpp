#include "machine/machine/PostMachineConfig/Range.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "util/utility/ScriptException.h"

namespace {

using com::vantora::post::Range;

std::wstring scriptFailure(std::function<void()> const& f) {
  try {
    f();
  } catch (Orvo::ScriptException const& e) {
    return e.getMessage();
  }
  return std::wstring();
}

constexpr wchar_t const* kNotInitialized = L"Range has not been initialized.";

TEST(Range, TheDefaultIsTheNonRangeFromOneToZero) {
  Range const r;
  EXPECT_TRUE(r.isNonRange());
  EXPECT_EQ(1.0, r.getInternalMinimum());
  EXPECT_EQ(0.0, r.getInternalMaximum());
  EXPECT_EQ(Range::LINEAR, r.getActuator());
  EXPECT_STREQ("ScriptObject", r.getBaseClass());
}

TEST(Range, APointAndTwoLimitsInEitherOrder) {
  Range const point(2.5);
  EXPECT_FALSE(point.isNonRange());
  EXPECT_EQ(2.5, point.getMinimum());
  EXPECT_EQ(2.5, point.getMaximum());
  EXPECT_EQ(Range::LINEAR, point.getActuator());
  Range const reversed(3, -1, Range::ROTATIONAL);
  EXPECT_EQ(-1.0, reversed.getMinimum());
  EXPECT_EQ(3.0, reversed.getMaximum());
  EXPECT_EQ(Range::ROTATIONAL, reversed.getActuator());
  EXPECT_EQ(0u, static_cast<unsigned int>(Range::LINEAR));
  EXPECT_EQ(1u, static_cast<unsigned int>(Range::ROTATIONAL));
}

TEST(Range, ReadersGiveMinimumMaximumMiddleAndSpan) {
  Range const r(-1, 4, Range::LINEAR);
  EXPECT_EQ(-1.0, r.getMinimum());
  EXPECT_EQ(4.0, r.getMaximum());
  EXPECT_EQ(1.5, r.getMiddle());
  EXPECT_EQ(5.0, r.getSpan());
}

TEST(Range, ALinearRangeReadsInTheScriptsUnitARotationalOneDoesNot) {
  Range linear(25.4, 50.8, Range::LINEAR);
  linear.setInchMode(true);
  EXPECT_EQ(25.4 * 0.03937007874015748, linear.getMinimum());
  EXPECT_EQ(50.8 * 0.03937007874015748, linear.getMaximum());
  EXPECT_EQ((25.4 + 50.8) / 2 * 0.03937007874015748, linear.getMiddle());
  EXPECT_EQ(25.4 * 0.03937007874015748, linear.getSpan());
  EXPECT_EQ(25.4, linear.getInternalMinimum());
  Range rotational(25.4, 50.8, Range::ROTATIONAL);
  rotational.setInchMode(true);
  EXPECT_EQ(25.4, rotational.getMinimum());
  EXPECT_EQ(50.8, rotational.getMaximum());
  EXPECT_EQ((25.4 + 50.8) / 2, rotational.getMiddle());
  EXPECT_EQ(25.4, rotational.getSpan());
}

TEST(Range, EveryCheckedOperationRefusesANonRange) {
  Range r;
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.getMinimum(); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.getMaximum(); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.getMiddle(); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.getSpan(); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.getU(0.5); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.isWithin(0.5); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.clamp(0.5); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.grow(1); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.reduce(1); }));
  EXPECT_EQ(kNotInitialized, scriptFailure([&] { r.translate(1); }));
  EXPECT_EQ(1.0, r.getInternalMinimum());  // nothing changed
  EXPECT_EQ(0.0, r.getInternalMaximum());
}

TEST(Range, GetUIsTheFractionFromMinimumToMaximum) {
  Range const r(2, 6, Range::LINEAR);
  EXPECT_EQ(0.0, r.getU(2));
  EXPECT_EQ(1.0, r.getU(6));
  EXPECT_EQ(0.25, r.getU(3));
  EXPECT_EQ(-0.5, r.getU(0));
}

TEST(Range, IsWithinAcceptsAValue1eMinus6OutsideEitherLimitOnAPointToo) {
  // Limits at 0, so that 1e-6 outside is exactly 1e-6 outside.
  EXPECT_TRUE(Range(0, 0.5, Range::ROTATIONAL).isWithin(-1e-6));
  EXPECT_TRUE(Range(-0.5, 0, Range::ROTATIONAL).isWithin(1e-6));
  EXPECT_FALSE(Range(0, 0.5, Range::ROTATIONAL).isWithin(-1.1e-6));
  EXPECT_FALSE(Range(-0.5, 0, Range::ROTATIONAL).isWithin(1.1e-6));
  Range const r(-0.5, 0.5, Range::LINEAR);
  EXPECT_TRUE(r.isWithin(0.5 + 0.9e-6));
  EXPECT_TRUE(r.isWithin(-0.5 - 0.9e-6));
  EXPECT_FALSE(r.isWithin(0.5 + 1.1e-6));
  EXPECT_FALSE(r.isWithin(-0.5 - 1.1e-6));
  Range const point(0.0);
  EXPECT_TRUE(point.isWithin(1e-6));
  EXPECT_TRUE(point.isWithin(-1e-6));
  EXPECT_FALSE(point.isWithin(1.1e-6));
  EXPECT_FALSE(point.isWithin(-1.1e-6));
}

TEST(Range, ClampLimitsTheValue) {
  Range const r(-1, 1, Range::LINEAR);
  EXPECT_EQ(-1.0, r.clamp(-5));
  EXPECT_EQ(1.0, r.clamp(5));
  EXPECT_EQ(0.5, r.clamp(0.5));
}

TEST(Range, ExpandToMakesANonRangeAPointAndWidensARange) {
  Range r;
  r.expandTo(3);
  EXPECT_EQ(3.0, r.getMinimum());
  EXPECT_EQ(3.0, r.getMaximum());
  r.expandTo(-2);
  r.expandTo(1);
  EXPECT_EQ(-2.0, r.getMinimum());
  EXPECT_EQ(3.0, r.getMaximum());
}

TEST(Range, ExpandToRangeTakesTheOthersLimitsOrWidensToThem) {
  Range r;
  r.expandToRange(Range(1, 2, Range::LINEAR));
  EXPECT_EQ(1.0, r.getMinimum());
  EXPECT_EQ(2.0, r.getMaximum());
  r.expandToRange(Range(-3, 1.5, Range::LINEAR));
  EXPECT_EQ(-3.0, r.getMinimum());
  EXPECT_EQ(2.0, r.getMaximum());
  Range none;
  none.expandToRange(Range());
  EXPECT_TRUE(none.isNonRange());
}

TEST(Range, ExpandToRangeWidensToTheLimitsOfANonRangeToo) {
  // A non-range has the limits 1 and 0, and a range takes them in like any.
  Range r(5, 6, Range::LINEAR);
  r.expandToRange(Range());
  EXPECT_EQ(1.0, r.getMinimum());
  EXPECT_EQ(6.0, r.getMaximum());
}

TEST(Range, GrowWidensOnlyForAPositiveAmount) {
  Range r(0, 1, Range::LINEAR);
  r.grow(0.5);
  EXPECT_EQ(-0.5, r.getMinimum());
  EXPECT_EQ(1.5, r.getMaximum());
  r.grow(0);
  r.grow(-1);
  EXPECT_EQ(-0.5, r.getMinimum());
  EXPECT_EQ(1.5, r.getMaximum());
}

TEST(Range, ReduceNarrowsAndCrossingLimitsMeetAtTheirMean) {
  Range r(0, 4, Range::LINEAR);
  r.reduce(1);
  EXPECT_EQ(1.0, r.getMinimum());
  EXPECT_EQ(3.0, r.getMaximum());
  r.reduce(-1);
  r.reduce(0);
  EXPECT_EQ(1.0, r.getMinimum());
  r.reduce(1.5);  // 2.5 and 1.5 cross
  EXPECT_EQ(2.0, r.getMinimum());
  EXPECT_EQ(2.0, r.getMaximum());
}

TEST(Range, TranslateMovesBothLimits) {
  Range r(0, 4, Range::LINEAR);
  r.translate(-1.5);
  EXPECT_EQ(-1.5, r.getMinimum());
  EXPECT_EQ(2.5, r.getMaximum());
}

TEST(Range, ToStringFillsTheTemplate) {
  EXPECT_EQ(L"[1; 2]", Range(1, 2, Range::LINEAR).toString());
  EXPECT_EQ(L"[-1.5; 0.25]", Range(0.25, -1.5, Range::ROTATIONAL).toString());
  EXPECT_EQ(L"[1; 0]", Range().toString());
  Range inch(25.4, 254, Range::LINEAR);
  inch.setInchMode(true);
  // 25.4 times the inch factor is the double just below 1.
  EXPECT_EQ(L"[0.9999999999999999; 10]", inch.toString());
}

TEST(Range, CopiesAreEqualValues) {
  Range const r(1, 2, Range::ROTATIONAL);
  Range copy(r);
  EXPECT_EQ(1.0, copy.getMinimum());
  EXPECT_EQ(2.0, copy.getMaximum());
  EXPECT_EQ(Range::ROTATIONAL, copy.getActuator());
  Range assigned;
  assigned = r;
  EXPECT_EQ(2.0, assigned.getMaximum());
}

}  // namespace
