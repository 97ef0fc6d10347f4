#include "machine/machine/TravelLimitSimulationStream.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/Machine.h"
#include "machine/machine/MachineUtils.h"
#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/SolverSimulationStream.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using namespace machine;
using Orvo::AxisValue;
using Orvo::AxisValueRange;
using Orvo::AxisValues;
using IssueCode = SimulationStream::IssueCode;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

AxisValues values(std::vector<double> const& numbers) {
  return AxisValues(std::vector<AxisValue>(numbers.begin(), numbers.end()));
}

/// X travels -100 to 100 by its definition; Y has no limits of its own and
/// the controller restricts it to 0 to 50; Z is unlimited; A is a limited
/// rotary axis from -30 to 30 on the head; C an unlimited rotary axis under
/// the table that the controller wraps around from 0 to 360 (cyclic); D an
/// unlimited rotary axis without any configured range.
KinematicsDefinition travelKinematics() {
  using namespace mtkit_test;
  std::vector<PartPtr> base;
  base.push_back(with(
      linearPart("x", "X", {1, 0, 0}, ControlType::DRIVEN, AxisValue(-100), AxisValue(100)),
      with(linearPart("y", "Y", {0, 1, 0}),
           with(linearPart("z", "Z", {0, 0, 1}),
                with(limitedRotaryPart("a", "A", {0, 0, 0}, {1, 0, 0}, -30, 30), staticPart("head", PartType::HEAD))))));
  base.push_back(with(rotaryPart("c", "C", {0, 0, 0}, {0, 0, 1}),
                      with(rotaryPart("d", "D", {0, 0, 0}, {0, 1, 0}), staticPart("table", PartType::TABLE))));
  return kinematicsOf(std::move(base));
}

std::unique_ptr<Machine> travelMachine() {
  KinematicsDefinition const kinematics = travelKinematics();
  auto configuration = MachineUtils::makeDefaultControllerConfiguration(kinematics);
  auto y = std::make_unique<AxisConfiguration>();
  y->setRestrictedRange(AxisValueRange(0, 50));
  configuration->setAxisConfiguration(Orvo::MachinePartId("y"), std::move(y));
  auto c = std::make_unique<AxisConfiguration>();
  c->setWrapAroundAtRange(AxisValueRange(0, 360));
  configuration->setAxisConfiguration(Orvo::MachinePartId("c"), std::move(c));
  return std::make_unique<Machine>(kinematics, *configuration);
}

/// The ordering X Y Z A C D, by part ids.
Orvo::AxisOrdering fullTravelOrdering() {
  Orvo::AxisOrdering ordering;
  for (auto const& [part, name] : std::vector<std::pair<char const*, char const*>>{
           {"x", "X"}, {"y", "Y"}, {"z", "Z"}, {"a", "A"}, {"c", "C"}, {"d", "D"}})
    ordering.append(Orvo::AxisInfo(part, name));
  return ordering;
}

struct Chain {
  Chain() {
    machine = travelMachine();
    auto owner = std::make_unique<MockSimulationStream>();
    mock = owner.get();
    stream = std::make_unique<TravelLimitSimulationStream>(std::move(owner), *machine);
    stream->onAxisOrdering(fullTravelOrdering());
  }
  std::vector<std::string> issueTexts() const {
    std::vector<std::string> texts;
    for (int i = 0; i < mock->countOf("doOnIssue"); ++i) texts.push_back(mock->issue(i).message);
    return texts;
  }
  std::unique_ptr<Machine> machine;
  MockSimulationStream* mock;
  std::unique_ptr<TravelLimitSimulationStream> stream;
};

}  // namespace

TEST(TravelLimitSimulationStream, TheIssueCodeIs100AndAnErrorBySeverity) {
  EXPECT_EQ(static_cast<int>(TravelLimitSimulationStream::OUT_OF_TRAVEL), 100);
  EXPECT_TRUE(SimulationStream::severityOfIssue(TravelLimitSimulationStream::OUT_OF_TRAVEL).isError());
  EXPECT_EQ(TravelLimitSimulationStream::kTolerance, 1e-6);
  EXPECT_EQ(TravelLimitSimulationStream::kLinesKept, 3u);
}

