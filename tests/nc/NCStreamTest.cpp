#include "nc/NCStream.h"

#include <gtest/gtest.h>

using Orvo::NCStream;

TEST(NCStream, MovementFlagsHoldTheMovementInTheLowBits) {
  EXPECT_EQ(NCStream::getMovementFlags(NCStream::MOVEMENT_HIGH_FEED), 15u);
  EXPECT_EQ(NCStream::getMovementFlags(NCStream::MOVEMENT_NC_CODE), 17u);
  EXPECT_EQ(NCStream::getMovement(15u), NCStream::MOVEMENT_HIGH_FEED);
  EXPECT_EQ(NCStream::getMovement(17u), NCStream::MOVEMENT_NC_CODE);
}

TEST(NCStream, CompensationSideAndHighBitsDoNotChangeTheMovement) {
  EXPECT_EQ(NCStream::COMPENSATION_SIDE_MASK, 384u);
  EXPECT_EQ(NCStream::getMovement(3u | 128u), NCStream::MOVEMENT_CUTTING);
  EXPECT_EQ(NCStream::getMovement(3u | 256u), NCStream::MOVEMENT_CUTTING);
  EXPECT_EQ(NCStream::getMovement(15u | 0xF0000000u), NCStream::MOVEMENT_HIGH_FEED);
  EXPECT_EQ(NCStream::getMovementFlags(NCStream::MOVEMENT_CUTTING) & NCStream::COMPENSATION_SIDE_MASK, 0u);
}

TEST(NCStream, CommandNumbersUsedByTheStreams) {
  EXPECT_EQ(static_cast<int>(NCStream::COMMAND_SPINDLE_CLOCKWISE), 4);
  EXPECT_EQ(static_cast<int>(NCStream::COMMAND_SPINDLE_COUNTERCLOCKWISE), 5);
  EXPECT_EQ(static_cast<int>(NCStream::COMMAND_START_THREADING), 12);
  EXPECT_EQ(static_cast<int>(NCStream::COMMAND_END_THREADING), 13);
}
