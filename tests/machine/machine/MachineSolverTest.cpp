#include "machine/machine/MachineSolver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>

#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/ThreeLinearPlusIkSolver.h"
#include "machine/machine/TwoLinearPlusSolver.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::Machine;
using machine::MachineSolver;
using Orvo::AxisValue;
using Orvo::AxisValues;
using Orvo::Frame;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {

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

std::unique_ptr<MachineSolver> fiveAxisSolverAt(Machine& m, std::vector<AxisValue> const& values) {
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(values));
  return m.makeMachineSolver();
}

}  // namespace

TEST(MachineSolver, MovingTheSolverDoesntChangeTheMachineItWasMadeFrom) {
  Machine m(mtkit_test::fiveAxisKinematics());
  auto const solver = fiveAxisSolverAt(m, {1, 2, 3, 20, 30});
  ASSERT_TRUE(solver);
  EXPECT_EQ(solver->axisValues(), m.axisValues());
  Frame const before = m.headAttachFrame();
  ASSERT_TRUE(solver->moveToolTipTo(Point3D(50, -20, 10)));
  solver->moveTo(AxisValues(std::vector<AxisValue>{9, 9, 9, 9, 9}));
  EXPECT_EQ(m.axisValues(), AxisValues(std::vector<AxisValue>{1, 2, 3, 20, 30}));
  EXPECT_EQ(m.headAttachFrame(), before);
}

TEST(MachineSolver, WithTheIdentityToolReferenceFrameToolTipPointEqualsTheOriginOfHeadAttachFrameInTableCs) {
  Machine m(mtkit_test::fiveAxisKinematics());
  auto const solver = fiveAxisSolverAt(m, {10, -5, 40, 35, -70});
  EXPECT_EQ(solver->toolReferenceFrame(), Frame(Orvo::IdentityTag{}));
  expectNear(solver->toolTipPoint(), solver->headAttachFrameInTableCs().origin(), 1e-12);
  // And it is the head's attach frame seen from the table's.
  Point3D const expected =
      Orvo::coordinateTransform3D(Frame(Orvo::IdentityTag{}), m.tableAttachFrame())(m.headAttachFrame().origin());
  expectNear(solver->toolTipPoint(), expected, 1e-12);
  expectNear(solver->toolAxisInTableCs(), solver->headAttachFrameInTableCs().zAxis());
}

TEST(MachineSolver, AToolReferenceFrameWithOrigin00Minus100PutsTheTip100AlongTheHeadZAxis) {
  Machine m(mtkit_test::fiveAxisKinematics());
  auto const solver = fiveAxisSolverAt(m, {10, -5, 40, 35, -70});
  Frame const reference =
      *Frame::make(Point3D(0, 0, -100), Vector3D(1, 0, 0), Vector3D(0, 0, 1));
  solver->setToolReferenceFrame(reference);
  // In the reference frame the tip (the world origin of the tool system) has
  // coordinates (0, 0, 100): 100 along the head's Z axis.
  EXPECT_EQ(Orvo::coordinateTransform3D(Orvo::IdentityTag{}, reference)(Point3D(0, 0, 0)), Point3D(0, 0, 100));
  Frame const head = solver->headAttachFrameInTableCs();
  expectNear(solver->toolTipPoint(), head.origin() + head.zAxis() * 100.0);
}

TEST(MachineSolver, ChangingTheToolReferenceFrameChangesToolTipPointAndLeavesToolAxisInTableCs) {
  Machine m(mtkit_test::fiveAxisKinematics());
  auto const solver = fiveAxisSolverAt(m, {0, 0, 0, 45, 10});
  Point3D const tipBefore = solver->toolTipPoint();
  Vector3D const axisBefore = solver->toolAxisInTableCs();
  solver->setToolReferenceFrame(*Frame::make(Point3D(3, 4, -80), Vector3D(0, 1, 0), Vector3D(0, 0, 1)));
  EXPECT_NE(solver->toolTipPoint(), tipBefore);
  EXPECT_EQ(solver->toolAxisInTableCs(), axisBefore);
}

