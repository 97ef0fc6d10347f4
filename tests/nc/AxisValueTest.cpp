#include "nc/AxisValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using Orvo::AxisValue;

TEST(AxisValue, NaNIsUnequalToItself) {
  AxisValue const a(std::numeric_limits<double>::quiet_NaN());
  EXPECT_FALSE(a == a);
  EXPECT_FALSE(AxisValue(std::nan("")) == AxisValue(std::nan("")));
  EXPECT_TRUE(a != a);
}

TEST(AxisValue, ComparesExactly) {
  EXPECT_TRUE(AxisValue(1.0) == AxisValue(1.0));
  EXPECT_FALSE(AxisValue(1.0) == AxisValue(1.0 + 1e-15));
}

TEST(AxisValue, RadiansAndBack) {
  AxisValue const a(180.0);
  EXPECT_DOUBLE_EQ(a.radians().get(), M_PI);
  EXPECT_DOUBLE_EQ(AxisValue(Orvo::Radian(M_PI / 2)).value(), 90.0);
  EXPECT_EQ(a.mm(), 180.0);
  EXPECT_EQ(AxisValue().value(), 0.0);
}
