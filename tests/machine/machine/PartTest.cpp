#include "machine/machine/Part.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "machine/machine/Machine.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::Machine;
using machine::Part;
using machine::PartDefinition;
using machine::PartType;
using Orvo::AxisName;
using Orvo::AxisValues;
using Orvo::MachinePartId;

namespace {

Part const* get(Machine const& m, char const* id) { return m.find(MachinePartId(id)).value(); }

}  // namespace

TEST(Part, ConstructorAndDefinitionAssertTheirDefinition) {
  mtkit_test::AssertRecorder rec;
  Part const broken(nullptr, nullptr);
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "m_definition");
  EXPECT_EQ(failures[0].file, "machine\\machine\\Part");
  EXPECT_EQ(broken.definition(), nullptr);
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"ENSURES:m_definition"}));
  EXPECT_FALSE(broken.axis());
}

TEST(Part, AxisInfoAndDisplayName) {
  auto named = mtkit_test::linearPart("x_part", "X", {1, 0, 0});
  auto unnamed = mtkit_test::linearPart("u_part", nullptr, {1, 0, 0});
  auto shown = mtkit_test::staticPart("bed");
  shown->setDisplayName(machine::DisplayName("Machine bed"));
  auto plain = mtkit_test::staticPart("frame");

  Part const x(named.get(), nullptr);
  ASSERT_TRUE(x.axisInfo());
  EXPECT_EQ(x.axisInfo()->machinePartId(), MachinePartId("x_part"));
  EXPECT_EQ(x.axisInfo()->axisName(), AxisName("X"));
  EXPECT_EQ(x.displayName().name(), "X");

  Part const u(unnamed.get(), nullptr);
  EXPECT_EQ(u.axisInfo()->axisName(), AxisName(""));
  EXPECT_EQ(u.displayName().name(), "u_part");

  Part const bed(shown.get(), nullptr);
  EXPECT_FALSE(bed.axisInfo());
  EXPECT_EQ(bed.displayName().name(), "Machine bed");
  EXPECT_EQ(Part(plain.get(), nullptr).displayName().name(), "frame");
}

TEST(Part, ParentIsNullForABasePartAndFindSearchesDescendantsOnly) {
  Machine const m(mtkit_test::fiveAxisKinematics());
  EXPECT_EQ(get(m, "x")->parent(), nullptr);
  EXPECT_EQ(get(m, "y")->parent(), get(m, "x"));
  EXPECT_FALSE(get(m, "x")->find(MachinePartId("x")));
  EXPECT_EQ(get(m, "x")->find(MachinePartId("head")).value(), get(m, "head"));
  EXPECT_FALSE(get(m, "c")->find(MachinePartId("head")));
  EXPECT_EQ(get(m, "x")->findPartByName(AxisName("B")).value(), get(m, "b"));
  EXPECT_FALSE(get(m, "x")->findPartByName(AxisName("C")));
}

TEST(Part, FindTestsEachChildBeforeSearchingItsChildren) {
  // a - dup(first) - ... and a second "dup" deeper in an earlier branch:
  // a -> [b -> [dup#deep], dup#shallow]; pre-order meets the deep one first.
  std::vector<mtkit_test::PartPtr> base;
  auto a = mtkit_test::staticPart("a");
  auto b = mtkit_test::staticPart("b");
  auto deep = mtkit_test::staticPart("dup");
  deep->setDisplayName(machine::DisplayName("deep"));
  b->addChild(std::move(deep));
  a->addChild(std::move(b));
  auto shallow = mtkit_test::staticPart("dup");
  shallow->setDisplayName(machine::DisplayName("shallow"));
  a->addChild(std::move(shallow));
  base.push_back(std::move(a));
  Machine const m(mtkit_test::kinematicsOf(std::move(base)));
  EXPECT_EQ((*m.find(MachinePartId("dup")))->displayName().name(), "deep");
}

TEST(Part, VisitChainToBaseLeavesTheRootOutAndAcceptsNull) {
  Machine const m(mtkit_test::fiveAxisKinematics());
  std::vector<std::string> seen;
  get(m, "head")->visitChainToBase([&](Part const& p) { seen.push_back(p.definition()->identifier().id()); });
  EXPECT_EQ(seen, (std::vector<std::string>{"head", "b", "z", "y", "x"}));
  int calls = 0;
  Part::visitChainToBase(nullptr, [&](Part const&) { ++calls; });
  EXPECT_EQ(calls, 0);
}

