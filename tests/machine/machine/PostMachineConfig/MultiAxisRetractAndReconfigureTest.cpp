#include "machine/machine/PostMachineConfig/MultiAxisRetractAndReconfigure.h"

#include <gtest/gtest.h>

using com::vantora::Vector;
using com::vantora::post::MultiAxisRetractAndReconfigure;

namespace {

TEST(MultiAxisRetractAndReconfigure, DefaultHasRewindsOffPreferencesOneAndZeros) {
  MultiAxisRetractAndReconfigure const r;
  EXPECT_FALSE(r.getReconfigure());
  EXPECT_EQ(1, r.getRewindPreference());
  EXPECT_EQ(1, r.getRetractPreference());
  EXPECT_EQ(0, r.getRewindStrategy());
  EXPECT_EQ(0.0, r.getStockExpansion().x);
  EXPECT_EQ(0.0, r.getStockExpansion().y);
  EXPECT_EQ(0.0, r.getStockExpansion().z);
  EXPECT_EQ(0.0, r.getSafeRetractDistance());
  EXPECT_EQ(0.0, r.getSafeRetractFeedrate());
  EXPECT_EQ(0.0, r.getSafePlungeFeedrate());
}

TEST(MultiAxisRetractAndReconfigure, PreferenceNamesStandForOneAndTwo) {
  EXPECT_EQ(1, MultiAxisRetractAndReconfigure::REWIND_AT_LINEAR);
  EXPECT_EQ(2, MultiAxisRetractAndReconfigure::REWIND_AT_RAPID);
  EXPECT_EQ(1, MultiAxisRetractAndReconfigure::REWIND_RETRACT_AT_APEX);
  EXPECT_EQ(2, MultiAxisRetractAndReconfigure::REWIND_STAY_AT_APEX);
  EXPECT_EQ(0, MultiAxisRetractAndReconfigure::REWIND_STRATEGY_MINIMIZE_REWINDS);
  EXPECT_EQ(1, MultiAxisRetractAndReconfigure::REWIND_STRATEGY_AXIS_PREFERENCE);
}

TEST(MultiAxisRetractAndReconfigure, AccessorsStoreEachFieldAndEqualityComparesThemAll) {
  MultiAxisRetractAndReconfigure r;
  r.setReconfigure(true);
  r.setRewindPreference(2);
  r.setRetractPreference(2);
  r.setRewindStrategy(1);
  r.setStockExpansion(Vector(1, 2, 3));
  r.setSafeRetractDistance(4);
  r.setSafeRetractFeedrate(5);
  r.setSafePlungeFeedrate(6);
  EXPECT_TRUE(r.getReconfigure());
  EXPECT_EQ(2, r.getRewindPreference());
  EXPECT_EQ(2, r.getRetractPreference());
  EXPECT_EQ(1, r.getRewindStrategy());
  EXPECT_EQ(3.0, r.getStockExpansion().z);
  EXPECT_EQ(4.0, r.getSafeRetractDistance());
  EXPECT_EQ(5.0, r.getSafeRetractFeedrate());
  EXPECT_EQ(6.0, r.getSafePlungeFeedrate());

  MultiAxisRetractAndReconfigure s = r;
  EXPECT_TRUE(s == r);
  s.setStockExpansion(Vector(1, 2, 3.5));
  EXPECT_TRUE(s != r);
}

}  // namespace
