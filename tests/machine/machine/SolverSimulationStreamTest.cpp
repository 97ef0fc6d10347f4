#include "machine/machine/SolverSimulationStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

#include "machine/machine/ForwardingSimulationStream.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/NcCodeTiltedWorkPlaneByAlignToPose.h"
#include "machine/machine/NcCodeTiltedWorkPlaneBySpatialAngles.h"
#include "machine/machine/NcCodeTiltedWorkPlaneOff.h"
#include "machine/machine/ThreeLinearPlusIkSolver.h"
#include "support/AssertRecorder.h"
#include "support/ProductionBehaviour.h"
#include "support/TestMachines.h"

using namespace machine;
using Orvo::AxisValue;
using Orvo::AxisValues;
using Orvo::Point3D;
using Orvo::Vector3D;
using Mode = PostToTableTransformer::CalculationMode;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
char const* const kSolveFailed =
    "Post processing failed to solve. This is probably because the linear axes are not independent.";

void expectNear(Point3D const& a, Point3D const& b, double tolerance = 1e-9) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

AxisValues values(std::vector<double> const& numbers) {
  return AxisValues(std::vector<AxisValue>(numbers.begin(), numbers.end()));
}

/// X, Y, Z along the world axes; Z travels from -500 to 110.
KinematicsDefinition limitedThreeAxisKinematics() {
  using namespace mtkit_test;
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}, ControlType::DRIVEN, AxisValue(-300), AxisValue(300)),
                      with(linearPart("y", "Y", {0, 1, 0}, ControlType::DRIVEN, AxisValue(-200), AxisValue(200)),
                           with(linearPart("z", "Z", {0, 0, 1}, ControlType::DRIVEN, AxisValue(-500), AxisValue(110)),
                                staticPart("head", PartType::HEAD)))));
  base.push_back(staticPart("table", PartType::TABLE));
  return kinematicsOf(std::move(base));
}

struct Chain {
  explicit Chain(Machine& machine) {
    machine.setAxisOrdering(machine.fullOrdering());
    ordering = machine.axisOrdering();
    auto solver = machine.makeMachineSolver();
    auto mockOwner = std::make_unique<MockSimulationStream>();
    mock = mockOwner.get();
    stream = std::make_unique<SolverSimulationStream>(std::move(mockOwner), std::move(solver));
    stream->onAxisOrdering(ordering);
  }
  Orvo::AxisOrdering ordering;
  MockSimulationStream* mock;
  std::unique_ptr<SolverSimulationStream> stream;
};

NcCodeMovement machineAxes(std::vector<std::pair<char const*, double>> const& coordinates,
                           NcCodeMotionProgrammingMode motion = NcCodeMotionProgrammingMode::RAPID) {
  NcCodeMovement m(NcCodeCoordProgrammingMode::MACHINE_AXES, motion, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                   NcCodeRotaryAxisTraverseMode::DIRECT);
  for (auto const& c : coordinates) m.append(Orvo::AxisName(c.first), AxisValue(c.second));
  return m;
}

NcCodeMovement feedMove(std::optional<NcCodeFeedrate> feed) {
  NcCodeMovement m = feed ? NcCodeMovement(NcCodeCoordProgrammingMode::MACHINE_AXES, NcCodeMotionProgrammingMode::FEED,
                                           *feed, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                           NcCodeRotaryAxisTraverseMode::DIRECT)
                          : NcCodeMovement(NcCodeCoordProgrammingMode::MACHINE_AXES, NcCodeMotionProgrammingMode::FEED,
                                           NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                           NcCodeRotaryAxisTraverseMode::DIRECT);
  m.append(Orvo::AxisName("X"), AxisValue(1.0));
  return m;
}

MotionSettings plain() { return MotionSettings(3u, NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT); }
MotionSettings highFeed() {
  return MotionSettings(Orvo::NCStream::MOVEMENT_HIGH_FEED, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                        NcCodeRotaryAxisTraverseMode::DIRECT);
}

}  // namespace

TEST(SolverSimulationStream, StartsAtHomeAndAssertsItsArguments) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  EXPECT_EQ(c.stream->solver()->axisValues(), values({0, 0, 0}));
  mtkit_test::AssertRecorder rec;
  SolverSimulationStream const broken(std::make_unique<MockSimulationStream>(), nullptr);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:m_solver"});
}

TEST(SolverSimulationStream, AxisOrderingIsGivenToTheSolverAndForwarded) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  EXPECT_EQ(c.stream->solver()->axisOrdering(), c.ordering);
  EXPECT_EQ(c.mock->axisOrdering(0), c.ordering);
}

