#include "nc/NCUnit.h"

#include <gtest/gtest.h>

#include <cmath>

#include "nc/NCTool.h"

using Orvo::NCUnit;

TEST(NCUnit, UnitOneIsTheMillimetre) {
  EXPECT_EQ(static_cast<int>(NCUnit::MILLIMETER), 1);
  EXPECT_DOUBLE_EQ(NCUnit::getUnitConversionFactor(NCUnit::INCH, 1), 25.4);
  EXPECT_DOUBLE_EQ(NCUnit::getUnitConversionFactor(1, 1), 1.0);
  EXPECT_DOUBLE_EQ(NCUnit::getUnitConversionFactor(NCUnit::MILLIMETER, NCUnit::METER), 0.001);
}

TEST(NCUnit, UnknownUnitHasNoFactor) {
  EXPECT_TRUE(std::isnan(NCUnit::getUnitConversionFactor(9, 1)));
  EXPECT_TRUE(std::isnan(NCUnit::getUnitConversionFactor(1, -1)));
}

TEST(NCTool, KeepsRadiusPitchAndUnit) {
  Orvo::NCTool const tool(7, Orvo::ToolGeometry(12.0, 1.0, 30.0, 80.0), NCUnit::INCH, 0.0625);
  EXPECT_EQ(tool.getNumber(), 7);
  EXPECT_DOUBLE_EQ(tool.getRadius(), 6.0);
  EXPECT_EQ(tool.getUnit(), NCUnit::INCH);
  EXPECT_DOUBLE_EQ(tool.getThreadPitch() * NCUnit::getUnitConversionFactor(tool.getUnit(), 1), 1.5875);
  EXPECT_EQ(Orvo::NCTool().getUnit(), 1);
  EXPECT_NE(tool, Orvo::NCTool());
}
