#include "machine/machine/Machine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "machine/machine/MachineSolver.h"
#include "machine/machine/ThreeLinearPlusIkSolver.h"
#include "machine/machine/TwoLinearPlusSolver.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::AxisConfiguration;
using machine::ControlType;
using machine::ControllerConfiguration;
using machine::CopyTag;
using machine::Machine;
using machine::NcCodeKinematicInterpolationMode;
using machine::Part;
using machine::PartType;
using Orvo::AxisInfo;
using Orvo::AxisName;
using Orvo::AxisOrdering;
using Orvo::AxisValue;
using Orvo::AxisValues;
using Orvo::MachinePartId;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {

Part const* get(Machine const& m, char const* id) { return m.find(MachinePartId(id)).value(); }

std::vector<std::string> names(AxisOrdering const& ordering) {
  std::vector<std::string> out;
  for (int i = 0; i < ordering.size(); ++i) out.push_back(ordering.axisName(i).name());
  return out;
}

void expectNear(Point3D const& a, Point3D const& b, double tolerance = 1e-9) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

void expectNear(Vector3D const& a, Vector3D const& b, double tolerance = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

}  // namespace

TEST(Machine, BuildsItsPartsAndFindsHeadAndTable) {
  Machine const m(mtkit_test::fiveAxisKinematics());
  std::vector<std::string> ids;
  for (Part const* p : m.allParts()) ids.push_back(p->definition()->identifier().id());
  EXPECT_EQ(ids, (std::vector<std::string>{"x", "y", "z", "b", "head", "c", "table"}));
  EXPECT_EQ(m.baseParts().size(), 2u);
  EXPECT_EQ(m.headPart(), get(m, "head"));
  EXPECT_EQ(m.tablePart(), get(m, "table"));
  EXPECT_EQ(m.staticParts().size(), 0u);
  EXPECT_EQ(m.numOrderedParts(), 0);
  EXPECT_TRUE(m.axisOrdering().size() == 0);
  // The machine owns deep copies.
  EXPECT_NE(m.kinematicsDefinition(), nullptr);
  EXPECT_EQ(m.controllerConfiguration()->name(), "default");
  EXPECT_EQ(m.controllerConfiguration()->headInfoPartId(), MachinePartId("head"));
}

TEST(Machine, StandsAloneOnceBuilt) {
  auto kinematics = mtkit_test::fiveAxisKinematics().clone();
  Machine m(*kinematics);
  kinematics.reset();
  m.setAxisOrdering(m.fullOrdering());
  EXPECT_TRUE(m.moveTo(AxisValues(std::vector<AxisValue>{1, 2, 3, 0, 0})));
  EXPECT_EQ(m.headAttachFrame().origin(), Point3D(1, 2, 3 + 60));
}

TEST(Machine, UnknownHeadOrTableIdThrowsBadOptionalAccess) {
  auto const kinematics = mtkit_test::fiveAxisKinematics();
  ControllerConfiguration badHead;
  badHead.setHeadInfoPartId(MachinePartId("nowhere"));
  EXPECT_THROW(Machine(kinematics, badHead), std::bad_optional_access);
  ControllerConfiguration badTable;
  badTable.setTablePartId(MachinePartId("nowhere"));
  EXPECT_THROW(Machine(kinematics, badTable), std::bad_optional_access);
}

TEST(Machine, TableIdIsUsedAsItStands) {
  ControllerConfiguration configuration;
  configuration.setTablePartId(MachinePartId("c"));
  Machine const m(mtkit_test::fiveAxisKinematics(), configuration);
  EXPECT_EQ(m.tablePart(), get(m, "c"));
}

TEST(Machine, ForwardKinematicsComposesAxisMotionAttachFrameAndParentChain) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  ASSERT_EQ(names(m.axisOrdering()), (std::vector<std::string>{"X", "Y", "Z", "B", "C"}));
  ASSERT_TRUE(m.moveTo(AxisValues(std::vector<AxisValue>{10, 20, 30, 90, 90})));
  // B turns +90 about Y through (0, 0, 150) of z's frame, whose origin
  // stands at (10, 20, 130). The head's attach point is at (0, 0, -40) of
  // b's frame, 190 below the pivot; B turns that offset onto -X.
  Orvo::Frame const head = m.headAttachFrame();
  expectNear(head.origin(), Point3D(10 - 190, 20, 130 + 150));
  expectNear(head.zAxis(), Vector3D(1, 0, 0));
  // C turns the table +90 about Z: its attach point (20, 10, 5) goes to (-10, 20, 5).
  Orvo::Frame const table = m.tableAttachFrame();
  expectNear(table.origin(), Point3D(-10, 20, 5));
  expectNear(table.xAxis(), Vector3D(0, 1, 0));
}