TEST(SolverSimulationStream, AxisValuesNaNAnd1InATestRunFailWithMalformedPlaceholderAndInAProductionRunAreAPlaceholder) {
  Machine m(limitedThreeAxisKinematics());
  {
    Chain c(m);
    mtkit_test::AssertRecorder rec;
    c.stream->onAxisValues(values({kNaN, 1.0, 0.0}));
    EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"Malformed placeholder AxisValues."});
    EXPECT_EQ(c.mock->countOf("doOnAxisValues"), 0);
  }
  // What a production run makes of the malformed placeholder is checked
  // here; the test run's report is checked above.
  mtkit_test::ProductionBehaviour production;
  Chain c(m);
  c.stream->onAxisValues(values({kNaN, 1.0, 0.0}));
  EXPECT_EQ(c.mock->countOf("doOnAxisValues"), 0);
  c.stream->onRapid(Point3D(4, 5, 6), plain());
  ASSERT_EQ(c.mock->countOf("doOnAxisValues"), 1);
  EXPECT_EQ(c.mock->axisValues(0), values({4, 5, 6}));
}

TEST(SolverSimulationStream, AxisValuesWithTheSingleValueNaNAreForwarded) {
  Machine m(mtkit_test::threeAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  auto mockOwner = std::make_unique<MockSimulationStream>();
  MockSimulationStream* mock = mockOwner.get();
  SolverSimulationStream stream(std::move(mockOwner), m.makeMachineSolver());
  Orvo::AxisOrdering one;
  one.append(Orvo::AxisInfo("x", "X"));
  stream.onAxisOrdering(one);
  stream.onAxisValues(values({kNaN}));
  ASSERT_EQ(mock->countOf("doOnAxisValues"), 1);
  EXPECT_TRUE(std::isnan(mock->axisValues(0)[0].value()));
  EXPECT_FALSE(SolverSimulationStream::isPlaceholder(values({kNaN})));
  EXPECT_TRUE(SolverSimulationStream::isPlaceholder(values({kNaN, kNaN})));
}

TEST(SolverSimulationStream, OrdinaryAxisValuesAreForwardedAndNotTakenOverByTheSolver) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onAxisValues(values({1, 2, 3}));
  EXPECT_EQ(c.mock->axisValues(0), values({1, 2, 3}));
  EXPECT_EQ(c.stream->solver()->axisValues(), values({0, 0, 0}));
}

TEST(SolverSimulationStream, PlaceholderFollowedByOnRapidGivesTheSolvedValuesAndThenTheRapid) {
  Machine m(mtkit_test::fiveAxisKinematics());
  Chain c(m);
  Point3D const p(10, -20, 30);
  c.stream->onAxisValues(values({kNaN, kNaN, kNaN, 30, 45}));
  c.stream->onRapid(p, plain());
  std::vector<int> const axisValuesAt = c.mock->positionsOf("doOnAxisValues");
  std::vector<int> const rapidAt = c.mock->positionsOf("doOnRapid");
  ASSERT_EQ(axisValuesAt.size(), 1u);
  ASSERT_EQ(rapidAt.size(), 1u);
  EXPECT_EQ(rapidAt[0], axisValuesAt[0] + 1);
  AxisValues const solved = c.mock->axisValues(0);
  EXPECT_EQ(solved[3].value(), 30.0);
  EXPECT_EQ(solved[4].value(), 45.0);
  EXPECT_EQ(c.mock->rapid(0).target, p);
  EXPECT_EQ(c.mock->rapid(0).settings, plain());
  auto copy = m.makeMachineSolver();
  copy->moveTo(solved);
  expectNear(copy->toolTipPoint(), p);
}

TEST(SolverSimulationStream, SecondPlaceholderBeforeAnyMotionOverwritesTheFirstInAProductionRun) {
  // Production keeps going past the report that a test run makes (checked in
  // SecondPlaceholderBeforeAnyMotionFailsATestRun); this is what it does then.
  mtkit_test::ProductionBehaviour production;
  Machine m(mtkit_test::fiveAxisKinematics());
  Chain c(m);
  c.stream->onAxisValues(values({kNaN, kNaN, kNaN, 30, 0}));
  c.stream->onAxisValues(values({kNaN, kNaN, kNaN, 10, 20}));
  c.stream->onLinear(Point3D(1, 2, 3), 100.0, plain());
  ASSERT_EQ(c.mock->countOf("doOnAxisValues"), 1);
  EXPECT_EQ(c.mock->axisValues(0)[3].value(), 10.0);
  EXPECT_EQ(c.mock->axisValues(0)[4].value(), 20.0);
}

