#include "machine/machine/Part.h"

#include <gtest/gtest.h>

#include "machine/machine/Machine.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::Machine;
using machine::Part;
using machine::PartDefinition;
using machine::PartType;
using Orvo::AxisName;
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