TEST(Machine, MovingALeafAxisRecomputesOnlyItsSubtree) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.headAttachFrame();
  m.tableAttachFrame();
  m.moveAxis(get(m, "c"), 45.0);
  for (char const* id : {"x", "y", "z", "b", "head"}) EXPECT_TRUE(get(m, id)->transformValid()) << id;
  EXPECT_FALSE(get(m, "c")->transformValid());
  EXPECT_FALSE(get(m, "table")->transformValid());
  m.moveAxis(get(m, "c"), 45.0);
  m.tableAttachFrame();
  EXPECT_TRUE(get(m, "table")->transformValid());
}

TEST(Machine, SetAxisOrderingWithOneUnknownIdentifierGivesNumOrderedParts0AndMoveToOfAFullAxisValuesReturnsFalse) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  ASSERT_EQ(m.numOrderedParts(), 5);
  AxisOrdering ordering = m.fullOrdering();
  ordering.setAxisInfo(3, AxisInfo("nowhere", "B"));
  m.setAxisOrdering(ordering);
  EXPECT_EQ(m.numOrderedParts(), 0);
  EXPECT_EQ(m.axisOrdering().size(), 0);
  EXPECT_FALSE(m.moveTo(AxisValues(std::vector<AxisValue>{1, 2, 3, 4, 5})));
  EXPECT_EQ(get(m, "x")->axis()->value(), AxisValue(0));
  // With no ordering an empty set of values is a full one.
  EXPECT_TRUE(m.moveTo(AxisValues()));
}

TEST(Machine, MoveToWithAValueBeyondTheAxisLimitsReturnsTrueAndTheAxisHoldsThatValue) {
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::with(mtkit_test::linearPart("x", "X", {1, 0, 0}, ControlType::DRIVEN, AxisValue(-10),
                                                         AxisValue(10)),
                                  mtkit_test::staticPart("head", PartType::HEAD)));
  Machine m(mtkit_test::kinematicsOf(std::move(base)));
  m.setAxisOrdering(m.fullOrdering());
  EXPECT_TRUE(m.moveTo(AxisValues(std::vector<AxisValue>{250})));
  EXPECT_EQ(get(m, "x")->axis()->value(), AxisValue(250));
  EXPECT_EQ(m.headAttachFrame().origin(), Point3D(250, 0, 0));
}

TEST(Machine, HeadAttachFrameOnAMachineWithNoHeadGivesTheIdentityFrame) {
  mtkit_test::AssertRecorder rec;
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::linearPart("x", "X", {1, 0, 0}));
  Machine const m(mtkit_test::kinematicsOf(std::move(base)));
  EXPECT_EQ(m.headPart(), nullptr);
  EXPECT_EQ(m.headAttachFrame(), Orvo::Frame(Orvo::IdentityTag{}));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"m_headPart && \"This machine has no head.\""}));
  EXPECT_EQ(m.tableAttachFrame(), Orvo::Frame(Orvo::IdentityTag{}));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"m_tablePart && \"This machine has no table.\""}));
  EXPECT_EQ(m.headAttachFrameAsModelled(), Orvo::Frame(Orvo::IdentityTag{}));
  EXPECT_EQ(m.tableAttachFrameAsModelled(), Orvo::Frame(Orvo::IdentityTag{}));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"m_headPart && \"This machine has no head.\"",
                                                       "m_tablePart && \"This machine has no table.\""}));
}