TEST(SolverSimulationStream, SecondPlaceholderBeforeAnyMotionFailsATestRun) {
  Machine m(mtkit_test::fiveAxisKinematics());
  Chain c(m);
  mtkit_test::AssertRecorder rec;
  c.stream->onAxisValues(values({kNaN, kNaN, kNaN, 30, 0}));
  c.stream->onAxisValues(values({kNaN, kNaN, kNaN, 10, 20}));
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"IK not calculated for pending AxisValues."});
}

TEST(SolverSimulationStream, FailedSolveForAPlaceholderSendsIssue8AndTheAxisValuesAllTheSame) {
  Machine m(mtkit_test::twoAxisKinematics({1, 0, 0}));
  Chain c(m);
  c.stream->onAxisValues(values({kNaN, kNaN}));
  c.stream->onRapid(Point3D(1, 2, 0), plain());
  ASSERT_EQ(c.mock->countOf("doOnIssue"), 1);
  EXPECT_EQ(c.mock->issue(0).code, SimulationStream::IssueCode::SOLVE_FAILED);
  EXPECT_EQ(c.mock->issue(0).message, kSolveFailed);
  std::vector<int> const issueAt = c.mock->positionsOf("doOnIssue");
  EXPECT_EQ(c.mock->positionsOf("doOnAxisValues"), std::vector<int>{issueAt[0] + 1});
  EXPECT_EQ(c.mock->positionsOf("doOnRapid"), std::vector<int>{issueAt[0] + 2});
  EXPECT_TRUE(c.stream->isOk());
}

TEST(SolverSimulationStream, OnRapidAfterOnLinearLeavesTheLastFeedAtTheLinearsFeedAndALaterFeedMovementWithNoFeedUsesIt) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onLinear(Point3D(1, 0, 0), 500.0, plain());
  c.stream->onRapid(Point3D(2, 0, 0), plain());
  ASSERT_TRUE(c.stream->lastFeedrate());
  EXPECT_EQ(*c.stream->lastFeedrate(), NcCodeFeedrate(NcCodeFeedrateType::MM_PER_MINUTE, 500.0));
  c.stream->onNcCodeMovement(feedMove(std::nullopt));
  ASSERT_EQ(c.mock->countOf("doOnLinear5D"), 1);
  EXPECT_EQ(c.mock->linear5D(0).feed, 500.0);
}

TEST(SolverSimulationStream, HighFeedOnLinearLeavesAFeedOfTypeNoneAndALaterFeedMovementWithoutFeedThenSendsFeed0) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onLinear(Point3D(1, 0, 0), 500.0, plain());
  c.stream->onLinear5D(Point3D(2, 0, 0), Vector3D(0, 0, 1), 9000.0, highFeed());
  EXPECT_EQ(*c.stream->lastFeedrate(), NcCodeFeedrate(NcCodeFeedrateType::NONE, 0.0));
  mtkit_test::AssertRecorder rec;
  c.stream->onNcCodeMovement(feedMove(std::nullopt));
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(c.mock->linear5D(1).feed, 0.0);
}

TEST(SolverSimulationStream, NcCodeMovementWithMmPerRevSendsFeed0AndKeepsThatFeedAsTheLastFeed) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onNcCodeMovement(feedMove(NcCodeFeedrate(NcCodeFeedrateType::MM_PER_REV, 0.2)));
  EXPECT_EQ(c.mock->linear5D(0).feed, 0.0);
  EXPECT_EQ(*c.stream->lastFeedrate(), NcCodeFeedrate(NcCodeFeedrateType::MM_PER_REV, 0.2));
}

TEST(SolverSimulationStream, FeedMovementWithNoFeedEverSeenSendsFeed0AndFailsATestRun) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  mtkit_test::AssertRecorder rec;
  c.stream->onNcCodeMovement(feedMove(std::nullopt));
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"We should no get here without new or old feedrate."});
  EXPECT_EQ(c.mock->linear5D(0).feed, 0.0);
}

TEST(SolverSimulationStream, HelicalStoresItsFeedAndCanNeverBeHighFeed) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  Orvo::Helix const helix(Point3D(0, 0, 0), Point3D(1, 0, 0), Point3D(0, 1, 0), Vector3D(0, 0, 1));
  c.stream->onHelical(helix, Point3D(0, 1, 0), 250.0, plain());
  EXPECT_EQ(*c.stream->lastFeedrate(), NcCodeFeedrate(NcCodeFeedrateType::MM_PER_MINUTE, 250.0));
  mtkit_test::AssertRecorder rec;
  c.stream->onHelical(helix, Point3D(0, 1, 0), 260.0, highFeed());
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"Helical can never be high feed."});
  EXPECT_EQ(*c.stream->lastFeedrate(), NcCodeFeedrate(NcCodeFeedrateType::MM_PER_MINUTE, 260.0));
  EXPECT_EQ(c.mock->countOf("doOnHelical"), 2);
  EXPECT_EQ(c.mock->helical(0).helix, helix);
}