TEST(Part, SetAxisValueToThePresentValueInvalidatesNothing) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.headAttachFrame();
  m.tableAttachFrame();
  Part* const z = m.findPartByName(AxisName("Z")).value();
  z->setAxisValue(z->axis()->value());
  for (Part const* p : m.allParts()) EXPECT_TRUE(p->transformValid()) << p->definition()->identifier().id();
}

TEST(Part, SetAxisValueInvalidatesOnlyTheMovedSubtree) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.headAttachFrame();
  m.tableAttachFrame();
  Part* const z = m.findPartByName(AxisName("Z")).value();
  z->setAxisValue(33.0);
  for (char const* id : {"x", "y", "c", "table"}) EXPECT_TRUE(get(m, id)->transformValid()) << id;
  for (char const* id : {"z", "b", "head"}) EXPECT_FALSE(get(m, id)->transformValid()) << id;
  // Recomputing the head brings its chain back, and the table was never touched.
  EXPECT_EQ(m.headAttachFrame().origin(), Orvo::Point3D(0, 0, 33 + 100 - 50 + 10));
  for (Part const* p : m.allParts()) EXPECT_TRUE(p->transformValid()) << p->definition()->identifier().id();
}

TEST(Part, SetAxisValueOnAPartWithoutAxisIsDropped) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.headAttachFrame();
  Part* const head = m.allPartsNonConst()[4];
  ASSERT_EQ(head->definition()->identifier(), MachinePartId("head"));
  head->setAxisValue(10.0);
  EXPECT_TRUE(head->transformValid());
  EXPECT_FALSE(head->axis());
}

namespace {

/// A part's transform from base as the chain reads: the parent's chain, then
/// the placement at the parent's attach frame, then the part's own axis
/// motion, each a full composition.
Orvo::Transform3D chainTransform(Part const& part) {
  Part const* const parent = part.parent();
  Orvo::Transform3D const chain = parent ? chainTransform(*parent) : Orvo::Transform3D();
  Orvo::Frame const attach = parent ? parent->definition()->attachFrame() : Orvo::Frame(Orvo::IdentityTag{});
  Orvo::Transform3D const placement = Orvo::activeTransform3D(Orvo::Frame(Orvo::IdentityTag{}), attach);
  Orvo::Transform3D const motion =
      part.axis() ? part.axis()->definition()->transformation(part.axis()->value()) : Orvo::Transform3D();
  return compose(chain, compose(placement, motion));
}

/// The example head-table machine with turned attach frames on a linear
/// part, a rotary part and a part without an axis, and a base part placed
/// by nothing.
machine::KinematicsDefinition turnedFramesKinematics() {
  auto const turned = [](double x, double y, double z) {
    return *Orvo::Frame::make(Orvo::Point3D(x, y, z), Orvo::Vector3D(0, 0.6, 0.8), Orvo::Vector3D(1, 0, 0));
  };
  auto b = mtkit_test::rotaryPart("b", "B", {0, 0, 150}, {0, 1, 0});
  b->setAttachFrame(turned(0, 0, -50));
  auto carrier = mtkit_test::staticPart("carrier");
  carrier->setAttachFrame(turned(3, -4, 12));
  auto head = mtkit_test::staticPart("head", PartType::HEAD);
  head->setAttachFrame(mtkit_test::frameAt(0, 0, 10));
  carrier->addChild(std::move(head));
  b->addChild(std::move(carrier));
  auto c = mtkit_test::rotaryPart("c", "C", {1, 2, 0}, {0, 0, 1});
  auto table = mtkit_test::staticPart("table", PartType::TABLE);
  table->setAttachFrame(mtkit_test::frameAt(20, 10, 5));
  c->addChild(std::move(table));
  auto z = mtkit_test::linearPart("z", "Z", {0, 0, 1});
  z->setAttachFrame(turned(0, 0, 100));
  auto x = mtkit_test::linearPart("x", "X", {1, 0, 0});
  x->setAttachFrame(mtkit_test::frameAt(0, 7, 0));
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::with(std::move(x), mtkit_test::with(mtkit_test::linearPart("y", "Y", {0, 1, 0}),
                                                                 mtkit_test::with(std::move(z), std::move(b)))));
  base.push_back(std::move(c));
  return mtkit_test::kinematicsOf(std::move(base));
}

}  // namespace