TEST(TravelLimitSimulationStream, EveryAxisOfTheMachineHasAnEntryWithItsControllerRange) {
  Chain c;
  auto const& axes = c.stream->axes();
  ASSERT_EQ(axes.size(), 6u);
  TravelLimitSimulationStream::AxisTravel const* x = c.stream->axis(Orvo::MachinePartId("x"));
  ASSERT_NE(x, nullptr);
  EXPECT_EQ(x->name, "X");
  EXPECT_EQ(x->type, AxisType::LINEAR);
  EXPECT_TRUE(x->isLimited);
  EXPECT_EQ(x->range, AxisValueRange(-100, 100));
  TravelLimitSimulationStream::AxisTravel const* y = c.stream->axis(Orvo::MachinePartId("y"));
  ASSERT_NE(y, nullptr);
  EXPECT_TRUE(y->isLimited);
  EXPECT_EQ(y->range, AxisValueRange(0, 50));
  TravelLimitSimulationStream::AxisTravel const* a = c.stream->axis(Orvo::MachinePartId("a"));
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->type, AxisType::ROTARY);
  EXPECT_EQ(a->range, AxisValueRange(-30, 30));
  EXPECT_FALSE(c.stream->axis(Orvo::MachinePartId("z"))->isLimited);
  EXPECT_FALSE(c.stream->axis(Orvo::MachinePartId("c"))->isLimited);
  EXPECT_FALSE(c.stream->axis(Orvo::MachinePartId("d"))->isLimited);
  EXPECT_EQ(c.stream->axis(Orvo::MachinePartId("head")), nullptr);
  EXPECT_EQ(c.stream->axis(Orvo::MachinePartId("nowhere")), nullptr);
}

TEST(TravelLimitSimulationStream, APoseInsideTheTravelPassesUnchangedWithoutAnIssue) {
  Chain c;
  c.stream->onAxisValues(values({-100, 50, -5000, 30, 0, 0}));
  EXPECT_EQ(c.mock->countOf("doOnIssue"), 0);
  ASSERT_EQ(c.mock->countOf("doOnAxisValues"), 1);
  EXPECT_EQ(c.mock->axisValues(0), values({-100, 50, -5000, 30, 0, 0}));
  EXPECT_EQ(c.stream->poses(), 1);
  EXPECT_EQ(c.stream->posesOutOfTravel(), 0);
  EXPECT_EQ(c.stream->overTravels(), 0);
}

TEST(TravelLimitSimulationStream, ALinearAxisBelowItsMinimumRaisesOneIssueJustAheadOfThePose) {
  Chain c;
  c.stream->onAxisValues(values({-100.5, 10, 0, 0, 0, 0}));
  ASSERT_EQ(c.mock->countOf("doOnIssue"), 1);
  EXPECT_EQ(c.mock->issue(0).code, TravelLimitSimulationStream::OUT_OF_TRAVEL);
  EXPECT_EQ(c.mock->issue(0).message, "Axis X is out of travel: -100.5 mm is outside -100 to 100 mm.");
  // The issue, then the pose, unchanged.
  std::vector<int> const issues = c.mock->positionsOf("doOnIssue");
  std::vector<int> const poses = c.mock->positionsOf("doOnAxisValues");
  ASSERT_EQ(poses.size(), 1u);
  EXPECT_EQ(issues[0] + 1, poses[0]);
  EXPECT_EQ(c.mock->axisValues(0), values({-100.5, 10, 0, 0, 0, 0}));
}

TEST(TravelLimitSimulationStream, ARotaryAxisIsReportedInDegrees) {
  Chain c;
  c.stream->onAxisValues(values({0, 10, 0, 31.25, 0, 0}));
  EXPECT_EQ(c.issueTexts(), std::vector<std::string>{"Axis A is out of travel: 31.25 deg is outside -30 to 30 deg."});
}

