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

namespace {

// A stream that counts what reaches it, as the compensation link's output
// side will: it has to implement the whole interface.
class CountingStream final : public NCStream {
public:
  int rapid5D = 0;
  int linear5D = 0;
  int parameters = 0;
  Orvo::Vector3D lastAxis;
  double lastFeed = 0;

  bool passThrough(std::wstring const&) override { return true; }
  bool passThrough(std::string const&) override { return true; }
  bool onComment(std::wstring const&) override { return true; }
  bool onComment(std::string const&) override { return true; }
  bool onCommand(Command) override { return true; }
  bool onToolpathEntityIndex(Orvo::ToolpathEntityIndex const&) override { return true; }
  bool onMachineCommand(int) override { return true; }
  bool onCoolant(int) override { return true; }
  bool onSpindleSpeed(double) override { return true; }
  bool onRadiusCompensationMode(bool) override { return true; }
  bool onRadiusCompensation(int) override { return true; }
  bool onOpen() override { return true; }
  bool onParameter(std::string const&, Orvo::Point3D const&) override { return ++parameters, true; }
  bool onParameter(std::string const&, double) override { return ++parameters, true; }
  bool onParameter(std::string const&, int) override { return ++parameters, true; }
  bool onParameter(std::string const&, std::wstring const&) override { return ++parameters, true; }
  bool onParameter(std::string const&, std::string const&) override { return ++parameters, true; }
  bool onStock(Orvo::Point3D const&, Orvo::Point3D const&) override { return true; }
  bool onContext(Orvo::NCContext const&) override { return true; }
  bool onTool(Orvo::NCTool const&) override { return true; }
  bool onToolChange(Orvo::NCTool const&) override { return true; }
  bool onSection() override { return true; }
  bool onGroup(std::string const&) override { return true; }
  bool onTurnGroup(std::string const&) override { return true; }
  bool onGroupEnd() override { return true; }
  bool onTurnGroupEnd() override { return true; }
  bool onSectionEnd() override { return true; }
  bool onDwell(double) override { return true; }
  bool onRapid(Orvo::Point3D const&, unsigned int) override { return true; }
  bool onRapid5D(Orvo::Point3D const&, Orvo::Vector3D const& axis, unsigned int) override {
    lastAxis = axis;
    return ++rapid5D, true;
  }
  bool onLinear(Orvo::Point3D const&, double, unsigned int) override { return true; }
  bool onLinear5D(Orvo::Point3D const&, Orvo::Vector3D const& axis, double feed, unsigned int) override {
    lastAxis = axis;
    lastFeed = feed;
    return ++linear5D, true;
  }
  bool onLinearExtrude(Orvo::Point3D const&, double, double, unsigned int) override { return true; }
  bool onCWArc(Orvo::Point3D const&, Orvo::Point3D const&, Orvo::Vector3D const&, double, unsigned int) override {
    return true;
  }
  bool onCCWArc(Orvo::Point3D const&, Orvo::Point3D const&, Orvo::Vector3D const&, double, unsigned int) override {
    return true;
  }
  bool onCircular(Orvo::Point3D const&, Orvo::Point3D const&, Orvo::Vector3D const&, double, double,
                  unsigned int) override {
    return true;
  }
  bool onCWArcExtrude(Orvo::Point3D const&, Orvo::Point3D const&, Orvo::Vector3D const&, double, double,
                      unsigned int) override {
    return true;
  }
  bool onCCWArcExtrude(Orvo::Point3D const&, Orvo::Point3D const&, Orvo::Vector3D const&, double, double,
                       unsigned int) override {
    return true;
  }
  bool onCircularExtrude(Orvo::Point3D const&, Orvo::Point3D const&, Orvo::Vector3D const&, double, double, double,
                         unsigned int) override {
    return true;
  }
  bool onCWCircle(Orvo::Point3D const&, Orvo::Point3D const&, Orvo::Vector3D const&, double, unsigned int) override {
    return true;
  }
  bool onCCWCircle(Orvo::Point3D const&, Orvo::Point3D const&, Orvo::Vector3D const&, double, unsigned int) override {
    return true;
  }
  bool onSpline(std::vector<Orvo::Point3D> const&, double, unsigned int) override { return true; }
  bool onBezier(std::vector<Orvo::Point3D> const&, double, unsigned int) override { return true; }
  bool onNURBS(std::vector<Orvo::Point3D> const&, std::vector<double> const&, std::vector<double> const&, int, double,
               unsigned int) override {
    return true;
  }
  bool onSkip() override { return true; }
  bool onLineNumber(unsigned int) override { return true; }
  bool onMachineAxisOrdering(Orvo::AxisOrdering const&) override { return true; }
  bool onMachineAxisValues(Orvo::AxisValues const&) override { return true; }
  bool onFrame(Orvo::Frame const&) override { return true; }
  bool onClose() override { return true; }
};

}  // namespace

TEST(NCStream, OrientedFiveAxisMotionsDefaultToTheirPlainForms) {
  CountingStream s;
  NCStream& stream = s;
  EXPECT_TRUE(stream.onRapid5DOriented(Orvo::Point3D(1, 2, 3), Orvo::Vector3D(0, 0, 1), Orvo::Vector3D(1, 0, 0), 1u));
  EXPECT_TRUE(stream.onLinear5DOriented(Orvo::Point3D(1, 2, 3), Orvo::Vector3D(0, 1, 0), Orvo::Vector3D(1, 0, 0),
                                        250.0, 3u));
  EXPECT_EQ(s.rapid5D, 1);
  EXPECT_EQ(s.linear5D, 1);
  EXPECT_EQ(s.lastAxis, Orvo::Vector3D(0, 1, 0));
  EXPECT_EQ(s.lastFeed, 250.0);
}

TEST(NCStream, DirectionParameterIsTakenWithoutReachingTheOtherForms) {
  CountingStream s;
  NCStream& stream = s;
  EXPECT_TRUE(stream.onParameter("axis", Orvo::Vector3D(0, 0, 1)));
  EXPECT_EQ(s.parameters, 0);
  EXPECT_TRUE(stream.onParameter("depth", 2.5));
  EXPECT_TRUE(stream.onParameter("count", 3));
  EXPECT_TRUE(stream.onParameter("name", std::string("x")));
  EXPECT_EQ(s.parameters, 3);
}
