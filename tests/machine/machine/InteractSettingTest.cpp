#include "machine/machine/InteractSetting.h"

#include <gtest/gtest.h>

using machine::InteractSetting;

TEST(InteractSetting, DefaultIsNeitherFlagAndIgnored) {
  InteractSetting const s;
  EXPECT_FALSE(s.checkCollisions());
  EXPECT_FALSE(s.cutStock());
  EXPECT_TRUE(s.ignore());
}

TEST(InteractSetting, SettersChainAndEitherFlagEndsIgnore) {
  InteractSetting s;
  s.setCheckCollisions(true).setCutStock(true);
  EXPECT_TRUE(s.checkCollisions());
  EXPECT_TRUE(s.cutStock());
  EXPECT_FALSE(s.ignore());
  s.setCheckCollisions(false);
  EXPECT_FALSE(s.ignore());
  s.setCutStock(false);
  EXPECT_TRUE(s.ignore());
  EXPECT_FALSE(InteractSetting().setCheckCollisions(true).ignore());
}

TEST(InteractSetting, EqualityComparesBothFlags) {
  EXPECT_EQ(InteractSetting(), InteractSetting());
  EXPECT_NE(InteractSetting().setCutStock(true), InteractSetting());
  EXPECT_NE(InteractSetting().setCutStock(true), InteractSetting().setCheckCollisions(true));
  EXPECT_EQ(InteractSetting().setCutStock(true).setCheckCollisions(true),
            InteractSetting().setCheckCollisions(true).setCutStock(true));
}

TEST(InteractSetting, DebugDescriptionCarriesItsMarkers) {
  std::string const text = InteractSetting().setCheckCollisions(true).debugDescription();
  EXPECT_NE(text.find("[CHECK COLLISIONS="), std::string::npos);
  EXPECT_NE(text.find("][CUT STOCK="), std::string::npos);
  EXPECT_LT(text.find("[CHECK COLLISIONS="), text.find("][CUT STOCK="));
  EXPECT_EQ(text, "[CHECK COLLISIONS=true][CUT STOCK=false]");
}