TEST(TravelLimitSimulationStream, TheControllerRestrictedRangeNarrowsAnUnlimitedAxis) {
  Chain c;
  c.stream->onAxisValues(values({0, -0.25, 0, 0, 0, 0}));
  c.stream->onAxisValues(values({0, 60, 0, 0, 0, 0}));
  EXPECT_EQ(c.issueTexts(), (std::vector<std::string>{"Axis Y is out of travel: -0.25 mm is outside 0 to 50 mm.",
                                                       "Axis Y is out of travel: 60 mm is outside 0 to 50 mm."}));
}

TEST(TravelLimitSimulationStream, WithALineSourceTheIssueNamesTheLine) {
  Chain c;
  long line = 12;
  c.stream->setLineSource([&line]() { return line; });
  c.stream->onAxisValues(values({101, 10, 0, 0, 0, 0}));
  line = 0;  // unknown: the text leaves the line out
  c.stream->onAxisValues(values({102, 10, 0, 0, 0, 0}));
  EXPECT_EQ(c.issueTexts(),
            (std::vector<std::string>{"Axis X is out of travel at line 12: 101 mm is outside -100 to 100 mm.",
                                      "Axis X is out of travel: 102 mm is outside -100 to 100 mm."}));
  EXPECT_EQ(c.stream->axis(Orvo::MachinePartId("x"))->firstLines, std::vector<long>{12});
}

TEST(TravelLimitSimulationStream, TwoAxesOutInOnePoseGiveTwoIssuesInOrderingOrderAndCountOnePose) {
  Chain c;
  c.stream->onAxisValues(values({200, 10, 0, -45, 0, 0}));
  EXPECT_EQ(c.issueTexts(), (std::vector<std::string>{"Axis X is out of travel: 200 mm is outside -100 to 100 mm.",
                                                       "Axis A is out of travel: -45 deg is outside -30 to 30 deg."}));
  EXPECT_EQ(c.stream->poses(), 1);
  EXPECT_EQ(c.stream->posesOutOfTravel(), 1);
  EXPECT_EQ(c.stream->overTravels(), 2);
}

TEST(TravelLimitSimulationStream, AValueWithinTheToleranceOfALimitIsInside) {
  Chain c;
  c.stream->onAxisValues(values({100 + 0.9e-6, 50 + 0.9e-6, 0, -30 - 0.9e-6, 0, 0}));
  EXPECT_EQ(c.mock->countOf("doOnIssue"), 0);
  // Just past the tolerance is out, and prints with enough digits not to
  // read as the limit.
  c.stream->onAxisValues(values({100.000002, 10, 0, 0, 0, 0}));
  EXPECT_EQ(c.issueTexts(),
            std::vector<std::string>{"Axis X is out of travel: 100.000002 mm is outside -100 to 100 mm."});
}

TEST(TravelLimitSimulationStream, ANaNIsNeverOutOfTravelSoAPlaceholderPasses) {
  Chain c;
  c.stream->onAxisValues(values({kNaN, kNaN, kNaN, 10, 0, 0}));
  c.stream->onAxisValues(values({kNaN, kNaN, kNaN, kNaN, kNaN, kNaN}));
  EXPECT_EQ(c.mock->countOf("doOnIssue"), 0);
  EXPECT_EQ(c.mock->countOf("doOnAxisValues"), 2);
  EXPECT_EQ(c.stream->poses(), 2);
}

TEST(TravelLimitSimulationStream, AnInfiniteValueIsOutOfTravel) {
  Chain c;
  c.stream->onAxisValues(values({kInf, 10, 0, -kInf, 0, 0}));
  EXPECT_EQ(c.issueTexts(), (std::vector<std::string>{"Axis X is out of travel: inf mm is outside -100 to 100 mm.",
                                                       "Axis A is out of travel: -inf deg is outside -30 to 30 deg."}));
}