TEST(MachineSolver, QueriesAssertCompatibleAxesAndGoOn) {
  mtkit_test::AssertRecorder rec;
  Machine m(mtkit_test::fiveAxisKinematics());
  auto const solver = m.makeMachineSolver();  // no ordering yet
  Point3D const tip = solver->toolTipPoint();
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "doAreAxesCompatible()");
  EXPECT_EQ(failures[0].file, "machine\\machine\\MachineSolver");
  EXPECT_EQ(solver->headAttachFrameInTableCs().origin(), tip);
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"doAreAxesCompatible()"}));
  solver->toolAxisInTableCs();
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"doAreAxesCompatible()"}));
  solver->setAxisOrdering(solver->fullOrdering());
  solver->toolTipPoint();
  EXPECT_TRUE(rec.takeTexts().empty());
}

// ---------------------------------------------------------------------------
// Property: on every example machine and 1,000 random rotary poses, a solve
// followed by toolTipPoint() lands on the target (three linear axes) or
// leaves exactly the reported distance along the plane normal (two).

namespace {

struct NamedMachine {
  std::string name;
  std::unique_ptr<Machine> machine;
};

std::vector<NamedMachine> exampleMachines() {
  std::vector<NamedMachine> machines;
  std::filesystem::path const dir = std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines";
  std::vector<std::filesystem::path> files;
  if (std::filesystem::is_directory(dir))
    for (auto const& entry : std::filesystem::directory_iterator(dir))
      if (entry.path().extension() == ".json") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  for (auto const& file : files) {
    std::ifstream in(file);
    auto result = machine::MachineDefinitionReader().read(in);
    EXPECT_FALSE(result.isError()) << file;
    if (result.isError()) continue;
    auto const definition = result.getMachineDefinition();
    auto const specification = machine::MachineSpecification::makeDefaultForDefinition(*definition, true);
    EXPECT_TRUE(specification) << file;
    if (!specification) continue;
    // Every controller configuration of the file, which on a mill-turn
    // gives the turret's two-linear chain as well as the milling head's.
    bool anyConfiguration = false;
    for (machine::MachineFeatureDefinition const& feature : definition->getFeatures()) {
      auto const* configuration = dynamic_cast<machine::ControllerConfiguration const*>(&feature);
      if (!configuration) continue;
      anyConfiguration = true;
      machines.push_back({file.filename().string() + " / " + configuration->name(),
                          std::make_unique<Machine>(*specification->kinematicsDefinition(), *configuration)});
    }
    if (!anyConfiguration) machines.push_back({file.filename().string(), std::make_unique<Machine>(*specification)});
  }
  return machines;
}

/// The full ordering with the axes of the head and table chains moved to the
/// front, keeping their order: on a machine with several chains (a mill-turn)
/// the full ordering's first linear axes may belong to another chain.
Orvo::AxisOrdering chainFirstOrdering(Machine const& m) {
  std::vector<Orvo::MachinePartId> onChains;
  auto const collect = [&](machine::Part const& p) { onChains.push_back(p.definition()->identifier()); };
  machine::Part::visitChainToBase(m.headPart(), collect);
  machine::Part::visitChainToBase(m.tablePart(), collect);
  Orvo::AxisOrdering const full = m.fullOrdering();
  Orvo::AxisOrdering ordering;
  for (bool wanted : {true, false})
    for (int i = 0; i < full.size(); ++i) {
      bool const on = std::find(onChains.begin(), onChains.end(), full.machinePartId(i)) != onChains.end();
      if (on == wanted) ordering.append(full.axisInfo(i));
    }
  return ordering;
}

/// The unit normal, in table coordinates, of the plane in which the two
/// solved linear axes move the tip, worked out from each machine's
/// definition; empty for a machine nobody has worked out.
std::optional<Vector3D> twoAxisPlaneNormal(std::string const& name, Machine const& m) {
  // X (1, 0, 0) and Y (0, 1, 0) at the base, a static table at the origin:
  // the plane is z = constant.
  if (name == "two-axis (in code)") return Vector3D(0, 0, 1);
  if (name == "millturn_turret.json / lower_turret") {
    // X2 (1, 0, 0) carries Z2 (0, 0, 1), which carries the turret: whatever
    // the turret does, the tip moves in the machine's XZ plane, normal
    // (0, 1, 0). The main spindle's table turns with C1 about the machine's Z
    // through the origin, its attach frame the identity, so in table
    // coordinates the normal is that vector turned by -C1: (sin C1, cos C1, 0).
    double const degrees = m.find(Orvo::MachinePartId("c1_axis")).value()->axis()->value().value();
    double const c1 = degrees * 3.14159265358979323846 / 180;
    return Vector3D(std::sin(c1), std::cos(c1), 0);
  }
  return std::nullopt;
}

}  // namespace

