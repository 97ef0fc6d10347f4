#include "machine/machine/AxisConfiguration.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using machine::AnglePreference;
using machine::AnglePreferenceValue;
using machine::AxisConfiguration;
using machine::ResetAxisPreference;
using machine::ResetAxisValue;
using Orvo::AxisValueRange;
using Orvo::Quantity::Speed;

TEST(AxisConfiguration, Defaults) {
  AxisConfiguration const c;
  EXPECT_FALSE(c.isReversed());
  EXPECT_EQ(c.zeroPositionOffset().value(), 0.0);
  EXPECT_EQ(c.whenToReset().value(), ResetAxisValue::NEVER);
  EXPECT_FALSE(c.home().has_value());
  EXPECT_TRUE(c.restrictedRange().isInfinite());
  EXPECT_FALSE(c.name().has_value());
  EXPECT_FALSE(c.maxNormalSpeed().has_value());
  EXPECT_FALSE(c.maxRapidSpeed().has_value());
  EXPECT_FALSE(c.coordinate().has_value());
  EXPECT_TRUE(c.isTCPEnabled());
  EXPECT_EQ(c.preference().value(), AnglePreferenceValue::NO_PREFERENCE);
  EXPECT_TRUE(c.wrapAroundAtRange().isInfinite());
  EXPECT_FALSE(c.hasRestrictedLimits());
  EXPECT_FALSE(c.hasWrapAroundAtLimits());
}

TEST(AxisConfiguration, SettersStoreUnchecked) {
  AxisConfiguration c;
  c.setIsReversed(true);
  c.setZeroPositionOffset(-2.5);
  c.setWhenToReset(ResetAxisValue::ON_REWIND);
  c.setHome(Orvo::AxisValue(10.0));
  c.setRestrictedRange(AxisValueRange(-5.0, 5.0));
  c.setName(Orvo::AxisName("B"));
  c.setMaxNormalSpeed(Speed(-1.0));  // no check: a negative speed is kept
  c.setMaxRapidSpeed(Speed(20000.0));
  c.setCoordinate(-3);
  c.setTCPEnabled(false);
  c.setPreference(AnglePreferenceValue::POSITIVE);
  c.setWrapAroundAtRange(AxisValueRange(0.0, 360.0));

  EXPECT_TRUE(c.isReversed());
  EXPECT_EQ(c.zeroPositionOffset().value(), -2.5);
  EXPECT_EQ(c.whenToReset().value(), ResetAxisValue::ON_REWIND);
  ASSERT_TRUE(c.home());
  EXPECT_EQ(c.home()->value(), 10.0);
  EXPECT_EQ(c.restrictedRange(), AxisValueRange(-5.0, 5.0));
  ASSERT_TRUE(c.name());
  EXPECT_EQ(c.name()->name(), "B");
  EXPECT_EQ(c.maxNormalSpeed(), Speed(-1.0));
  EXPECT_EQ(c.maxRapidSpeed(), Speed(20000.0));
  EXPECT_EQ(c.coordinate(), -3);
  EXPECT_FALSE(c.isTCPEnabled());
  EXPECT_EQ(c.preference().value(), AnglePreferenceValue::POSITIVE);
  EXPECT_EQ(c.wrapAroundAtRange(), AxisValueRange(0.0, 360.0));
  EXPECT_TRUE(c.hasRestrictedLimits());
  EXPECT_TRUE(c.hasWrapAroundAtLimits());

  c.setHome(std::nullopt);
  c.setRestrictedRange(AxisValueRange());
  EXPECT_FALSE(c.home());
  EXPECT_FALSE(c.hasRestrictedLimits());
}

TEST(AxisConfiguration, CopyTagCopiesEveryField) {
  AxisConfiguration c;
  c.setIsReversed(true);
  c.setHome(Orvo::AxisValue(1.0));
  c.setName(Orvo::AxisName("A"));
  c.setCoordinate(4);
  c.setWrapAroundAtRange(AxisValueRange(-180.0, 180.0));
  AxisConfiguration const copy(machine::CopyTag{}, c);
  EXPECT_EQ(copy, c);
  c.setCoordinate(5);
  EXPECT_NE(copy, c);
  EXPECT_EQ(copy.coordinate(), 4);
}

TEST(AxisConfiguration, EachFieldTakesPartInEquality) {
  std::vector<std::function<void(AxisConfiguration&)>> const changes{
      [](AxisConfiguration& c) { c.setIsReversed(true); },
      [](AxisConfiguration& c) { c.setZeroPositionOffset(1.0); },
      [](AxisConfiguration& c) { c.setWhenToReset(ResetAxisValue::BEFORE_AND_ON_REWIND); },
      [](AxisConfiguration& c) { c.setHome(Orvo::AxisValue(0.0)); },
      [](AxisConfiguration& c) { c.setRestrictedRange(AxisValueRange(0.0, 1.0)); },
      [](AxisConfiguration& c) { c.setName(Orvo::AxisName("")); },
      [](AxisConfiguration& c) { c.setMaxNormalSpeed(Speed(0.0)); },
      [](AxisConfiguration& c) { c.setMaxRapidSpeed(Speed(0.0)); },
      [](AxisConfiguration& c) { c.setCoordinate(0); },
      [](AxisConfiguration& c) { c.setTCPEnabled(false); },
      [](AxisConfiguration& c) { c.setPreference(AnglePreferenceValue::NEGATIVE); },
      [](AxisConfiguration& c) { c.setWrapAroundAtRange(AxisValueRange(0.0, 360.0)); },
  };
  ASSERT_EQ(changes.size(), 12u);
  AxisConfiguration const base;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    AxisConfiguration changed;
    EXPECT_EQ(changed, base) << i;
    changes[i](changed);
    EXPECT_NE(changed, base) << "field " << i;
    EXPECT_FALSE(changed == base) << "field " << i;
  }
}