TEST(TravelLimitSimulationStream, UnlimitedAndCyclicAxesAreNeverOutOfTravel) {
  Chain c;
  // Z unlimited, C wraps around 0 to 360, D has no range at all.
  c.stream->onAxisValues(values({0, 10, 1e9, 0, 725, -1e6}));
  c.stream->onAxisValues(values({0, 10, -kInf, 0, -360, kInf}));
  EXPECT_EQ(c.mock->countOf("doOnIssue"), 0);
}

TEST(TravelLimitSimulationStream, EachAxisCountsItsPosesKeepsTheFirstThreeLinesAndTheExtremes) {
  Chain c;
  long line = 0;
  c.stream->setLineSource([&line]() { return line; });
  for (double const x : {150.0, -120.0, 101.0, 300.0, 50.0}) {
    line += 10;
    c.stream->onAxisValues(values({x, 10, 0, 0, 0, 0}));
  }
  TravelLimitSimulationStream::AxisTravel const* x = c.stream->axis(Orvo::MachinePartId("x"));
  ASSERT_NE(x, nullptr);
  EXPECT_EQ(x->count, 4);
  EXPECT_EQ(x->firstLines, (std::vector<long>{10, 20, 30}));
  EXPECT_EQ(x->lowest, -120.0);
  EXPECT_EQ(x->highest, 300.0);
  EXPECT_EQ(c.stream->axis(Orvo::MachinePartId("a"))->count, 0);
  EXPECT_EQ(c.stream->poses(), 5);
  EXPECT_EQ(c.stream->posesOutOfTravel(), 4);
  EXPECT_EQ(c.stream->overTravels(), 4);
}

TEST(TravelLimitSimulationStream, TheCheckFollowsTheLatestOrdering) {
  Chain c;
  Orvo::AxisOrdering ordering;
  ordering.append(Orvo::AxisInfo("a", "A"));
  ordering.append(Orvo::AxisInfo("x", "X"));
  c.stream->onAxisOrdering(ordering);
  EXPECT_EQ(c.mock->axisOrdering(1), ordering);
  c.stream->onAxisValues(values({90, 40}));
  EXPECT_EQ(c.issueTexts(), std::vector<std::string>{"Axis A is out of travel: 90 deg is outside -30 to 30 deg."});
}

TEST(TravelLimitSimulationStream, PartsTheMachineDoesNotHaveAreNotChecked) {
  Chain c;
  Orvo::AxisOrdering ordering;
  ordering.append(Orvo::AxisInfo("u", "U"));
  ordering.append(Orvo::AxisInfo("head", "H"));
  ordering.append(Orvo::AxisInfo("x", "X"));
  c.stream->onAxisOrdering(ordering);
  c.stream->onAxisValues(values({1e9, 1e9, 1e9}));
  EXPECT_EQ(c.issueTexts(),
            std::vector<std::string>{"Axis X is out of travel: 1000000000 mm is outside -100 to 100 mm."});
}

TEST(TravelLimitSimulationStream, ValuesBeforeAnyOrderingGoOnUnchecked) {
  auto const machine = travelMachine();
  auto owner = std::make_unique<MockSimulationStream>();
  MockSimulationStream* mock = owner.get();
  TravelLimitSimulationStream stream(std::move(owner), *machine);
  mtkit_test::AssertRecorder recorder;
  stream.onAxisValues(values({1e9}));
  // The contract wants an ordering first; this link and the mock both say so.
  EXPECT_EQ(recorder.takeTexts(),
            (std::vector<std::string>{"avs.size() == m_numAxesInOrdering", "avs.size() == m_numAxesInOrdering"}));
  EXPECT_EQ(mock->countOf("doOnIssue"), 0);
  EXPECT_EQ(mock->countOf("doOnAxisValues"), 1);
}