TEST(Machine, FullOrderingPutsAManualLinearAxisAheadOfEveryRotaryAxisAndALinkLinearAxisBehindTheDrivenRotaryOnes) {
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::linearPart("a_link", "W", {0, 0, 1}, ControlType::LINK));
  base.push_back(mtkit_test::rotaryPart("a_rot", "A", {0, 0, 0}, {1, 0, 0}));
  base.push_back(mtkit_test::linearPart("m_manual", "V", {0, 1, 0}, ControlType::MANUAL));
  base.push_back(mtkit_test::staticPart("a_static"));
  base.push_back(mtkit_test::rotaryPart("c_rot", "C", {0, 0, 0}, {0, 0, 1}));
  base.push_back(mtkit_test::linearPart("z_lin", "Z", {0, 0, 1}));
  base.push_back(mtkit_test::linearPart("b_lin", "X", {1, 0, 0}));
  base.push_back(mtkit_test::rotaryPart("b_sec", "B", {0, 0, 0}, {0, 1, 0}, ControlType::SECONDARY));
  base.push_back(mtkit_test::linearPart("s_anc", "U", {1, 0, 0}, ControlType::ANCILLARY));
  Machine const m(mtkit_test::kinematicsOf(std::move(base)));
  AxisOrdering const ordering = m.fullOrdering();
  // Driven linear by id (b_lin, z_lin), manual linear, driven rotary by id
  // (a_rot, c_rot), secondary rotary, ancillary linear, link linear.
  EXPECT_EQ(names(ordering), (std::vector<std::string>{"X", "Z", "V", "A", "C", "B", "U", "W"}));
  EXPECT_EQ(ordering.machinePartId(0), MachinePartId("b_lin"));
}

TEST(Machine, Transform3DFromBaseAsModelledDoesntChangeWhenAxesMove) {
  Machine m(mtkit_test::fiveAxisKinematics());
  Orvo::Transform3D const before = get(m, "head")->transform3DFromBaseAsModelled();
  Orvo::Frame const headBefore = m.headAttachFrameAsModelled();
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(std::vector<AxisValue>{5, 6, 7, 30, 40}));
  EXPECT_EQ(get(m, "head")->transform3DFromBaseAsModelled(), before);
  EXPECT_EQ(m.headAttachFrameAsModelled(), headBefore);
  EXPECT_EQ(headBefore.origin(), Point3D(0, 0, 60));
  EXPECT_NE(m.headAttachFrame(), headBefore);
}

TEST(Machine, CopyTagCopiesOrderingAndPositionsAndSharesNothing) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(std::vector<AxisValue>{1, 2, 3, 4, 5}));
  Machine copy(CopyTag{}, m);
  EXPECT_EQ(copy.axisOrdering(), m.axisOrdering());
  EXPECT_EQ(copy.axisValues(), m.axisValues());
  EXPECT_NE(copy.kinematicsDefinition(), m.kinematicsDefinition());
  EXPECT_NE(copy.headPart(), m.headPart());
  EXPECT_EQ(copy.headAttachFrame(), m.headAttachFrame());
  copy.moveTo(AxisValues(std::vector<AxisValue>{9, 9, 9, 9, 9}));
  EXPECT_EQ(m.axisValues(), AxisValues(std::vector<AxisValue>{1, 2, 3, 4, 5}));
}

TEST(Machine, OrderedPartsAndAxisValues) {
  mtkit_test::AssertRecorder rec;
  Machine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  EXPECT_EQ(m.orderedPart(3), get(m, "b"));
  EXPECT_EQ(m.orderedPartByName(AxisName("C")), get(m, "c"));
  EXPECT_EQ(m.orderedPartByName(AxisName("Q")), nullptr);
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(m.orderedPart(5), nullptr);
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "0 <= index && index < numOrderedParts()");
  EXPECT_EQ(failures[0].file, "machine\\machine\\Machine");

  AxisOrdering withStatic = m.fullOrdering();
  withStatic.append(AxisInfo("head", ""));
  m.setAxisOrdering(withStatic);
  EXPECT_EQ(m.numOrderedParts(), 6);
  EXPECT_EQ(m.axisValues().size(), 6);
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"optionalAxis && \"An ordered part must be an axis.\""}));
}

TEST(Machine, MoveAxisChecksThePartBelongsToThisMachine) {
  mtkit_test::AssertRecorder rec;
  Machine m(mtkit_test::fiveAxisKinematics());
  Machine other(mtkit_test::fiveAxisKinematics());
  m.moveAxis(get(m, "x"), 4.0);
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(get(m, "x")->axis()->value(), AxisValue(4));
  m.moveAxis(get(other, "x"), 6.0);
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"part == *find(part->definition()->identifier())"}));
  // The other machine is left alone; this one's part of that name moves.
  EXPECT_EQ(get(other, "x")->axis()->value(), AxisValue(0));
  EXPECT_EQ(get(m, "x")->axis()->value(), AxisValue(6));
}

