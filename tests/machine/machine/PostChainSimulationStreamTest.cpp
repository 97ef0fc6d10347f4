#include "machine/machine/PostChainSimulationStream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/CatchErrorsSimulationStream.h"
#include "machine/machine/Machine.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/NcCodeTiltedWorkPlaneBySpatialAngles.h"
#include "machine/machine/RadiusCompensationSimulationStream.h"
#include "machine/machine/SolverSimulationStream.h"
#include "support/TestMachines.h"

using namespace machine;
using Orvo::AxisValues;
using Orvo::Point3D;
using Orvo::Vector3D;
using Section = SimulationStream::SectionType;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

MotionSettings motion(unsigned int side = 0) {
  return MotionSettings(Orvo::NCStream::getMovementFlags(Orvo::NCStream::MOVEMENT_CUTTING) | side,
                        NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
}
MotionSettings rapid() {
  return MotionSettings(Orvo::NCStream::MOVEMENT_RAPID, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                        NcCodeRotaryAxisTraverseMode::DIRECT);
}

/// A recording stream that tells when it is destroyed.
struct WatchedMock : MockSimulationStream {
  explicit WatchedMock(bool& destroyed) : m_destroyed(destroyed) {}
  ~WatchedMock() override { m_destroyed = true; }
  bool& m_destroyed;
};

/// A link that changes nothing.
struct PlainLink final : ForwardingSimulationStream {
  using ForwardingSimulationStream::ForwardingSimulationStream;
  ~PlainLink() override = default;
};

std::unique_ptr<Machine> threeAxisMachine() {
  auto m = std::make_unique<Machine>(mtkit_test::threeAxisKinematics());
  m->setAxisOrdering(m->fullOrdering());
  return m;
}

std::unique_ptr<Machine> exampleMachine(char const* name) {
  std::ifstream in(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines" / name);
  auto result = MachineDefinitionReader().read(in);
  if (result.isError()) return nullptr;
  auto const specification = MachineSpecification::makeDefaultForDefinition(*result.getMachineDefinition(), true);
  if (!specification) return nullptr;
  auto m = std::make_unique<Machine>(*specification);
  m->setAxisOrdering(m->fullOrdering());
  return m;
}

/// A motion that reached the end of the chain, with the axis values right
/// ahead of it.
struct Arrival {
  std::string method;
  Point3D target;
  AxisValues values;
  bool hasValues = false;
};

std::vector<Arrival> arrivals(MockSimulationStream const& mock) {
  std::vector<Arrival> result;
  int linear = 0, rapid = 0, linear5D = 0, rapid5D = 0, helical = 0, axisValues = 0;
  AxisValues last;
  bool lastWasValues = false;
  for (int i = 0; i < mock.numCalls(); ++i) {
    std::string const& name = mock.call(i).methodName;
    Arrival a;
    a.method = name;
    if (name == "doOnAxisValues") {
      last = mock.axisValues(axisValues++);
      lastWasValues = true;
      continue;
    }
    if (name == "doOnLinear")
      a.target = mock.linear(linear++).target;
    else if (name == "doOnRapid")
      a.target = mock.rapid(rapid++).target;
    else if (name == "doOnLinear5D")
      a.target = mock.linear5D(linear5D++).target;
    else if (name == "doOnRapid5D")
      a.target = mock.rapid5D(rapid5D++).target;
    else if (name == "doOnHelical")
      a.target = mock.helical(helical++).end;
    else {
      lastWasValues = false;
      continue;
    }
    a.values = last;
    a.hasValues = lastWasValues;
    lastWasValues = false;
    result.push_back(a);
  }
  return result;
}

double distance(Point3D const& a, Point3D const& b) { return (a - b).length(); }

/// A compensated 3+2 contour on the trunnion example: the table tilted by
/// A = -30, and in the plane square to the tool (the TPCS frame) a path
/// along +X and then, round an inside corner, along +Y, with the tool on
/// its left (side 1).
struct CompensatedContour {
  static constexpr double kRadius = 5.0;
  static constexpr double kA = -30.0;

  CompensatedContour() : machine(exampleMachine("trunnion_5axis.json")) {
    if (!machine) return;
    auto view = machine->makeMachineSolver();
    view->moveToHome();
    // The stream carries the tool axis up the tool; the machine file may
    // point its head's Z the other way.
    double const sense = view->toolAxisInTableCs().z < 0 ? -1.0 : 1.0;
    AxisValues pose = view->axisValues();
    pose.setValue(3, kA);
    pose.setValue(4, 0.0);
    view->moveTo(pose);
    toolAxis = view->toolAxisInTableCs() * sense;
    tpcs = *Orvo::Frame::make(Point3D(-20, -10, 5), Vector3D(1, 0, 0), toolAxis);
  }

  /// A point given in the TPCS frame, in table coordinates.
  Point3D table(double x, double y, double z = 0) const {
    return tpcs.origin() + tpcs.xAxis() * x + tpcs.yAxis() * y + tpcs.zAxis() * z;
  }

  /// Runs the operation through a standard chain ending in `mock`, and
  /// hands the chain back.
  std::unique_ptr<PostChainSimulationStream> run(std::unique_ptr<MockSimulationStream> mockOwner) const {
    auto chain = std::make_unique<PostChainSimulationStream>(std::move(mockOwner), machine->makeMachineSolver());
    SimulationStream& head = *chain;
    head.onApiVersion(1, 0);
    head.onAxisOrdering(machine->axisOrdering());
    head.onTaggedFrame(Orvo::TaggedFrame("TPCS", "ModelCS", tpcs));
    head.onNCContext(Orvo::NCContext());
    head.onNCTool(Orvo::NCTool(1, Orvo::ToolGeometry(2 * kRadius, 0, 30, 80)));
    head.onSection(Section::Operation);
    AxisValues const placeholder(std::vector<Orvo::AxisValue>{kNaN, kNaN, kNaN, kA, 0.0});
    auto move = [&](Point3D const& p, MotionSettings const& s, bool isRapid = false) {
      head.onAxisValues(placeholder);
      if (isRapid)
        head.onRapid5D(p, toolAxis, s);
      else
        head.onLinear5D(p, toolAxis, 1000, s);
    };
    unsigned int const left = Orvo::NCStream::COMPENSATION_SIDE_1;
    move(table(-10, -30, 20), rapid(), true);
    move(table(-10, -30, 0), motion());
    move(table(0, 0), motion(left));    // lead-in
    move(table(20, 0), motion(left));   // a straight line goes on
    move(table(40, 0), motion(left));   // inside corner, turning left
    move(table(40, 20), motion(left));  // a straight line goes on
    move(table(40, 40), motion(left));
    move(table(60, 60), motion());      // lead-out
    move(table(60, 60, 20), rapid(), true);
    head.onSectionEnd();
    return chain;
  }

  std::unique_ptr<Machine> machine;
  Vector3D toolAxis;
  Orvo::Frame tpcs{Orvo::IdentityTag{}};
};

}  // namespace

TEST(PostChainSimulationStream, AnEventGivenToTheHeadReachesStreamBehindTheThreeLinksInTheirOrder) {
  auto m = threeAxisMachine();
  auto owner = std::make_unique<MockSimulationStream>();
  MockSimulationStream* mock = owner.get();
  PostChainSimulationStream head(std::move(owner), m->makeMachineSolver());
  auto const* catchErrors = dynamic_cast<CatchErrorsSimulationStream const*>(head.forwardStream());
  ASSERT_NE(catchErrors, nullptr);
  auto const* bridge = dynamic_cast<RadiusCompensationSimulationStream const*>(catchErrors->forwardStream());
  ASSERT_NE(bridge, nullptr);
  // Built in this order, the catch-errors link knows the compensation stream.
  EXPECT_EQ(catchErrors->radiusCompensationStream(), bridge);
  auto const* solver = dynamic_cast<SolverSimulationStream const*>(bridge->forwardStream());
  ASSERT_NE(solver, nullptr);
  EXPECT_EQ(solver->forwardStream(), mock);

  head.onAxisOrdering(m->axisOrdering());
  head.onSpindleSpeed(9000);
  EXPECT_EQ(mock->spindleSpeed(0), 9000);
  // Every link has taken its part: the solver has the ordering, and a
  // placeholder before a motion comes out solved right ahead of it.
  EXPECT_EQ(solver->solver()->axisOrdering(), m->axisOrdering());
  head.onSection(Section::Operation);
  head.onNcOutput(std::string("N10 G1 X10 Y20 Z-5"));
  head.onAxisValues(AxisValues(std::vector<Orvo::AxisValue>{kNaN, kNaN, kNaN}));
  head.onLinear(Point3D(10, 20, -5), 800, motion());
  head.onSectionEnd();
  std::vector<std::string> names;
  for (int i = 0; i < mock->numCalls(); ++i) names.push_back(mock->call(i).methodName);
  EXPECT_EQ(names, (std::vector<std::string>{"doOnApiVersion", "doOnAxisOrdering", "doOnSpindleSpeed", "doOnSection",
                                             "doOnNcOutput", "doOnAxisValues", "doOnLinear", "doOnSectionEnd"}));
  EXPECT_EQ(mock->axisValues(0), AxisValues(std::vector<Orvo::AxisValue>{10, 20, -5}));
}

TEST(PostChainSimulationStream, DestroyingTheHeadDestroysTheLinksAndStreamUnlessTheTailWasDetachedWithReleaseFirst) {
  auto m = threeAxisMachine();
  bool destroyed = false;
  {
    PostChainSimulationStream head(std::make_unique<WatchedMock>(destroyed), m->makeMachineSolver());
    head.onSpindleSpeed(1000);
  }
  EXPECT_TRUE(destroyed);

  destroyed = false;
  std::unique_ptr<SimulationStream> tail;
  {
    PostChainSimulationStream head(std::make_unique<WatchedMock>(destroyed), m->makeMachineSolver());
    tail.reset(head.release());
    EXPECT_EQ(head.forwardStream(), nullptr);
  }
  EXPECT_FALSE(destroyed);
  ASSERT_NE(dynamic_cast<CatchErrorsSimulationStream*>(tail.get()), nullptr);
  tail.reset();
  EXPECT_TRUE(destroyed);
}

TEST(PostChainSimulationStream, ALinkBetweenTheCatchErrorsAndTheCompensationStreamTurnsTheTwoCompensationChecksOffWithoutAWord) {
  auto run = [](bool withLinkBetween) {
    auto owner = std::make_unique<MockSimulationStream>();
    MockSimulationStream* mock = owner.get();
    std::unique_ptr<SimulationStream> next = std::make_unique<RadiusCompensationSimulationStream>(std::move(owner));
    auto const* bridge = static_cast<RadiusCompensationSimulationStream const*>(next.get());
    if (withLinkBetween) next = std::make_unique<PlainLink>(std::move(next));
    CatchErrorsSimulationStream head(std::move(next));
    head.onSection(Section::Operation);
    head.onLinear(Point3D(1, 0, 0), 500, motion(Orvo::NCStream::COMPENSATION_SIDE_2));
    EXPECT_TRUE(bridge->isCompensating());
    head.onTCPCoordMode(false);
    head.onTiltedWorkPlane(NcCodeTiltedWorkPlaneBySpatialAngles(0, 0.3, 0));
    std::vector<int> codes;
    for (int i = 0; i < mock->countOf("doOnIssue"); ++i) codes.push_back(static_cast<int>(mock->issue(i).code));
    return codes;
  };
  EXPECT_EQ(run(false), (std::vector<int>{16, 17}));
  EXPECT_TRUE(run(true).empty());
}

TEST(PostChainSimulationStream, ACompensatedFiveAxisOperationSolvesEveryMotionThatComesOutWithTheTipOnItsTarget) {
  CompensatedContour const job;
  ASSERT_TRUE(job.machine);
  auto owner = std::make_unique<MockSimulationStream>();
  MockSimulationStream const* mock = owner.get();
  auto const chain = job.run(std::move(owner));

  EXPECT_EQ(mock->countOf("doOnIssue"), 0);
  auto const out = arrivals(*mock);
  // The compensator may add motions (and arcs round outside corners), but
  // it drops none of the nine.
  ASSERT_GE(out.size(), 9u);
  auto copy = job.machine->makeMachineSolver();
  for (std::size_t i = 0; i < out.size(); ++i) {
    SCOPED_TRACE(i);
    ASSERT_TRUE(out[i].hasValues) << out[i].method << " came out without axis values right ahead of it";
    ASSERT_EQ(out[i].values.size(), 5);
    for (int axis = 0; axis < 5; ++axis) EXPECT_FALSE(std::isnan(out[i].values[axis].value()));
    EXPECT_EQ(out[i].values[3].value(), CompensatedContour::kA);
    EXPECT_EQ(out[i].values[4].value(), 0.0);
    copy->moveTo(out[i].values);
    EXPECT_LT(distance(copy->toolTipPoint(), out[i].target), 1e-7);
  }
  // The motions before compensation starts and after it ends come back
  // where they were sent.
  EXPECT_LT(distance(out.front().target, job.table(-10, -30, 20)), 1e-9);
  EXPECT_LT(distance(out.back().target, job.table(60, 60, 20)), 1e-9);
}

// The compensated points themselves need the compensator's geometry. They
// are worked out here from what it documents: a motion with side 1 is
// offset by the tool radius to the left of the path, seen down the tool axis
// (the TPCS Z); where the path goes straight on, the end point moves square
// to it, and at an inside corner it is where the two offset lines meet.
TEST(PostChainSimulationStream, ACompensatedFiveAxisOperationPutsTheTipAtTheCompensatedPoints) {
  CompensatedContour const job;
  ASSERT_TRUE(job.machine);
  auto owner = std::make_unique<MockSimulationStream>();
  MockSimulationStream const* mock = owner.get();
  auto const chain = job.run(std::move(owner));
  auto const out = arrivals(*mock);
  double const r = CompensatedContour::kRadius;
  auto copy = job.machine->makeMachineSolver();
  for (Point3D const expected : {job.table(20, r), job.table(40 - r, r), job.table(40 - r, 20)}) {
    bool found = false;
    for (Arrival const& a : out) {
      copy->moveTo(a.values);
      if (distance(copy->toolTipPoint(), expected) < 1e-6) found = true;
    }
    EXPECT_TRUE(found) << "no solved pose puts the tip at (" << expected.x << ", " << expected.y << ", "
                       << expected.z << ")";
  }
}
