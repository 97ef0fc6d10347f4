#include "machine/machine/NcCodeKinematicInterpolationMode.h"

#include <gtest/gtest.h>

using machine::NcCodeKinematicInterpolationMode;

TEST(NcCodeKinematicInterpolationMode, EnumeratorValues) {
  EXPECT_EQ(static_cast<int>(NcCodeKinematicInterpolationMode::UNSYNCHRONIZED), 0);
  EXPECT_EQ(static_cast<int>(NcCodeKinematicInterpolationMode::SYNCHRONIZED), 1);
  EXPECT_EQ(static_cast<int>(NcCodeKinematicInterpolationMode::TCP_ONLY), 2);
  EXPECT_EQ(static_cast<int>(NcCodeKinematicInterpolationMode::MIXED), 3);
}

TEST(NcCodeKinematicInterpolationMode, JsonWords) {
  auto const& map = Orvo::EnumTraits<NcCodeKinematicInterpolationMode>::keyMap();
  ASSERT_EQ(map.size(), 3u);
  EXPECT_EQ(map.at("Unsynchronized"), NcCodeKinematicInterpolationMode::UNSYNCHRONIZED);
  EXPECT_EQ(map.at("Synchronized"), NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_EQ(map.at("ToolTip"), NcCodeKinematicInterpolationMode::TCP_ONLY);
}