TEST(SolverSimulationStream, PlaceholderBeforeAHelixIsSolvedForItsEndPoint) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  Orvo::Helix const helix(Point3D(0, 0, 0), Point3D(10, 0, 0), Point3D(0, 10, 5), Vector3D(0, 0, 1));
  c.stream->onAxisValues(values({kNaN, kNaN, kNaN}));
  c.stream->onHelical(helix, Point3D(0, 10, 5), 100.0, plain());
  EXPECT_EQ(c.mock->axisValues(0), values({0, 10, 5}));
}

TEST(SolverSimulationStream, MachineAxesMovementSendsAxisValuesAndARapid5DToTheTip) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  mtkit_test::AssertRecorder rec;
  c.stream->onNcCodeMovement(machineAxes({{"X", 5}, {"Q", 99}, {"Z", -7}}));
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(c.mock->axisValues(0), values({5, 0, -7}));
  ASSERT_EQ(c.mock->countOf("doOnRapid5D"), 1);
  EXPECT_EQ(c.mock->rapid5D(0).target, Point3D(5, 0, -7));
  EXPECT_EQ(c.mock->rapid5D(0).toolAxis, Vector3D(0, 0, 1));
  EXPECT_EQ(c.mock->rapid5D(0).settings,
            MotionSettings(17u, NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT));
  EXPECT_EQ(c.stream->solver()->axisValues(), values({5, 0, -7}));
}

TEST(SolverSimulationStream, MachineAxesMovementAssertsOnAPostSpaceCoordinate) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  NcCodeMovement wrong(NcCodeCoordProgrammingMode::MACHINE_AXES, NcCodeMotionProgrammingMode::RAPID,
                       NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  wrong.append(NcCodeCoordinateType::X, 1.0);
  mtkit_test::AssertRecorder rec;
  c.stream->onNcCodeMovement(wrong);
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"coord.type() == NcCodeCoordinateType::MACHINE_AXIS",
                                                       "coord.axisName().has_value()"}));
  EXPECT_EQ(c.mock->axisValues(0), values({0, 0, 0}));
}

TEST(SolverSimulationStream, NcCodeMovementOnAMachineWithNoAxesIsSwallowed) {
  Machine m(limitedThreeAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  auto mockOwner = std::make_unique<MockSimulationStream>();
  MockSimulationStream* mock = mockOwner.get();
  SolverSimulationStream stream(std::move(mockOwner), m.makeMachineSolver());
  stream.onAxisOrdering(Orvo::AxisOrdering());
  stream.onNcCodeMovement(machineAxes({{"X", 5}}));
  EXPECT_EQ(mock->countOf("doOnAxisValues"), 0);
  EXPECT_EQ(mock->countOf("doOnRapid5D"), 0);
}

TEST(SolverSimulationStream, CartesianMovementWithOnlyZKeepsThePresentXAndYOfTheTipInPostCoordinates) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onTaggedFrame(Orvo::TaggedFrame("WorkCS", "ModelCS", mtkit_test::frameAt(100, 0, 0)));
  c.stream->onNcCodeMovement(machineAxes({{"X", 5}, {"Y", 6}, {"Z", 7}}));
  NcCodeMovement onlyZ(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::RAPID,
                       NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  onlyZ.append(NcCodeCoordinateType::Z, 20.0);
  c.stream->onNcCodeMovement(onlyZ);
  EXPECT_EQ(c.mock->axisValues(1), values({5, 6, 20}));
  EXPECT_EQ(c.mock->rapid5D(1).target, Point3D(5, 6, 20));
  // In post coordinates the work offset counts: X 0 is the work origin.
  NcCodeMovement toX(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::RAPID,
                     NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  toX.append(NcCodeCoordinateType::X, 0.0);
  c.stream->onNcCodeMovement(toX);
  EXPECT_EQ(c.mock->axisValues(2), values({100, 6, 20}));
}

TEST(SolverSimulationStream, RetractWithTheToolAlongPlusZAndZAt10OfALimit110MovesBy100AndSendsOneAxisValuesAndOneRapid5D) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onNcCodeMovement(machineAxes({{"X", 3}, {"Y", 4}, {"Z", 10}}));
  int const before = c.mock->numCalls();
  mtkit_test::AssertRecorder rec;
  c.stream->onRetractAlongToolAxisToLimit();
  EXPECT_TRUE(rec.takeTexts().empty());
  ASSERT_EQ(c.mock->numCalls(), before + 2);
  EXPECT_EQ(c.mock->call(before).methodName, "doOnAxisValues");
  EXPECT_EQ(c.mock->call(before + 1).methodName, "doOnRapid5D");
  EXPECT_EQ(c.mock->axisValues(1), values({3, 4, 110}));
  EXPECT_EQ(c.mock->rapid5D(1).target, Point3D(3, 4, 110));
  EXPECT_EQ(c.mock->rapid5D(1).settings,
            MotionSettings(17u, NcCodeKinematicInterpolationMode::TCP_ONLY, NcCodeRotaryAxisTraverseMode::DIRECT));
  EXPECT_EQ(c.mock->countOf("doOnRetractAlongToolAxisToLimit"), 0);
}

TEST(SolverSimulationStream, RetractWithAnAxisAlreadyBeyondTheLimitSendsThePresentPose) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onNcCodeMovement(machineAxes({{"X", 3}, {"Y", 4}, {"Z", 120}}));
  c.stream->onRetractAlongToolAxisToLimit();
  EXPECT_EQ(c.mock->axisValues(1), values({3, 4, 120}));
  EXPECT_EQ(c.mock->rapid5D(1).target, Point3D(3, 4, 120));
}