TEST(Machine, MoveAxisWithAForeignPartWhoseIdentifierThisMachineLacks) {
  mtkit_test::AssertRecorder rec;
  Machine m(mtkit_test::threeAxisKinematics());
  Machine other(mtkit_test::fiveAxisKinematics());
  // "b" exists only on the other machine: the check fails with its text and
  // nothing moves on either machine.
  m.moveAxis(get(other, "b"), 30.0);
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "part == *find(part->definition()->identifier())");
  EXPECT_EQ(failures[0].file, "machine\\machine\\Machine");
  EXPECT_EQ(get(other, "b")->axis()->value(), AxisValue(0));
  for (char const* id : {"x", "y", "z"}) EXPECT_EQ(get(m, id)->axis()->value(), AxisValue(0)) << id;
}

TEST(Machine, MoveToHomeMovesEveryAxisOrderedOrNot) {
  auto kinematics = mtkit_test::fiveAxisKinematics();
  ControllerConfiguration configuration;
  auto xHome = std::make_unique<AxisConfiguration>();
  xHome->setHome(AxisValue(-7));
  configuration.setAxisConfiguration(MachinePartId("x"), std::move(xHome));
  Machine m(kinematics, configuration);
  EXPECT_EQ(get(m, "x")->axis()->value(), AxisValue(-7));
  m.moveAxis(get(m, "x"), 3.0);
  m.moveAxis(get(m, "c"), 3.0);
  m.moveToHome();
  EXPECT_EQ(get(m, "x")->axis()->value(), AxisValue(-7));
  EXPECT_EQ(get(m, "c")->axis()->value(), AxisValue(0));
}

TEST(Machine, InterpolationModeAndNonTcpAxes) {
  mtkit_test::AssertRecorder rec;
  auto const kinematics = mtkit_test::fiveAxisKinematics();
  EXPECT_EQ(Machine(kinematics).interpolationMode(), NcCodeKinematicInterpolationMode::TCP_ONLY);
  EXPECT_TRUE(Machine(kinematics).nonTcpAxes().empty());
  EXPECT_EQ(Machine(mtkit_test::threeAxisKinematics()).interpolationMode(),
            NcCodeKinematicInterpolationMode::SYNCHRONIZED);

  ControllerConfiguration mixed;
  auto noTcp = std::make_unique<AxisConfiguration>();
  noTcp->setTCPEnabled(false);
  mixed.setAxisConfiguration(MachinePartId("c"), std::move(noTcp));
  Machine const m(kinematics, mixed);
  EXPECT_EQ(m.interpolationMode(), NcCodeKinematicInterpolationMode::MIXED);
  ASSERT_EQ(m.nonTcpAxes().size(), 1u);
  EXPECT_EQ(m.nonTcpAxes().front(), &*get(m, "c")->axis());

  noTcp = std::make_unique<AxisConfiguration>();
  noTcp->setTCPEnabled(false);
  mixed.setAxisConfiguration(MachinePartId("b"), std::move(noTcp));
  EXPECT_EQ(Machine(kinematics, mixed).interpolationMode(), NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_TRUE(rec.takeTexts().empty());
}

TEST(Machine, MakeMachineSolverCountsPrimaryLinearAxesOnTheHeadAndTableChains) {
  Machine const five(mtkit_test::fiveAxisKinematics());
  auto const three = five.makeMachineSolver();
  EXPECT_NE(dynamic_cast<machine::ThreeLinearPlusIkSolver*>(three.get()), nullptr);
  Machine const two(mtkit_test::twoAxisKinematics());
  EXPECT_NE(dynamic_cast<machine::TwoLinearPlusSolver*>(two.makeMachineSolver().get()), nullptr);

  // A linear axis off both chains, or a link axis, does not count.
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::with(mtkit_test::linearPart("x", "X", {1, 0, 0}),
                                  mtkit_test::with(mtkit_test::linearPart("w", "W", {0, 1, 0}, ControlType::LINK),
                                                   mtkit_test::staticPart("head", PartType::HEAD))));
  base.push_back(mtkit_test::linearPart("u", "U", {0, 0, 1}));
  base.push_back(mtkit_test::staticPart("table", PartType::TABLE));
  EXPECT_EQ(Machine(mtkit_test::kinematicsOf(std::move(base))).makeMachineSolver(), nullptr);

  // No head: only the table chain is counted.
  std::vector<mtkit_test::PartPtr> tableOnly;
  tableOnly.push_back(mtkit_test::with(mtkit_test::linearPart("x", "X", {1, 0, 0}),
                                       mtkit_test::staticPart("table", PartType::TABLE)));
  EXPECT_EQ(Machine(mtkit_test::kinematicsOf(std::move(tableOnly))).makeMachineSolver(), nullptr);
}

