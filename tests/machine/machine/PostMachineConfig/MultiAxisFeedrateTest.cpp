#include "machine/machine/PostMachineConfig/MultiAxisFeedrate.h"

#include <gtest/gtest.h>

using com::vantora::post::MultiAxisFeedrate;

namespace {

TEST(MultiAxisFeedrate, DefaultIsFeedPerMinuteWithoutMaximumInMinutesAndCombination) {
  MultiAxisFeedrate const f;
  EXPECT_EQ(2, f.getFeedMode());
  EXPECT_EQ(MultiAxisFeedrate::FEED_FPM, f.getFeedMode());
  EXPECT_EQ(-1.0, f.getMaximumFeedrate());
  EXPECT_EQ(1, f.getInverseTimeUnits());
  EXPECT_EQ(-1.0, f.getDPMOutputTolerance());
  EXPECT_EQ(-1.0, f.getDPMPulseWeight());
  EXPECT_EQ(1, f.getDPMType());
}

TEST(MultiAxisFeedrate, EnumerationValuesAreThoseScriptsPass) {
  EXPECT_EQ(0, MultiAxisFeedrate::FEED_INVERSE_TIME);
  EXPECT_EQ(1, MultiAxisFeedrate::FEED_DPM);
  EXPECT_EQ(2, MultiAxisFeedrate::FEED_FPM);
  EXPECT_EQ(0, MultiAxisFeedrate::INVERSE_TIME_SECONDS);
  EXPECT_EQ(1, MultiAxisFeedrate::INVERSE_TIME_MINUTES);
  EXPECT_EQ(0, MultiAxisFeedrate::DPM_STANDARD);
  EXPECT_EQ(1, MultiAxisFeedrate::DPM_COMBINATION);
}

TEST(MultiAxisFeedrate, InverseTimeConstructorSetsModeUnitsAndMaximumOnly) {
  MultiAxisFeedrate const f(MultiAxisFeedrate::FEED_INVERSE_TIME, MultiAxisFeedrate::INVERSE_TIME_SECONDS, 250.0);
  EXPECT_EQ(MultiAxisFeedrate::FEED_INVERSE_TIME, f.getFeedMode());
  EXPECT_EQ(MultiAxisFeedrate::INVERSE_TIME_SECONDS, f.getInverseTimeUnits());
  EXPECT_EQ(250.0, f.getMaximumFeedrate());
  EXPECT_EQ(-1.0, f.getDPMOutputTolerance());
  EXPECT_EQ(-1.0, f.getDPMPulseWeight());
  EXPECT_EQ(MultiAxisFeedrate::DPM_COMBINATION, f.getDPMType());
}

TEST(MultiAxisFeedrate, ToleranceConstructorSetsModeMaximumAndToleranceOnly) {
  MultiAxisFeedrate const f(MultiAxisFeedrate::FEED_DPM, 900.0, 0.01);
  EXPECT_EQ(MultiAxisFeedrate::FEED_DPM, f.getFeedMode());
  EXPECT_EQ(900.0, f.getMaximumFeedrate());
  EXPECT_EQ(0.01, f.getDPMOutputTolerance());
  EXPECT_EQ(MultiAxisFeedrate::INVERSE_TIME_MINUTES, f.getInverseTimeUnits());
  EXPECT_EQ(-1.0, f.getDPMPulseWeight());
  EXPECT_EQ(MultiAxisFeedrate::DPM_COMBINATION, f.getDPMType());
}

TEST(MultiAxisFeedrate, AccessorsStoreEachFieldAndEqualityComparesThemAll) {
  MultiAxisFeedrate f;
  f.setFeedMode(MultiAxisFeedrate::FEED_DPM);
  f.setMaximumFeedrate(10);
  f.setInverseTimeUnits(MultiAxisFeedrate::INVERSE_TIME_SECONDS);
  f.setDPMOutputTolerance(0.5);
  f.setDPMPulseWeight(3);
  f.setDPMType(MultiAxisFeedrate::DPM_STANDARD);
  EXPECT_EQ(MultiAxisFeedrate::FEED_DPM, f.getFeedMode());
  EXPECT_EQ(10.0, f.getMaximumFeedrate());
  EXPECT_EQ(MultiAxisFeedrate::INVERSE_TIME_SECONDS, f.getInverseTimeUnits());
  EXPECT_EQ(0.5, f.getDPMOutputTolerance());
  EXPECT_EQ(3.0, f.getDPMPulseWeight());
  EXPECT_EQ(MultiAxisFeedrate::DPM_STANDARD, f.getDPMType());

  MultiAxisFeedrate g = f;
  EXPECT_TRUE(g == f);
  g.setDPMPulseWeight(4);
  EXPECT_TRUE(g != f);
  EXPECT_TRUE(MultiAxisFeedrate() == MultiAxisFeedrate());
}

}  // namespace
