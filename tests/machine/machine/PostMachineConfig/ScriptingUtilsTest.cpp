#include "machine/machine/PostMachineConfig/ScriptingUtils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/Range.h"
#include "support/AssertRecorder.h"

namespace {

TEST(ScriptingUtils, WarningWithoutHookIsDropped) {
  com::vantora::setScriptWarningHook({});
  EXPECT_NO_THROW(com::vantora::sendScriptWarning(L"nobody listens"));
}

TEST(ScriptingUtils, HookReceivesTheTextAndAnEmptyFunctionRemovesIt) {
  std::vector<std::wstring> received;
  com::vantora::setScriptWarningHook([&](std::wstring const& text) { received.push_back(text); });
  com::vantora::sendScriptWarning(L"first");
  com::vantora::sendScriptWarning(L"second");
  com::vantora::setScriptWarningHook(nullptr);
  com::vantora::sendScriptWarning(L"third");
  EXPECT_EQ((std::vector<std::wstring>{L"first", L"second"}), received);
}

TEST(ScriptingUtils, InstallingReplacesTheHook) {
  int first = 0, second = 0;
  com::vantora::setScriptWarningHook([&](std::wstring const&) { ++first; });
  com::vantora::setScriptWarningHook([&](std::wstring const&) { ++second; });
  com::vantora::sendScriptWarning(L"x");
  com::vantora::setScriptWarningHook({});
  EXPECT_EQ(0, first);
  EXPECT_EQ(1, second);
}

// The rotary number routines.

using com::vantora::post::atOrAbove;
using com::vantora::post::atOrBelow;
using com::vantora::post::Range;
using com::vantora::post::reduceToRange;
using com::vantora::post::snapToRangeEnd;

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr char const* kSourcePath = "machine\\machine\\PostMachineConfig\\ScriptingUtils";
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Range rotary(double a, double b) { return Range(a, b, Range::ROTATIONAL); }

TEST(ScriptingUtils, AtOrAboveKeepsAValueAtOrAboveTheOrigin) {
  EXPECT_EQ(1.0, atOrAbove(1, 0));
  EXPECT_EQ(0.0, atOrAbove(0, 0));
  EXPECT_EQ(100.0, atOrAbove(100, 0));
}

TEST(ScriptingUtils, AtOrAboveMovesUpByWholeTurnsToTheFirstAtOrAboveTheOrigin) {
  EXPECT_EQ(-1 + kTwoPi, atOrAbove(-1, 0));
  // trunc(7 / 2 pi) is 1 turn, and one more reaches the origin.
  EXPECT_EQ(5.5663706143591725, atOrAbove(-7, 0));
  // Exactly a turn below lands on the origin, which is enough.
  EXPECT_EQ(0.0, atOrAbove(-kTwoPi, 0));
  EXPECT_EQ(3 - kTwoPi + kTwoPi, atOrAbove(3 - kTwoPi, 2));
}

TEST(ScriptingUtils, AtOrBelowMovesDownByWholeTurnsToTheFirstAtOrBelowTheOrigin) {
  EXPECT_EQ(1.0, atOrBelow(1, 3));
  EXPECT_EQ(3.0, atOrBelow(3, 3));
  EXPECT_EQ(1 - kTwoPi, atOrBelow(1, 0));
  EXPECT_EQ(-5.5663706143591725, atOrBelow(7, 0));
  EXPECT_EQ(0.0, atOrBelow(kTwoPi, 0));
}

TEST(ScriptingUtils, AtOrAboveAndAtOrBelowAssertOnTheResult) {
  mtkit_test::AssertRecorder rec;
  EXPECT_TRUE(std::isnan(atOrAbove(kNaN, 0)));
  auto failures = rec.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ("value >= origin", failures[0].expression);
  EXPECT_EQ(kSourcePath, failures[0].file);
  EXPECT_TRUE(std::isnan(atOrBelow(kNaN, 0)));
  failures = rec.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ("value <= origin", failures[0].expression);
  EXPECT_EQ(kSourcePath, failures[0].file);
}

TEST(ScriptingUtils, SnapToRangeEndOfAFullTurnRangeTakesTheFartherEnd) {
  Range const turn = rotary(0, kTwoPi);
  // Above the maximum: a turn down would pass the minimum, so the minimum.
  EXPECT_EQ(0.0, snapToRangeEnd(7, kTwoPi, turn));
  // Below the minimum: the maximum.
  EXPECT_EQ(kTwoPi, snapToRangeEnd(-0.5, kTwoPi, turn));
}

TEST(ScriptingUtils, SnapToRangeEndCountsARangeWithin3Point5eMinus5OfTheStepAsAFullTurn) {
  EXPECT_EQ(0.0, snapToRangeEnd(1.5, 1, rotary(0, 1 - 3.4e-5)));
  EXPECT_EQ(1.5, snapToRangeEnd(1.5, 1, rotary(0, 1 - 3.6e-5)));
}

TEST(ScriptingUtils, SnapToRangeEndOfAShorterRangeTakesAnEndWithin8Point709eMinus6) {
  Range const r = rotary(0, 1);
  EXPECT_EQ(1.0, snapToRangeEnd(1 + 8.7e-6, kTwoPi, r));
  EXPECT_EQ(0.0, snapToRangeEnd(-8.7e-6, kTwoPi, r));
  EXPECT_EQ(1 + 8.72e-6, snapToRangeEnd(1 + 8.72e-6, kTwoPi, r));
  EXPECT_EQ(-8.72e-6, snapToRangeEnd(-8.72e-6, kTwoPi, r));
  EXPECT_EQ(3.0, snapToRangeEnd(3, kTwoPi, r));
}

TEST(ScriptingUtils, ReduceToRangeMovesByWholeStepsIntoTheRange) {
  Range const turn = rotary(0, kTwoPi);
  EXPECT_EQ(7 - kTwoPi, reduceToRange(7, kTwoPi, turn));
  EXPECT_EQ(-7 + 2 * kTwoPi, reduceToRange(-7, kTwoPi, turn));
  EXPECT_EQ(3.0, reduceToRange(3, kTwoPi, turn));
  EXPECT_EQ(-kPi + 1, reduceToRange(-kPi + 1, kTwoPi, rotary(-kPi, kPi)));
}

TEST(ScriptingUtils, ReduceToRangeAllows1eMinus6BeyondTheLimits) {
  Range const r = rotary(0, 1);
  // Within 1e-6 above the maximum: kept as it is.
  EXPECT_EQ(1 + 0.5e-6, reduceToRange(1 + 0.5e-6, kTwoPi, r));
  // A turn above that: brought down a turn, and kept.
  EXPECT_EQ(1.0000004999999996, reduceToRange(1 + kTwoPi + 0.5e-6, kTwoPi, r));
  // 2e-6 above: a turn down misses the range, so it stays and snaps to the
  // maximum, which is within 8.709e-6.
  EXPECT_EQ(1.0, reduceToRange(1 + 2e-6, kTwoPi, r));
}

TEST(ScriptingUtils, ReduceToRangeSnapsAValueThatNoTurnBringsIn) {
  EXPECT_EQ(1.5, reduceToRange(1.5, kTwoPi, rotary(0, 1)));
  // Just above a range a little short of a full turn: to the minimum.
  EXPECT_EQ(0.0, reduceToRange(kTwoPi - 0.5e-5, kTwoPi, rotary(0, kTwoPi - 1e-5)));
}

TEST(ScriptingUtils, ReduceToRangeOfAFarValueStepsAsTheWalkWould) {
  // The largest step count k with 1e6 + k 0.001 - 1e-6 <= 1 is -999999000.
  EXPECT_EQ(1.0, reduceToRange(1e6, 0.001, Range(0, 1, Range::LINEAR)));
  // From -1e6 up by a million steps of 1.
  EXPECT_EQ(0.0, reduceToRange(-1e6, 1, Range(0, 0.5, Range::LINEAR)));
}

TEST(ScriptingUtils, ReduceToRangeAssertsItsValueBounds) {
  mtkit_test::AssertRecorder rec;
  EXPECT_EQ(-1e6 + 159155 * kTwoPi, reduceToRange(-1e6, kTwoPi, rotary(0, kTwoPi)));
  EXPECT_TRUE(rec.takeTexts().empty());
  double const r = reduceToRange(2e6, kTwoPi, rotary(0, kTwoPi));
  auto const failures = rec.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ("(value >= -1e6) && (value <= 1e6)", failures[0].expression);
  EXPECT_EQ(kSourcePath, failures[0].file);
  // The code goes on: the value still comes back a whole number of turns away.
  EXPECT_EQ(2e6 - 318309 * kTwoPi, r);
}

TEST(ScriptingUtils, ReduceToRangeAssertsAPositiveStep) {
  mtkit_test::AssertRecorder rec;
  EXPECT_EQ(7.0, reduceToRange(7, 0, rotary(0, 1)));
  EXPECT_EQ(std::vector<std::string>{"step > 0"}, rec.takeTexts());
  EXPECT_EQ(7.0, reduceToRange(7, -1, rotary(0, 1)));
  EXPECT_EQ(std::vector<std::string>{"step > 0"}, rec.takeTexts());
}

TEST(ScriptingUtils, ReduceToRangeAssertsARealRangeAndGivesTheValueForANonRange) {
  mtkit_test::AssertRecorder rec;
  EXPECT_EQ(7.0, reduceToRange(7, kTwoPi, Range()));
  auto const failures = rec.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ("!requiredRange.isNonRange()", failures[0].expression);
  EXPECT_EQ(kSourcePath, failures[0].file);
}

TEST(ScriptingUtils, ReduceToRangeGivesBackWhatNoStepMoves) {
  mtkit_test::AssertRecorder rec;
  EXPECT_EQ(kInfinity, reduceToRange(kInfinity, kTwoPi, rotary(0, 1)));
  EXPECT_TRUE(std::isnan(reduceToRange(kNaN, kTwoPi, rotary(0, 1))));
  EXPECT_EQ(1e300, reduceToRange(1e300, kTwoPi, rotary(0, 1)));
  EXPECT_EQ((std::vector<std::string>{"(value >= -1e6) && (value <= 1e6)", "(value >= -1e6) && (value <= 1e6)",
                                      "(value >= -1e6) && (value <= 1e6)"}),
            rec.takeTexts());
}

}  // namespace