TEST(Machine, UnhandledControlTypeSortsAtTwelve) {
  mtkit_test::AssertRecorder rec;
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::linearPart("odd", "O", {1, 0, 0}, static_cast<ControlType>(42)));
  base.push_back(mtkit_test::linearPart("link", "L", {1, 0, 0}, ControlType::LINK));
  base.push_back(mtkit_test::staticPart("plain"));
  Machine const m(mtkit_test::kinematicsOf(std::move(base)));
  EXPECT_EQ(names(m.fullOrdering()), (std::vector<std::string>{"L", "O"}));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"Unhandled axis type"}));
}

namespace {

/// Opens the helpers a machine offers its solvers.
class OpenMachine : public Machine {
public:
  using Machine::Machine;
  using Machine::moveOrderedPart;
  using Machine::orderedPartsStandAt;
  using Machine::readAxisValues;
};

}  // namespace

TEST(Machine, ReadAxisValuesGivesAxisValuesAndKeepsStorageOfTheOrderingsSize) {
  OpenMachine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(std::vector<AxisValue>{1, 2, 3, 4, 5}));
  AxisValues values(5);
  AxisValue const* const storage = values.values().data();
  m.readAxisValues(values);
  EXPECT_EQ(values, AxisValues(std::vector<AxisValue>{1, 2, 3, 4, 5}));
  EXPECT_EQ(values.values().data(), storage);
  AxisValues wrongSize(2);
  m.readAxisValues(wrongSize);
  EXPECT_EQ(wrongSize, m.axisValues());
}

TEST(Machine, OrderedPartsStandAtComparesFromTheFirstIndexOnExactly) {
  OpenMachine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(std::vector<AxisValue>{1, 2, 3, 4, 5}));
  EXPECT_TRUE(m.orderedPartsStandAt(AxisValues(std::vector<AxisValue>{0, 0, 0, 4, 5}), 3));
  EXPECT_FALSE(m.orderedPartsStandAt(AxisValues(std::vector<AxisValue>{0, 0, 0, 4, 5}), 2));
  EXPECT_FALSE(m.orderedPartsStandAt(AxisValues(std::vector<AxisValue>{1, 2, 3, 4, 5.000000000000001}), 3));
  EXPECT_FALSE(m.orderedPartsStandAt(AxisValues(std::vector<AxisValue>{1, 2, 3, 4}), 3));
  double const nan = std::nan("");
  m.moveTo(AxisValues(std::vector<AxisValue>{1, 2, 3, 4, nan}));
  EXPECT_FALSE(m.orderedPartsStandAt(AxisValues(std::vector<AxisValue>{1, 2, 3, 4, nan}), 3));
}

TEST(Machine, AnOrderedPartWithoutAnAxisStandsAt0AsInAxisValuesAndIsAnAssertion) {
  mtkit_test::AssertRecorder rec;
  OpenMachine m(mtkit_test::threeAxisKinematics());
  AxisOrdering ordering = m.fullOrdering();
  ordering.append(AxisInfo(MachinePartId("head"), AxisName("")));
  m.setAxisOrdering(ordering);
  EXPECT_TRUE(m.orderedPartsStandAt(AxisValues(std::vector<AxisValue>{0, 0, 0, 0}), 1));
  EXPECT_FALSE(m.orderedPartsStandAt(AxisValues(std::vector<AxisValue>{0, 0, 0, 1}), 1));
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 2u);
  for (auto const& failure : failures) {
    EXPECT_EQ(failure.expression, "optionalAxis && \"An ordered part must be an axis.\"");
    EXPECT_EQ(failure.file, "machine\\machine\\Machine");
  }
  EXPECT_EQ(m.axisValues(), AxisValues(std::vector<AxisValue>{0, 0, 0, 0}));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"optionalAxis && \"An ordered part must be an axis.\""}));
}

TEST(Machine, MoveOrderedPartMovesOneAxisAsMoveToDoes) {
  OpenMachine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  m.headAttachFrame();
  m.moveOrderedPart(2, 4.0);
  EXPECT_EQ(m.axisValues(), AxisValues(std::vector<AxisValue>{0, 0, 4, 0, 0}));
  EXPECT_FALSE(get(m, "z")->transformValid());
  EXPECT_TRUE(get(m, "y")->transformValid());
  EXPECT_EQ(m.headAttachFrame().origin(), Point3D(0, 0, 4 + 100 - 50 + 10));
}
