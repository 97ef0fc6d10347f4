#include "machine/machine/InteractPair.h"

#include <gtest/gtest.h>

using machine::InteractPair;
using machine::InteractSetting;
using machine::InteractSolid;
using machine::InteractSolidType;

namespace {
InteractSolid const stock(InteractSolidType::STOCK, "table");
InteractSolid const tool(InteractSolidType::TOOL, "head");
InteractSolid const axis(InteractSolidType::MACHINE_PART, "x");
InteractSetting const check = InteractSetting().setCheckCollisions(true);
}  // namespace

TEST(InteractPair, KeepsItsPartsInOrder) {
  InteractPair const p(stock, tool, check);
  EXPECT_EQ(p.interactand(), stock);
  EXPECT_EQ(p.interactor(), tool);
  EXPECT_EQ(p.interactSetting(), check);
}

TEST(InteractPair, SetInteractSettingReplacesOnlyTheSetting) {
  InteractPair p(stock, tool, check);
  p.setInteractSetting(InteractSetting().setCutStock(true));
  EXPECT_TRUE(p.interactSetting().cutStock());
  EXPECT_FALSE(p.interactSetting().checkCollisions());
  EXPECT_EQ(p.interactand(), stock);
}

TEST(InteractPair, SameSolidsInEitherOrder) {
  InteractPair const p(stock, tool, check);
  EXPECT_TRUE(p.hasSameSolids(InteractPair(stock, tool, InteractSetting())));
  EXPECT_TRUE(p.hasSameSolids(InteractPair(tool, stock, InteractSetting())));
  EXPECT_FALSE(p.hasSameSolids(InteractPair(stock, axis, check)));
  EXPECT_FALSE(p.hasSameSolids(InteractPair(stock, stock, check)));
}

TEST(InteractPair, EqualityNeedsSettingAndSolids) {
  InteractPair const p(stock, tool, check);
  EXPECT_TRUE(p == InteractPair(tool, stock, check));
  EXPECT_FALSE(p == InteractPair(tool, stock, InteractSetting()));
  EXPECT_FALSE(p == InteractPair(axis, stock, check));
  EXPECT_TRUE(p != InteractPair(axis, stock, check));
}

TEST(InteractPair, HasSolidOfTypeLooksAtBoth) {
  InteractPair const p(stock, tool, check);
  EXPECT_TRUE(p.hasSolidOfType(InteractSolidType::STOCK));
  EXPECT_TRUE(p.hasSolidOfType(InteractSolidType::TOOL));
  EXPECT_FALSE(p.hasSolidOfType(InteractSolidType::FIXTURE));
}

TEST(InteractPair, OtherSolid) {
  InteractPair const p(stock, tool, check);
  EXPECT_EQ(p.otherSolid(stock), tool);
  EXPECT_EQ(p.otherSolid(tool), stock);
  EXPECT_FALSE(p.otherSolid(axis).has_value());
  // Same part, other type: not a solid of the pair.
  EXPECT_FALSE(p.otherSolid(InteractSolid(InteractSolidType::FIXTURE, "table")).has_value());
}

TEST(InteractPair, DebugDescriptionJoinsBothSolidsAndSetting) {
  EXPECT_EQ(InteractPair(stock, tool, check).debugDescription(),
            "stock:table vs tool:head [CHECK COLLISIONS=true][CUT STOCK=false]");
}
