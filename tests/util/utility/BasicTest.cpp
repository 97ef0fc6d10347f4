#include "util/utility/Basic.h"

#include <gtest/gtest.h>

#include "support/AssertRecorder.h"
#include "support/ContractListener.h"
#include "support/ProductionBehaviour.h"

namespace {
constexpr char const* orvoAssertSourcePath = "tests\\Basic";

int evaluations = 0;
bool countedFalse() {
  ++evaluations;
  return false;
}
}  // namespace

TEST(Assertions, NothingIsEvaluatedWhenNotTesting) {
  evaluations = 0;
  {
    // What a production run does with an assertion is the subject here.
    mtkit_test::ProductionBehaviour production;
    ORVO_ASSERT(countedFalse());
    EXPECTS(countedFalse());
    ENSURES(countedFalse());
  }
  EXPECT_EQ(evaluations, 0);
  mtkit_test::AssertRecorder rec;
  EXPECT_TRUE(rec.take().empty());
}

TEST(Assertions, ThreeFormsRecordTextFileAndLine) {
  mtkit_test::AssertRecorder rec;
  int const x = 1;
  unsigned const line = __LINE__ + 1;
  ORVO_ASSERT(x == 2);
  EXPECTS(x < 0);
  ENSURES(x  >  5 && "odd   spacing");
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 3u);
  EXPECT_EQ(failures[0].expression, "x == 2");
  EXPECT_EQ(failures[0].file, "tests\\Basic");
  EXPECT_EQ(failures[0].line, line);
  EXPECT_EQ(failures[1].expression, "EXPECTS:x < 0");
  EXPECT_EQ(failures[1].line, line + 1);
  EXPECT_EQ(failures[2].expression, "ENSURES:x > 5 && \"odd   spacing\"");
}

TEST(Assertions, PassingConditionsRecordNothing) {
  mtkit_test::AssertRecorder rec;
  ORVO_ASSERT(1 == 1);
  EXPECTS(true);
  EXPECT_TRUE(rec.take().empty());
}

TEST(Assertions, CodeGoesOnAfterAFailure) {
  mtkit_test::AssertRecorder rec;
  int reached = 0;
  ORVO_ASSERT(false);
  reached = 1;
  EXPECT_EQ(reached, 1);
  EXPECT_EQ(rec.take().size(), 1u);
}

TEST(Assertions, TestingFlagIsFalseAtStartAndToggles) {
  // The test program records the flag before it turns it on for each test.
  EXPECT_FALSE(mtkit_test::testingAtProcessStart());
  EXPECT_TRUE(Orvo::_debug::isTesting());
  Orvo::_debug::setTesting(false);
  EXPECT_FALSE(Orvo::_debug::isTesting());
  Orvo::_debug::setTesting(true);
  EXPECT_TRUE(Orvo::_debug::isTesting());
}

TEST(Assertions, TakeFailedAssertsClears) {
  Orvo::_debug::failTestForAssert("a", "b", 3);
  EXPECT_EQ(Orvo::_debug::takeFailedAsserts().size(), 1u);
  EXPECT_TRUE(Orvo::_debug::takeFailedAsserts().empty());
}

TEST(Clamp, ClampsIntoRange) {
  EXPECT_EQ(Orvo::clamp(5.0, 0.0, 1.0), 1.0);
  EXPECT_EQ(Orvo::clamp(-5.0, 0.0, 1.0), 0.0);
  EXPECT_EQ(Orvo::clamp(0.5, 0.0, 1.0), 0.5);
}

TEST(Clamp, ReversedBoundsFailMinimumNotAboveMaximum) {
  mtkit_test::AssertRecorder rec;
  Orvo::clamp(0.5, 1.0, 0.0);
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].expression, "minimum <= maximum");
  EXPECT_EQ(f[0].file, "util\\utility/Basic");
}

TEST(Math, AreSameWithinTolerance) {
  EXPECT_TRUE(Orvo::Math::areSame(1.0, 1.0 + 1e-13));
  EXPECT_FALSE(Orvo::Math::areSame(1.0, 1.0 + 1e-6));
  EXPECT_TRUE(Orvo::Math::areSame(1.0, 1.1, 0.2));
}

TEST(LengthOf, CountsArrayElements) {
  int const a[7] = {};
  static_assert(Orvo::lengthOf(a) == 7, "");
  EXPECT_EQ(Orvo::lengthOf(a), 7u);
}