TEST(SolverSimulationStream, ToolReferenceFrameFeedsTheSolverAndEveryTaggedFrameIsForwarded) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  Orvo::TaggedFrame const reference("ToolReference", "ToolCS", mtkit_test::frameAt(0, 0, -100));
  c.stream->onTaggedFrame(reference);
  c.stream->onTaggedFrame(Orvo::TaggedFrame("ToolReference", "ModelCS", mtkit_test::frameAt(0, 0, -50)));
  EXPECT_EQ(c.stream->solver()->toolReferenceFrame(), reference.frame());
  EXPECT_EQ(c.mock->countOf("doOnTaggedFrame"), 2);
  expectNear(c.stream->solver()->toolTipPoint(), Point3D(0, 0, 100));
}

TEST(SolverSimulationStream, TcpOnSetsTheTcpWorkCsModeAndTcpOffLeavesIt) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onTCPCoordMode(true);
  EXPECT_EQ(c.stream->postToTable().calculationMode(), Mode::TCP_WORK_CS);
  c.stream->onTCPCoordMode(false);
  EXPECT_EQ(c.stream->postToTable().calculationMode(), Mode::TCP_WORK_CS);
  EXPECT_EQ(c.mock->countOf("doOnTCPCoordMode"), 2);
}

TEST(SolverSimulationStream, ActivePlaneSetsTheTiltedModeFromTheHeadAndAnInactivePlaneLeavesIt) {
  Machine m(mtkit_test::fiveAxisKinematics());
  Chain c(m);
  c.stream->onNcCodeMovement(machineAxes({{"B", 90}}));
  mtkit_test::AssertRecorder rec;
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneByAlignToPose());
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(c.stream->postToTable().calculationMode(), Mode::SET_TILTED_WORK_PLANE);
  // Post X, Y, Z now run along the head's tilted axes.
  Point3D const origin = c.stream->postToTable().convertFromPostToTable(Point3D(0, 0, 0));
  Point3D const up = c.stream->postToTable().convertFromPostToTable(Point3D(0, 0, 1));
  Vector3D const toolAxis = c.stream->solver()->toolAxisInTableCs();
  Vector3D const along = up - origin;
  EXPECT_NEAR(along.x, toolAxis.x, 1e-12);
  EXPECT_NEAR(along.y, toolAxis.y, 1e-12);
  EXPECT_NEAR(along.z, toolAxis.z, 1e-12);
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  EXPECT_EQ(c.stream->postToTable().calculationMode(), Mode::SET_TILTED_WORK_PLANE);
  EXPECT_EQ(c.mock->countOf("doOnTiltedWorkPlane"), 2);
}