TEST(TravelLimitSimulationStream, TheRangesAreTakenWhenItIsBuiltSoTheMachineMayGo) {
  auto machine = travelMachine();
  auto owner = std::make_unique<MockSimulationStream>();
  MockSimulationStream* mock = owner.get();
  TravelLimitSimulationStream stream(std::move(owner), *machine);
  machine.reset();
  stream.onAxisOrdering(fullTravelOrdering());
  stream.onAxisValues(values({0, 51, 0, 0, 0, 0}));
  ASSERT_EQ(mock->countOf("doOnIssue"), 1);
  EXPECT_EQ(mock->issue(0).message, "Axis Y is out of travel: 51 mm is outside 0 to 50 mm.");
}

TEST(TravelLimitSimulationStream, OtherEventsAndProducerIssuesGoOnUnchanged) {
  Chain c;
  c.stream->onIssue(IssueCode::POST_WARNING, std::string("Feed reduced."));
  c.stream->onNcOutput(std::string("N10 G0 X1"));
  c.stream->onSection(SimulationStream::SectionType::Operation);
  c.stream->onRapid(Orvo::Point3D(1, 2, 3),
                    MotionSettings(Orvo::NCStream::MOVEMENT_RAPID, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                   NcCodeRotaryAxisTraverseMode::DIRECT));
  ASSERT_EQ(c.mock->countOf("doOnIssue"), 1);
  EXPECT_EQ(c.mock->issue(0).code, IssueCode::POST_WARNING);
  EXPECT_EQ(c.mock->issue(0).message, "Feed reduced.");
  EXPECT_EQ(c.mock->ncOutput(0), "N10 G0 X1");
  EXPECT_EQ(c.mock->countOf("doOnSection"), 1);
  EXPECT_EQ(c.mock->countOf("doOnRapid"), 1);
  EXPECT_EQ(c.stream->poses(), 0);
}

TEST(TravelLimitSimulationStream, BehindTheSolverASolvedPoseOutOfTravelIsReportedBeforeItGoesOn) {
  using namespace mtkit_test;
  // X, Y, Z along the world axes with identity frames; Z travels -500 to 110,
  // so a tip at z = 200 needs Z = 200.
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}, ControlType::DRIVEN, AxisValue(-300), AxisValue(300)),
                      with(linearPart("y", "Y", {0, 1, 0}, ControlType::DRIVEN, AxisValue(-200), AxisValue(200)),
                           with(linearPart("z", "Z", {0, 0, 1}, ControlType::DRIVEN, AxisValue(-500), AxisValue(110)),
                                staticPart("head", PartType::HEAD)))));
  base.push_back(staticPart("table", PartType::TABLE));
  KinematicsDefinition const kinematics = kinematicsOf(std::move(base));
  Machine machine(kinematics);
  machine.setAxisOrdering(machine.fullOrdering());
  auto owner = std::make_unique<MockSimulationStream>();
  MockSimulationStream* mock = owner.get();
  auto travel = std::make_unique<TravelLimitSimulationStream>(std::move(owner), machine);
  SolverSimulationStream solver(std::move(travel), machine.makeMachineSolver());
  solver.onAxisOrdering(machine.fullOrdering());
  MotionSettings const rapid(Orvo::NCStream::MOVEMENT_RAPID, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                             NcCodeRotaryAxisTraverseMode::DIRECT);
  solver.onAxisValues(values({kNaN, kNaN, kNaN}));
  solver.onRapid(Orvo::Point3D(10, 20, 100), rapid);
  solver.onAxisValues(values({kNaN, kNaN, kNaN}));
  solver.onRapid(Orvo::Point3D(10, 20, 200), rapid);
  ASSERT_EQ(mock->countOf("doOnIssue"), 1);
  EXPECT_EQ(mock->issue(0).message, "Axis Z is out of travel: 200 mm is outside -500 to 110 mm.");
  std::vector<int> const poses = mock->positionsOf("doOnAxisValues");
  ASSERT_EQ(poses.size(), 2u);
  EXPECT_EQ(mock->positionsOf("doOnIssue")[0] + 1, poses[1]);
}