TEST(MachineSolver, MoveToolTipToThenToolTipPointLandsOnTheTargetOnEveryExampleMachineAt1000RandomRotaryPoses) {
  std::vector<NamedMachine> machines = exampleMachines();
  machines.push_back({"five-axis (in code)", std::make_unique<Machine>(mtkit_test::fiveAxisKinematics())});
  machines.push_back({"two-axis (in code)", std::make_unique<Machine>(mtkit_test::twoAxisKinematics())});

  std::mt19937_64 random(20261122);
  int threeLinear = 0;
  int twoLinear = 0;
  for (NamedMachine& entry : machines) {
    SCOPED_TRACE(entry.name);
    Machine& m = *entry.machine;
    m.setAxisOrdering(chainFirstOrdering(m));
    auto const solver = m.makeMachineSolver();
    ASSERT_TRUE(solver);
    bool const isTwo = dynamic_cast<machine::TwoLinearPlusSolver*>(solver.get()) != nullptr;
    (isTwo ? twoLinear : threeLinear) += 1;
    int const solved = isTwo ? 2 : 3;
    int const n = solver->numOrderedParts();

    for (int pose = 0; pose < 1000; ++pose) {
      AxisValues values = solver->axisValues();
      for (int i = solved; i < n; ++i) {
        auto const& axis = *solver->orderedPart(i)->axis();
        Orvo::AxisValueRange const range = axis.range();
        double lo = -180.0;
        double hi = 180.0;
        if (!range.isInfinite()) {
          lo = range.min().value();
          hi = range.max().value();
        }
        values.setValue(i, std::uniform_real_distribution<double>(lo, hi)(random));
      }
      solver->moveTo(values);
      std::uniform_real_distribution<double> coordinate(-400.0, 400.0);
      Point3D const target(coordinate(random), coordinate(random), coordinate(random));
      auto const result = solver->moveToolTipTo(target);
      ASSERT_TRUE(result) << "pose " << pose;
      Point3D const tip = solver->toolTipPoint();
      if (!isTwo) {
        ASSERT_EQ(result->get(), 0.0);
        ASSERT_LE((tip - target).length(), 1e-9) << "pose " << pose;
        continue;
      }
      // The miss is the reported distance, along the normal of the plane the
      // two axes span at this pose.
      std::optional<Vector3D> const normal = twoAxisPlaneNormal(entry.name, *solver);
      ASSERT_TRUE(normal) << "no normal worked out for this machine";
      Vector3D const miss = target - tip;
      ASSERT_NEAR(miss.length(), result->get(), 1e-9) << "pose " << pose;
      ASSERT_NEAR(std::fabs(Vector3D::dot(miss, *normal)), result->get(), 1e-9) << "pose " << pose;
    }
  }
  EXPECT_GE(machines.size(), 7u) << "the example machines were not all found";
  EXPECT_GT(threeLinear, 0);
  EXPECT_GT(twoLinear, 0);
}
