#include "machine/machine/ControllerStateSimulationStream.h"

#include <gtest/gtest.h>

#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/NcCodeTiltedWorkPlaneBySpatialAngles.h"
#include "machine/machine/NcCodeTiltedWorkPlaneOff.h"
#include "support/AssertRecorder.h"

using namespace machine;
using TCPMode = ControllerStateSimulationStream::TCPMode;
using TWPMode = ControllerStateSimulationStream::TWPMode;

namespace {
struct Chain {
  Chain() {
    auto owner = std::make_unique<MockSimulationStream>();
    mock = owner.get();
    stream = std::make_unique<ControllerStateSimulationStream>(std::move(owner));
  }
  MockSimulationStream* mock;
  std::unique_ptr<ControllerStateSimulationStream> stream;
};
}  // namespace

TEST(ControllerStateSimulationStream, OnAFreshStreamAnActivePlaneSetsTcpToOffAndAnInactivePlaneLeavesItUndefined) {
  Chain active;
  EXPECT_EQ(active.stream->tcpMode(), TCPMode::UNDEFINED);
  EXPECT_EQ(active.stream->tiltedWorkPlane(), TWPMode::UNDEFINED);
  active.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneBySpatialAngles(0.1, 0, 0));
  EXPECT_EQ(active.stream->tiltedWorkPlane(), TWPMode::ON);
  EXPECT_EQ(active.stream->tcpMode(), TCPMode::OFF);
  EXPECT_TRUE(active.mock->tiltedWorkPlane(0));

  Chain inactive;
  inactive.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  EXPECT_EQ(inactive.stream->tiltedWorkPlane(), TWPMode::OFF);
  EXPECT_EQ(inactive.stream->tcpMode(), TCPMode::UNDEFINED);
  EXPECT_FALSE(inactive.mock->tiltedWorkPlane(0));
}

TEST(ControllerStateSimulationStream, TcpEventOnAFreshStreamLeavesThePlaneModeUndefined) {
  Chain c;
  c.stream->onTCPCoordMode(true);
  EXPECT_EQ(c.stream->tcpMode(), TCPMode::ON);
  EXPECT_EQ(c.stream->tiltedWorkPlane(), TWPMode::UNDEFINED);
  c.stream->onTCPCoordMode(false);
  EXPECT_EQ(c.stream->tcpMode(), TCPMode::OFF);
  EXPECT_EQ(c.mock->countOf("doOnTCPCoordMode"), 2);
  EXPECT_FALSE(c.mock->tcpCoordMode(1));
}

TEST(ControllerStateSimulationStream, ActivePlaneLeavesAnOnTcpModeOn) {
  Chain c;
  c.stream->onTCPCoordMode(true);
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneBySpatialAngles(0.1, 0, 0));
  EXPECT_EQ(c.stream->tcpMode(), TCPMode::ON);
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  EXPECT_EQ(c.stream->tiltedWorkPlane(), TWPMode::OFF);
}

TEST(ControllerStateSimulationStream, NullNextStreamAsserts) {
  mtkit_test::AssertRecorder rec;
  ControllerStateSimulationStream const s(nullptr);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:forwardStream()"});
}
