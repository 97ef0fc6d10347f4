#include "machine/machine/MotionSettings.h"

#include <gtest/gtest.h>

#include "support/AssertRecorder.h"

using machine::MotionSettings;
using machine::NcCodeKinematicInterpolationMode;
using machine::NcCodeRotaryAxisTraverseMode;
using Orvo::NCStream;

TEST(MotionSettings, DefaultIsZero) { EXPECT_EQ(MotionSettings().flags(), 0u); }

TEST(MotionSettings, SynchronizedShortestSetsBit28AndBit30AndSetMovementKeepsBoth) {
  MotionSettings s(3u | 128u, NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::SHORTEST);
  EXPECT_EQ(s.flags(), 3u | 128u | (1u << 28) | (1u << 30));
  s.setMovement(NCStream::MOVEMENT_HIGH_FEED);
  EXPECT_EQ(s.flags(), 15u | (1u << 28) | (1u << 30));
  EXPECT_EQ(s.movement(), NCStream::MOVEMENT_HIGH_FEED);
  EXPECT_EQ(s.interpolationMode(), NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_EQ(s.rotaryTraverseMode(), NcCodeRotaryAxisTraverseMode::SHORTEST);
}

TEST(MotionSettings, ConstructorAssertsReservedBitsClear) {
  mtkit_test::AssertRecorder rec;
  MotionSettings const s(0x80000001u, NcCodeKinematicInterpolationMode::TCP_ONLY,
                         NcCodeRotaryAxisTraverseMode::DIRECT);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"(m_flags & FLAG_RESERVED_MASK) == 0"});
  EXPECT_EQ(s.interpolationMode(), NcCodeKinematicInterpolationMode::TCP_ONLY);
  MotionSettings const ok(1u, NcCodeKinematicInterpolationMode::MIXED, NcCodeRotaryAxisTraverseMode::DIRECT);
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(ok.interpolationMode(), NcCodeKinematicInterpolationMode::MIXED);
}

TEST(MotionSettings, FromMovementSetsModes) {
  MotionSettings const s(NCStream::MOVEMENT_NC_CODE, NcCodeKinematicInterpolationMode::TCP_ONLY,
                         NcCodeRotaryAxisTraverseMode::DIRECT);
  EXPECT_EQ(s.flags(), 17u | (2u << 28));
}

TEST(MotionSettings, SetFlagsCheckedOnDefaultStoresHighBitsThenRefuses) {
  MotionSettings s;
  EXPECT_TRUE(s.setFlagsChecked(0x30000005u));
  EXPECT_EQ(s.flags(), 0x30000005u);
  EXPECT_FALSE(s.setFlagsChecked(7u));
  EXPECT_EQ(s.flags(), 0x30000005u);
}

TEST(MotionSettings, SetFlagsOverwritesModesUnchecked) {
  MotionSettings s(1u, NcCodeKinematicInterpolationMode::TCP_ONLY, NcCodeRotaryAxisTraverseMode::SHORTEST);
  s.setFlags(2u);
  EXPECT_EQ(s.flags(), 2u);
  EXPECT_EQ(s.interpolationMode(), NcCodeKinematicInterpolationMode::UNSYNCHRONIZED);
}

TEST(MotionSettings, MergeMachineInterpolationChangesTcpOnlyAndLeavesUnsynchronized) {
  MotionSettings tcp(1u, NcCodeKinematicInterpolationMode::TCP_ONLY, NcCodeRotaryAxisTraverseMode::DIRECT);
  tcp.mergeMachineInterpolation(NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_EQ(tcp.interpolationMode(), NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  MotionSettings unsync(1u, NcCodeKinematicInterpolationMode::UNSYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  unsync.mergeMachineInterpolation(NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_EQ(unsync.interpolationMode(), NcCodeKinematicInterpolationMode::UNSYNCHRONIZED);
}

TEST(MotionSettings, MergeMachineInterpolationAssertsOnHeldMixed) {
  mtkit_test::AssertRecorder rec;
  MotionSettings mixed(1u, NcCodeKinematicInterpolationMode::MIXED, NcCodeRotaryAxisTraverseMode::DIRECT);
  mixed.mergeMachineInterpolation(NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_EQ(rec.takeTexts(),
            std::vector<std::string>{"EXPECTS:currentMode != machine::NcCodeKinematicInterpolationMode::MIXED"});
  EXPECT_EQ(mixed.interpolationMode(), NcCodeKinematicInterpolationMode::MIXED);
}