TEST(SolverSimulationStream, CartesianMovementWithTcpAndPlaneOffAddsTheWcsOffsetAndLeavesTheTiltedMode) {
  Machine m(mtkit_test::fiveAxisKinematics());
  Chain c(m);
  c.stream->onTCPCoordMode(false);
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  NcCodeMovement move(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::RAPID,
                      NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  move.append(NcCodeCoordinateType::X, 0.0);
  move.append(NcCodeCoordinateType::Y, 0.0);
  move.append(NcCodeCoordinateType::Z, 0.0);
  // At B = C = 0 the offset is zero: the post origin is where it stands.
  c.stream->onNcCodeMovement(move);
  EXPECT_EQ(c.stream->postToTable().calculationMode(), Mode::SET_TILTED_WORK_PLANE);
  expectNear(c.mock->rapid5D(0).target, Point3D(0, 0, 0));
  // With the rotaries turned the linear axes are those of the post origin at
  // zero rotaries, in the head's present orientation, plus the offset.
  c.stream->onNcCodeMovement(machineAxes({{"B", 30}, {"C", 0}}));
  AxisValues const before = c.stream->solver()->axisValues();
  c.stream->onNcCodeMovement(move);
  AxisValues const after = c.mock->axisValues(2);
  EXPECT_EQ(after[3].value(), 30.0);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(std::isfinite(after[i].value()));
  EXPECT_NE(after, before);
}

// ---------------------------------------------------------------------------
// The chain on every 5-axis example machine: a producer sends placeholders
// and 5-axis motions through a forwarding head and the solver stream; the
// solved values, set on a copy of the machine, put the tool tip on the
// motion's target in table coordinates.

namespace {

class ProducerHead final : public ForwardingSimulationStream {
public:
  using ForwardingSimulationStream::ForwardingSimulationStream;
  ~ProducerHead() override = default;
};

std::vector<std::pair<std::string, std::unique_ptr<Machine>>> fiveAxisExampleMachines() {
  std::vector<std::pair<std::string, std::unique_ptr<Machine>>> machines;
  for (char const* name : {"headhead_5axis.json", "headtable_5axis.json", "trunnion_5axis.json"}) {
    std::ifstream in(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines" / name);
    auto result = MachineDefinitionReader().read(in);
    EXPECT_FALSE(result.isError()) << name;
    if (result.isError()) continue;
    auto const definition = result.getMachineDefinition();
    auto const specification = MachineSpecification::makeDefaultForDefinition(*definition, true);
    EXPECT_TRUE(specification) << name;
    if (specification) machines.emplace_back(name, std::make_unique<Machine>(*specification));
  }
  return machines;
}

}  // namespace

TEST(SolverSimulationStream, ChainOnEachFiveAxisExampleMachinePutsTheToolTipOnEveryTarget) {
  auto machines = fiveAxisExampleMachines();
  ASSERT_EQ(machines.size(), 3u);
  std::mt19937_64 random(6);
  for (auto& entry : machines) {
    SCOPED_TRACE(entry.first);
    Machine& m = *entry.second;
    m.setAxisOrdering(m.fullOrdering());
    ASSERT_EQ(m.numOrderedParts(), 5);
    auto const producerView = m.makeMachineSolver();
    auto mockOwner = std::make_unique<MockSimulationStream>();
    MockSimulationStream* mock = mockOwner.get();
    ProducerHead head(std::make_unique<SolverSimulationStream>(std::move(mockOwner), m.makeMachineSolver()));

    head.onApiVersion(1, 0);
    head.onAxisOrdering(m.axisOrdering());
    head.onSection(SimulationStream::SectionType::Operation);
    std::vector<Point3D> targets;
    for (int move = 0; move < 40; ++move) {
      AxisValues placeholder(5);
      for (int i = 0; i < 3; ++i) placeholder.setValue(i, kNaN);
      for (int i = 3; i < 5; ++i) {
        Orvo::AxisValueRange const range = m.orderedPart(i)->axis()->range();
        double lo = -170.0;
        double hi = 170.0;
        if (!range.isInfinite()) {
          lo = std::max(lo, range.min().value());
          hi = std::min(hi, range.max().value());
        }
        placeholder.setValue(i, std::uniform_real_distribution<double>(lo, hi)(random));
      }
      // The producer knows the tool axis of the pose it asks for.
      AxisValues pose = producerView->axisValues();
      for (int i = 3; i < 5; ++i) pose.setValue(i, placeholder[i]);
      producerView->moveTo(pose);
      Vector3D const toolAxis = producerView->toolAxisInTableCs();
      std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
      Point3D const target(coordinate(random), coordinate(random), coordinate(random));
      targets.push_back(target);
      head.onAxisValues(placeholder);
      if (move % 2 == 0)
        head.onLinear5D(target, toolAxis, 1000.0, plain());
      else
        head.onRapid5D(target, toolAxis, plain());
    }
    head.onSectionEnd();
    EXPECT_TRUE(head.isOk());

    ASSERT_EQ(mock->countOf("doOnAxisValues"), 40);
    EXPECT_EQ(mock->countOf("doOnIssue"), 0);
    auto copy = m.makeMachineSolver();
    int linear = 0;
    int rapid = 0;
    for (int move = 0; move < 40; ++move) {
      AxisValues const solved = mock->axisValues(move);
      ASSERT_EQ(solved.size(), 5);
      int const at = mock->positionsOf("doOnAxisValues")[static_cast<std::size_t>(move)];
      ASSERT_EQ(mock->call(at + 1).methodName, move % 2 == 0 ? "doOnLinear5D" : "doOnRapid5D");
      Point3D const sent = move % 2 == 0 ? mock->linear5D(linear++).target : mock->rapid5D(rapid++).target;
      EXPECT_EQ(sent, targets[static_cast<std::size_t>(move)]);
      copy->moveTo(solved);
      expectNear(copy->toolTipPoint(), targets[static_cast<std::size_t>(move)], 1e-7);
    }
  }
}

TEST(SolverSimulationStream, InvalidMotionModeForwardsNoMotionAndFailsATestRun) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  NcCodeMovement odd(NcCodeCoordProgrammingMode::MACHINE_AXES, static_cast<NcCodeMotionProgrammingMode>(7),
                     NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  odd.append(Orvo::AxisName("Y"), AxisValue(8.0));
  mtkit_test::AssertRecorder rec;
  c.stream->onNcCodeMovement(odd);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"NcCodeMotionProgrammingMode mode was not valid"});
  EXPECT_EQ(c.mock->axisValues(0), values({0, 8, 0}));
  EXPECT_EQ(c.mock->countOf("doOnRapid5D") + c.mock->countOf("doOnLinear5D"), 0);
}

