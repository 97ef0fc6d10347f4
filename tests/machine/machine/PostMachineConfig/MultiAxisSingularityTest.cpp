#include "machine/machine/PostMachineConfig/MultiAxisSingularity.h"

#include <gtest/gtest.h>

#include <cmath>

using com::vantora::post::MultiAxisSingularity;

namespace {

TEST(MultiAxisSingularity, DefaultAdjustsByLinearizingRotaryWithThreeAndTenDegrees) {
  MultiAxisSingularity const s;
  EXPECT_TRUE(s.getAdjust());
  EXPECT_EQ(2, s.getMethod());
  EXPECT_EQ(0.05235987755982988, s.getCone());
  EXPECT_EQ(0.17453292519943295, s.getAngle());
  EXPECT_EQ(0.04, s.getTolerance());
  EXPECT_EQ(0.04, s.getLinearizationTolerance());
}

TEST(MultiAxisSingularity, DefaultConeIsThreeDegreesAsThreePiOverOneHundredEighty) {
  // (3 pi) / 180 and pi / 60 give this double; 3 (pi / 180) gives the one
  // above it.
  EXPECT_EQ((3 * M_PI) / 180, MultiAxisSingularity().getCone());
  EXPECT_EQ(M_PI / 60, MultiAxisSingularity().getCone());
  EXPECT_EQ(std::nextafter(MultiAxisSingularity().getCone(), 1.0), 3 * (M_PI / 180));
  EXPECT_EQ(10 * M_PI / 180, MultiAxisSingularity().getAngle());
}

TEST(MultiAxisSingularity, MethodNames) {
  EXPECT_EQ(0, MultiAxisSingularity::METHOD_OFF);
  EXPECT_EQ(1, MultiAxisSingularity::METHOD_LINEARIZE_LINEAR);
  EXPECT_EQ(2, MultiAxisSingularity::METHOD_LINEARIZE_ROTARY);
}

TEST(MultiAxisSingularity, AccessorsStoreEachFieldAndEqualityComparesThemAll) {
  MultiAxisSingularity s;
  s.setAdjust(false);
  s.setMethod(1);
  s.setCone(0.1);
  s.setAngle(0.2);
  s.setTolerance(0.3);
  s.setLinearizationTolerance(0.4);
  EXPECT_FALSE(s.getAdjust());
  EXPECT_EQ(1, s.getMethod());
  EXPECT_EQ(0.1, s.getCone());
  EXPECT_EQ(0.2, s.getAngle());
  EXPECT_EQ(0.3, s.getTolerance());
  EXPECT_EQ(0.4, s.getLinearizationTolerance());

  MultiAxisSingularity t = s;
  EXPECT_TRUE(t == s);
  t.setCone(0.11);
  EXPECT_TRUE(t != s);
}

}  // namespace
