#include "machine/machine/CatchErrorsSimulationStream.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/NcCodeTiltedWorkPlaneBySpatialAngles.h"
#include "machine/machine/NcCodeTiltedWorkPlaneOff.h"
#include "machine/machine/RadiusCompensationSimulationStream.h"
#include "support/AssertRecorder.h"

using namespace machine;
using Orvo::Point3D;
using TCPMode = ControllerStateSimulationStream::TCPMode;
using TWPMode = ControllerStateSimulationStream::TWPMode;

namespace {

char const* const kMessage14 =
    "Tilted Work Plane(TWP) mode must not be started when TCP is already active. The post-processor file needs to be "
    "fixed.";
char const* const kMessage15 =
    "Simulation does not currently support activating TCP mode when Tilted Work Plane (TWP) mode is active. To use "
    "machine simulation the post-processor file will need to be adjusted to avoid this.";
char const* const kMessage16 = "Cannot change TCP mode whilst radius compensation is being applied.";
char const* const kMessage17 = "Cannot change TWP mode whilst radius compensation is being applied.";

NcCodeTiltedWorkPlaneBySpatialAngles const kPlaneOn(0.0, 0.5, 0.0);

/// Catch-errors in front of a recording stream, or in front of a
/// compensation stream in front of it.
struct Chain {
  explicit Chain(bool withCompensation = false) {
    auto owner = std::make_unique<MockSimulationStream>();
    mock = owner.get();
    std::unique_ptr<SimulationStream> next = std::move(owner);
    if (withCompensation) {
      auto bridgeOwner = std::make_unique<RadiusCompensationSimulationStream>(std::move(next));
      bridge = bridgeOwner.get();
      next = std::move(bridgeOwner);
    }
    stream = std::make_unique<CatchErrorsSimulationStream>(std::move(next));
  }
  /// Sends a motion with a compensation side through an Operation section.
  void startCompensating() {
    stream->onSection(SimulationStream::SectionType::Operation);
    stream->onLinear(Point3D(1, 0, 0), 500,
                     MotionSettings(Orvo::NCStream::getMovementFlags(Orvo::NCStream::MOVEMENT_CUTTING) |
                                        Orvo::NCStream::COMPENSATION_SIDE_1,
                                    NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                    NcCodeRotaryAxisTraverseMode::DIRECT));
    ASSERT_TRUE(bridge->isCompensating());
  }
  std::vector<int> issueCodes() const {
    std::vector<int> codes;
    for (int i = 0; i < mock->countOf("doOnIssue"); ++i) codes.push_back(static_cast<int>(mock->issue(i).code));
    return codes;
  }
  MockSimulationStream* mock;
  RadiusCompensationSimulationStream* bridge = nullptr;
  std::unique_ptr<CatchErrorsSimulationStream> stream;
};

}  // namespace

TEST(CatchErrorsSimulationStream, TcpOnThenPlaneOnGivesIssue14AndThePlaneIsOn) {
  Chain c;
  c.stream->onTCPCoordMode(true);
  c.stream->onTiltedWorkPlane(kPlaneOn);
  EXPECT_EQ(c.stream->tiltedWorkPlane(), TWPMode::ON);
  ASSERT_EQ(c.issueCodes(), std::vector<int>{14});
  EXPECT_EQ(c.mock->issue(0).message, kMessage14);
  EXPECT_TRUE(c.mock->tiltedWorkPlane(0));
  // The plane went on before the issue: the next stream has the new mode.
  EXPECT_LT(c.mock->positionsOf("doOnTiltedWorkPlane")[0], c.mock->positionsOf("doOnIssue")[0]);
}

TEST(CatchErrorsSimulationStream, PlaneOnThenTcpOnGivesIssue15) {
  Chain c;
  c.stream->onTiltedWorkPlane(kPlaneOn);
  EXPECT_TRUE(c.issueCodes().empty());
  c.stream->onTCPCoordMode(true);
  EXPECT_EQ(c.stream->tcpMode(), TCPMode::ON);
  ASSERT_EQ(c.issueCodes(), std::vector<int>{15});
  EXPECT_EQ(c.mock->issue(0).message, kMessage15);
  EXPECT_LT(c.mock->positionsOf("doOnTCPCoordMode")[0], c.mock->positionsOf("doOnIssue")[0]);
  EXPECT_TRUE(SimulationStream::severityOfIssue(c.mock->issue(0).code).isError());
}

TEST(CatchErrorsSimulationStream, TcpOffWhileAPlaneIsOnRaisesNoIssue) {
  Chain c;
  c.stream->onTiltedWorkPlane(kPlaneOn);
  c.stream->onTCPCoordMode(false);
  EXPECT_TRUE(c.issueCodes().empty());
  EXPECT_EQ(c.mock->countOf("doOnTCPCoordMode"), 1);
}

TEST(CatchErrorsSimulationStream, SwitchingAPlaneOffWhileTcpIsOnRaisesNothing) {
  Chain c;
  c.stream->onTCPCoordMode(true);
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  EXPECT_TRUE(c.issueCodes().empty());
  EXPECT_EQ(c.stream->tiltedWorkPlane(), TWPMode::OFF);
}

TEST(CatchErrorsSimulationStream, OnTcpCoordModeTrueWhileCompensatingWithAPlaneOnGivesIssue15AndThenIssue16) {
  Chain c(true);
  c.stream->onTiltedWorkPlane(kPlaneOn);
  ASSERT_TRUE(c.issueCodes().empty());
  c.startCompensating();
  c.stream->onTCPCoordMode(true);
  ASSERT_EQ(c.issueCodes(), (std::vector<int>{15, 16}));
  EXPECT_EQ(c.mock->issue(0).message, kMessage15);
  EXPECT_EQ(c.mock->issue(1).message, kMessage16);
  EXPECT_LT(c.mock->positionsOf("doOnTCPCoordMode")[0], c.mock->positionsOf("doOnIssue")[0]);
}

TEST(CatchErrorsSimulationStream, APlaneChangeWhileCompensatingGivesIssue17AfterAny14) {
  Chain c(true);
  c.startCompensating();
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  ASSERT_EQ(c.issueCodes(), std::vector<int>{17});
  EXPECT_EQ(c.mock->issue(0).message, kMessage17);
  c.stream->onTCPCoordMode(true);
  c.stream->onTiltedWorkPlane(kPlaneOn);
  EXPECT_EQ(c.issueCodes(), (std::vector<int>{17, 16, 14, 17}));
}

TEST(CatchErrorsSimulationStream, WithoutCompensationTheCompensationChecksStaySilent) {
  Chain c(true);
  EXPECT_EQ(c.stream->radiusCompensationStream(), c.bridge);
  c.stream->onSection(SimulationStream::SectionType::Operation);
  c.stream->onTCPCoordMode(false);
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  EXPECT_TRUE(c.issueCodes().empty());
}

TEST(CatchErrorsSimulationStream, KeepsATypedPointerOnlyToACompensationStreamRightBehindIt) {
  Chain plain;
  EXPECT_EQ(plain.stream->radiusCompensationStream(), nullptr);
  Chain compensated(true);
  EXPECT_NE(compensated.stream->radiusCompensationStream(), nullptr);
}

TEST(CatchErrorsSimulationStream, ANullNextStreamFailsInATestRun) {
  mtkit_test::AssertRecorder recorder;
  CatchErrorsSimulationStream const stream(nullptr);
  EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>{"EXPECTS:forwardStream()"});
  EXPECT_EQ(stream.radiusCompensationStream(), nullptr);
}
