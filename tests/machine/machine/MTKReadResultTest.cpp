#include "machine/machine/MTKReadResult.h"

#include <gtest/gtest.h>

#include "machine/machine/MTKIOConverter.h"
#include "machine/machine/MTKReaderException.h"
#include "support/AssertRecorder.h"

using machine::KinematicsDefinition;
using machine::MTKReadErrorType;
using machine::MTKReadResult;

TEST(MTKReadResult, SuccessMovesDefinitionOut) {
  MTKReadResult result(std::make_unique<KinematicsDefinition>(std::vector<std::unique_ptr<machine::PartDefinition>>{},
                                                              machine::MTKIOConverter()));
  EXPECT_EQ(result.getReadErrorType(), MTKReadErrorType::NONE);
  EXPECT_NE(result.getKinematicsDefinition(), nullptr);
  EXPECT_EQ(result.getKinematicsDefinition(), nullptr);
  MTKReadResult moved = std::move(result);
  EXPECT_EQ(moved.getReadErrorType(), MTKReadErrorType::NONE);
}

TEST(MTKReadResult, NullDefinitionBreaksAssertion) {
  mtkit_test::AssertRecorder rec;
  MTKReadResult const result{std::unique_ptr<KinematicsDefinition>()};
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"m_kinematicsDefinition"});
}

TEST(MTKReadResult, ErrorMessageHasHeading) {
  MTKReadResult const result(MTKReadErrorType::BAD_TURRET, L"broken");
  EXPECT_EQ(result.getReadErrorType(), MTKReadErrorType::BAD_TURRET);
  EXPECT_EQ(result.getReadErrorMessage(), L"Error reading Machine Tool Kinematics (MTK) data from machine file:\n\nbroken");
}

TEST(MTKReaderException, WhatIsUnknownExceptionAndTextTravelsInFields) {
  machine::MTKReaderException const e(MTKReadErrorType::BAD_SPINDLE, L"text");
  std::exception const& base = e;
  EXPECT_STREQ(base.what(), "Unknown exception");
  EXPECT_EQ(e.type(), MTKReadErrorType::BAD_SPINDLE);
  EXPECT_EQ(e.message(), L"text");
}

TEST(MTKIOConverter, LeftHandedFlipsBothWaysRightHandedKeeps) {
  machine::MTKIOConverter converter;
  EXPECT_EQ(converter.externalHandedness(), machine::Handedness::RIGHT_HANDED);
  EXPECT_EQ(converter.convertAxialVectorToExternal({1, 2, 3}), Orvo::Vector3D(1, 2, 3));
  converter.setExternalHandedness(machine::Handedness::LEFT_HANDED);
  EXPECT_EQ(converter.convertAxialVectorToExternal({1, 2, 3}), Orvo::Vector3D(-1, -2, -3));
  EXPECT_EQ(converter.convertAxialVectorToInternal({0, 0, 1}), Orvo::Vector3D(0, 0, -1));
}