TEST(Part, TransformFromBaseIsTheParentsChainThenThePlacementThenTheAxisMotionOnEveryPartAfterEveryMove) {
  Machine m(turnedFramesKinematics());
  m.setAxisOrdering(m.fullOrdering());
  ASSERT_EQ(m.numOrderedParts(), 5);
  double const poses[][5] = {{0, 0, 0, 0, 0}, {10, -20, 30, 45, 90}, {10, -20, 31, 45, 90},
                             {11, -20, 31, -30, 90}, {11, -20, 31, -30, 17.5}};
  for (auto const& pose : poses) {
    m.moveTo(AxisValues(std::vector<Orvo::AxisValue>(std::begin(pose), std::end(pose))));
    // Query in an order that leaves part of each chain valid for the next.
    for (char const* id : {"head", "b", "table", "carrier", "x"}) {
      Part const* const part = get(m, id);
      EXPECT_TRUE(part->transform3DFromBase() == chainTransform(*part)) << id << " at " << pose[0];
    }
  }
}

TEST(Part, AChainDeeperThan32PartsIsComputedWhole) {
  // 40 rotary parts about alternating axes, each placing its child 50
  // further out, with a head at the end.
  auto tip = mtkit_test::staticPart("head", PartType::HEAD);
  for (int i = 40; i >= 1; --i) {
    std::string const id = "p" + std::to_string(i);
    auto part = mtkit_test::rotaryPart(id.c_str(), id.c_str(), {0, 0, 0}, i % 2 ? Orvo::Vector3D(0, 0, 1) : Orvo::Vector3D(0, 1, 0));
    part->setAttachFrame(mtkit_test::frameAt(0, 0, 50));
    part->addChild(std::move(tip));
    tip = std::move(part);
  }
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(std::move(tip));
  base.push_back(mtkit_test::staticPart("table", PartType::TABLE));
  Machine m(mtkit_test::kinematicsOf(std::move(base)));
  m.setAxisOrdering(m.fullOrdering());
  ASSERT_EQ(m.numOrderedParts(), 40);
  AxisValues values(40);
  for (int i = 0; i < 40; ++i) values.setValue(i, 3.0 + i);
  m.moveTo(values);
  Part const* const head = m.headPart();
  EXPECT_TRUE(head->transform3DFromBase() == chainTransform(*head));
  int valid = 0;
  head->visitChainToBase([&valid](Part const& p) { valid += p.transformValid() ? 1 : 0; });
  EXPECT_EQ(valid, 41);
}

TEST(Part, FrameInBaseIsTheFrameCarriedByTheTransformFromBase) {
  Machine m(turnedFramesKinematics());
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(std::vector<Orvo::AxisValue>{10, -20, 30, 45, 90}));
  Part const* const head = get(m, "head");
  Orvo::Frame const frame = mtkit_test::frameAt(1, 2, 3);
  // Worked out while the chain is invalid, then from the valid cache.
  ASSERT_FALSE(head->transformValid());
  Orvo::Frame const computed = head->frameInBase(frame);
  EXPECT_TRUE(head->transformValid());
  EXPECT_EQ(computed, frame.transformedBy(chainTransform(*head)));
  EXPECT_EQ(head->frameInBase(frame), frame.transformedBy(head->transform3DFromBase()));
}

TEST(Part, MovingABaseAxisInvalidatesEveryBranchBelowIt) {
  // x carries two branches: y with the head, and a static arm with a
  // static hand on it.
  auto arm = mtkit_test::staticPart("arm");
  arm->addChild(mtkit_test::staticPart("hand"));
  auto x = mtkit_test::linearPart("x", "X", {1, 0, 0});
  x->addChild(mtkit_test::with(mtkit_test::linearPart("y", "Y", {0, 1, 0}), mtkit_test::staticPart("head", PartType::HEAD)));
  x->addChild(std::move(arm));
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(std::move(x));
  base.push_back(mtkit_test::staticPart("table", PartType::TABLE));
  Machine m(mtkit_test::kinematicsOf(std::move(base)));
  for (Part const* p : m.allParts()) p->transform3DFromBase();
  m.moveAxis(get(m, "x"), 5.0);
  for (char const* id : {"x", "y", "head", "arm", "hand"}) EXPECT_FALSE(get(m, id)->transformValid()) << id;
  EXPECT_TRUE(get(m, "table")->transformValid());
  EXPECT_EQ(get(m, "hand")->transform3DFromBase().translation(), Orvo::Vector3D(5, 0, 0));
}