TEST(SolverSimulationStream, InvalidCoordinateModeMovesNothingAndSendsThePresentPoseToTheOrigin) {
  Machine m(limitedThreeAxisKinematics());
  Chain c(m);
  c.stream->onNcCodeMovement(machineAxes({{"X", 2}}));
  NcCodeMovement odd(static_cast<NcCodeCoordProgrammingMode>(9), NcCodeMotionProgrammingMode::RAPID,
                     NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  odd.append(Orvo::AxisName("Y"), AxisValue(8.0));
  c.stream->onNcCodeMovement(odd);
  EXPECT_EQ(c.mock->axisValues(1), values({2, 0, 0}));
  EXPECT_EQ(c.mock->rapid5D(1).target, Point3D(0, 0, 0));
}

TEST(SolverSimulationStream, RetractOnAPartWithoutANamedAxisAssertsAndIsFatal) {
  using namespace mtkit_test;
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}),
                      with(linearPart("y", "Y", {0, 1, 0}),
                           with(linearPart("z", nullptr, {0, 0, 1}), staticPart("head", PartType::HEAD)))));
  base.push_back(staticPart("table", PartType::TABLE));
  Machine m(kinematicsOf(std::move(base)));
  Chain c(m);
  mtkit_test::AssertRecorder rec;
  EXPECT_THROW(c.stream->onRetractAlongToolAxisToLimit(), std::bad_optional_access);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"part.axis()->name().has_value()"});
}

TEST(SolverSimulationStream, RetractAssertsThatTheFirstThreeOrderedPartsAreLinear) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  Orvo::AxisOrdering const full = m.axisOrdering();
  Orvo::AxisOrdering rotaryThird;
  for (int i : {0, 1, 3, 2, 4}) rotaryThird.append(full.axisInfo(i));
  Chain c(m);
  c.stream->onAxisOrdering(rotaryThird);
  mtkit_test::AssertRecorder rec;
  c.stream->onRetractAlongToolAxisToLimit();
  std::vector<std::string> const texts = rec.takeTexts();
  EXPECT_NE(std::find(texts.begin(), texts.end(), "part.definition()->type() == machine::PartType::LINEAR"),
            texts.end());
  EXPECT_EQ(c.mock->countOf("doOnRapid5D"), 1);
}

TEST(SolverSimulationStream, WcsOffsetIsTheLinearDifferenceBetweenThePostOriginAtZeroRotariesAndWithTheHeadAsItStands) {
  Machine m(mtkit_test::fiveAxisKinematics());
  Chain c(m);
  c.stream->onTCPCoordMode(false);
  c.stream->onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  c.stream->onNcCodeMovement(machineAxes({{"X", 12}, {"Y", -7}, {"Z", 30}, {"B", 30}, {"C", 20}}));

  // Worked out from the geometry of fiveAxisKinematics():
  // - The tip is the head's attach origin: (X, Y, Z) + (0, 0, 100) plus
  //   (0, 0, -40) turned by B about the Y line through (0, 0, 150), that is
  //   (X - 190 sin B, Y, Z + 250 - 190 cos B). The head's axes are R_B x, R_B z.
  // - Table coordinates of a machine point q are R_-C q - (20, 10, 5), so the
  //   linear axes for a table point t are, with q = R_C (t + (20, 10, 5)):
  //   X = q.x + 190 sin B, Y = q.y, Z = q.z - 250 + 190 cos B.
  // - Both frames of the offset stand at the table origin (the zero angles
  //   give the identity, align-to-pose the head's axes at origin 0), so both
  //   solve for t = 0:
  //   B = C = 0:   q = (20, 10, 5), axes (20, 10, -55);
  //   B 30, C 20:  q = (20 cos 20 - 10 sin 20, 20 sin 20 + 10 cos 20, 5)
  //                  = (15.373651, 16.237329, 5), axes (110.373651, 16.237329, -80.455173);
  //   offset = (-90.373651, -6.237329, 25.455173).
  // - The movement (5, 6, 7) plus the offset is taken in the head-aligned
  //   frame: t = R_-C R_B post = (-54.309107, 19.514338, 70.793830), and
  //   q = R_B post + R_C (20, 10, 5), axes (52.665487, 16, -9.661343).
  double const degree = 3.14159265358979323846 / 180;
  double const b = 30 * degree;
  double const cc = 20 * degree;
  auto const rotY = [](Vector3D v, double a) {
    return Vector3D(v.x * std::cos(a) + v.z * std::sin(a), v.y, -v.x * std::sin(a) + v.z * std::cos(a));
  };
  auto const rotZ = [](Vector3D v, double a) {
    return Vector3D(v.x * std::cos(a) - v.y * std::sin(a), v.x * std::sin(a) + v.y * std::cos(a), v.z);
  };
  auto const linearAxesFor = [&](Vector3D t, double bAngle, double cAngle) {
    Vector3D const q = rotZ(Vector3D(t.x + 20, t.y + 10, t.z + 5), cAngle);
    return Vector3D(q.x + 190 * std::sin(bAngle), q.y, q.z - 250 + 190 * std::cos(bAngle));
  };
  Vector3D const zeroed = linearAxesFor(Vector3D(0, 0, 0), 0, 0);
  Vector3D const aligned = linearAxesFor(Vector3D(0, 0, 0), b, cc);
  Vector3D const post(5 + zeroed.x - aligned.x, 6 + zeroed.y - aligned.y, 7 + zeroed.z - aligned.z);
  Vector3D const target = rotZ(rotY(post, b), -cc);
  Vector3D const axes = linearAxesFor(target, b, cc);
  // The working above, as numbers.
  EXPECT_NEAR(aligned.x, 110.373651, 1e-6);
  EXPECT_NEAR(target.x, -54.309107, 1e-6);
  EXPECT_NEAR(axes.x, 52.665487, 1e-6);
  EXPECT_NEAR(axes.y, 16.0, 1e-6);
  EXPECT_NEAR(axes.z, -9.661343, 1e-6);

  NcCodeMovement move(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::FEED,
                      NcCodeFeedrate(NcCodeFeedrateType::MM_PER_MINUTE, 800.0),
                      NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  move.append(NcCodeCoordinateType::X, 5.0);
  move.append(NcCodeCoordinateType::Y, 6.0);
  move.append(NcCodeCoordinateType::Z, 7.0);
  c.stream->onNcCodeMovement(move);
  EXPECT_EQ(c.stream->postToTable().calculationMode(), Mode::SET_TILTED_WORK_PLANE);
  AxisValues const sent = c.mock->axisValues(1);
  EXPECT_NEAR(sent[0].value(), axes.x, 1e-9);
  EXPECT_NEAR(sent[1].value(), axes.y, 1e-9);
  EXPECT_NEAR(sent[2].value(), axes.z, 1e-9);
  EXPECT_EQ(sent[3].value(), 30.0);
  EXPECT_EQ(sent[4].value(), 20.0);
  expectNear(c.mock->linear5D(0).target, Point3D(target.x, target.y, target.z));
  EXPECT_EQ(c.mock->linear5D(0).feed, 800.0);
}

TEST(SolverSimulationStream, CartesianMovementUnderTcpHasNoWcsOffset) {
  Machine m(mtkit_test::fiveAxisKinematics());
  Chain c(m);
  c.stream->onTCPCoordMode(true);
  c.stream->onTaggedFrame(Orvo::TaggedFrame("WorkCS", "ModelCS", mtkit_test::frameAt(10, 0, 0)));
  c.stream->onNcCodeMovement(machineAxes({{"B", 30}, {"C", 20}}));
  NcCodeMovement move(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::RAPID,
                      NcCodeKinematicInterpolationMode::TCP_ONLY, NcCodeRotaryAxisTraverseMode::DIRECT);
  move.append(NcCodeCoordinateType::X, 1.0);
  move.append(NcCodeCoordinateType::Y, 2.0);
  move.append(NcCodeCoordinateType::Z, 3.0);
  c.stream->onNcCodeMovement(move);
  EXPECT_EQ(c.stream->postToTable().calculationMode(), Mode::TCP_WORK_CS);
  expectNear(c.mock->rapid5D(1).target, Point3D(11, 2, 3));
  auto copy = m.makeMachineSolver();
  copy->moveTo(c.mock->axisValues(1));
  expectNear(copy->toolTipPoint(), Point3D(11, 2, 3));
}
