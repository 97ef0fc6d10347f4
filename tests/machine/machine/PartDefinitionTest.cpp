#include "machine/machine/PartDefinition.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "support/AssertRecorder.h"

using namespace machine;
using Orvo::AxisName;
using Orvo::AxisValue;
using Orvo::MachinePartId;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {

std::unique_ptr<PartDefinition> part(char const* id, PartType type) {
  return std::make_unique<PartDefinition>(MachinePartId(id), type);
}

std::unique_ptr<LinearAxisDefinition> linearAxis() {
  return std::make_unique<LinearAxisDefinition>(ControlType::DRIVEN, 0.0, 0.0, AxisName("X"), std::nullopt,
                                                Vector3D(1, 0, 0), AxisValue(-10), AxisValue(10));
}

std::vector<std::string> idsOf(PartDefinition const& p) {
  std::vector<std::string> ids;
  for (auto const& c : p.children()) ids.push_back(c.identifier().id());
  return ids;
}

// root -> base -> {x -> head, c -> table}
std::unique_ptr<PartDefinition> tree() {
  auto root = part("root", PartType::ROOT);
  auto base = part("base", PartType::STATIC);
  auto x = std::make_unique<PartDefinition>(MachinePartId("x"), PartType::LINEAR, std::nullopt, std::nullopt,
                                            std::nullopt, linearAxis());
  x->addChild(part("head", PartType::HEAD));
  auto c = part("c", PartType::ROTARY);
  c->addChild(part("table", PartType::TABLE));
  base->addChild(std::move(x));
  base->addChild(std::move(c));
  root->addChild(std::move(base));
  return root;
}

}  // namespace

TEST(PartDefinition, ParentOfADirectChildOfTheRootIsNull) {
  auto root = tree();
  PartDefinition const* base = *root->find(MachinePartId("base"));
  EXPECT_EQ(base->parent(), nullptr);
  // The stored parent pointer is set all the same: detaching goes through it.
  auto detached = root->detachPart(base);
  ASSERT_TRUE(detached);
  EXPECT_EQ(detached->identifier().id(), "base");
  EXPECT_TRUE(root->children().empty());
}

TEST(PartDefinition, ParentOfDeeperPartIsItsParent) {
  auto root = tree();
  PartDefinition const* head = *root->find(MachinePartId("head"));
  ASSERT_NE(head->parent(), nullptr);
  EXPECT_EQ(head->parent()->identifier().id(), "x");
}

TEST(PartDefinition, VisitChainToBaseOnADirectChildOfTheRootVisitsThatChildAlone) {
  auto root = tree();
  std::vector<std::string> visited;
  (*root->find(MachinePartId("base")))->visitChainToBase([&](PartDefinition const& p) {
    visited.push_back(p.identifier().id());
  });
  EXPECT_EQ(visited, std::vector<std::string>{"base"});
}

TEST(PartDefinition, VisitChainToBaseWalksUpToBeforeTheRoot) {
  auto root = tree();
  std::vector<std::string> visited;
  (*root->find(MachinePartId("table")))->visitChainToBase([&](PartDefinition const& p) {
    visited.push_back(p.identifier().id());
  });
  EXPECT_EQ(visited, (std::vector<std::string>{"table", "c", "base"}));
}

TEST(PartDefinition, ChainTypeOfALeafThatIsNeitherHeadNorTableIsStatic) {
  auto rotaryLeaf = part("leaf", PartType::ROTARY);
  EXPECT_EQ(rotaryLeaf->chainType(), PartType::STATIC);
  auto linearLeaf = std::make_unique<PartDefinition>(MachinePartId("l"), PartType::LINEAR, std::nullopt,
                                                     std::nullopt, std::nullopt, linearAxis());
  EXPECT_EQ(linearLeaf->chainType(), PartType::STATIC);
}

TEST(PartDefinition, ChainTypeWithHeadAndTableBelowGivesTheFirstInChildOrder) {
  auto root = tree();
  PartDefinition const* base = *root->find(MachinePartId("base"));
  EXPECT_EQ(base->chainType(), PartType::HEAD);
  EXPECT_EQ((*root->find(MachinePartId("c")))->chainType(), PartType::TABLE);
  EXPECT_EQ((*root->find(MachinePartId("table")))->chainType(), PartType::TABLE);
  // Swap the order: table chain first.
  auto other = part("base2", PartType::STATIC);
  auto c = part("c", PartType::ROTARY);
  c->addChild(part("table", PartType::TABLE));
  other->addChild(std::move(c));
  other->addChild(part("head", PartType::HEAD));
  EXPECT_EQ(other->chainType(), PartType::TABLE);
}

TEST(PartDefinition, SetAxisDefinitionNullOnALinearPartTurnsItStatic) {
  PartDefinition p(MachinePartId("x"), PartType::LINEAR, std::nullopt, std::nullopt, std::nullopt, linearAxis());
  p.setAxisDefinition(nullptr);
  EXPECT_EQ(p.type(), PartType::STATIC);
  EXPECT_EQ(p.axisDefinition(), nullptr);
}

TEST(PartDefinition, SetAxisDefinitionSetsTheTypeFromTheAxis) {
  PartDefinition p(MachinePartId("p"), PartType::STATIC);
  p.setAxisDefinition(std::make_unique<InfiniteRotaryAxisDefinition>(ControlType::DRIVEN, 0.0, 0.0, AxisName("C"),
                                                                     std::nullopt, Point3D(), Vector3D(0, 0, 1)));
  EXPECT_EQ(p.type(), PartType::ROTARY);
  p.setAxisDefinition(linearAxis());
  EXPECT_EQ(p.type(), PartType::LINEAR);
}

TEST(PartDefinition, SetAxisDefinitionOnHeadFails) {
  mtkit_test::AssertRecorder rec;
  PartDefinition p(MachinePartId("h"), PartType::HEAD);
  p.setAxisDefinition(linearAxis());
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].expression, "m_type != PartType::HEAD && m_type != PartType::TABLE");
  EXPECT_EQ(f[0].file, "machine\\machine\\PartDefinition");
  EXPECT_EQ(p.type(), PartType::LINEAR);  // stored anyway
}

TEST(PartDefinition, AxisOnAStaticPartFailsOnlyLinearOrRotary) {
  mtkit_test::AssertRecorder rec;
  PartDefinition p(MachinePartId("s"), PartType::STATIC, std::nullopt, std::nullopt, std::nullopt, linearAxis());
  EXPECT_EQ(rec.takeTexts(),
            std::vector<std::string>{
                "(!m_axisDefinition || m_type == PartType::LINEAR || m_type == PartType::ROTARY) && \"Only linear or "
                "rotary axis parts should have axis definitions.\""});
}

TEST(PartDefinition, FindIncludesTheNodeItselfThenDepthFirst) {
  auto root = tree();
  EXPECT_EQ(*root->find(MachinePartId("root")), root.get());
  EXPECT_TRUE(root->find(MachinePartId("table")));
  EXPECT_FALSE(root->find(MachinePartId("nothing")));
  EXPECT_EQ(root->findByType(PartType::TABLE)->identifier().id(), "table");
  EXPECT_EQ(root->findByType(PartType::ROOT), root.get());
  auto base = part("only", PartType::STATIC);
  EXPECT_EQ(base->findByType(PartType::HEAD), nullptr);
}

TEST(PartDefinition, DeepCopyGivesChildrenTheNewParent) {
  auto root = tree();
  PartDefinition const copy(CopyTag{}, *root);
  PartDefinition const* head = *copy.find(MachinePartId("head"));
  EXPECT_NE(head, *root->find(MachinePartId("head")));
  EXPECT_EQ(head->parent(), *copy.find(MachinePartId("x")));
  EXPECT_NE(head->parent()->axisDefinition(), (*root->find(MachinePartId("x")))->axisDefinition());
  EXPECT_EQ(idsOf(**copy.find(MachinePartId("base"))), (std::vector<std::string>{"x", "c"}));
}

TEST(PartDefinition, CopyWithoutChildrenCopiesOneNode) {
  auto root = tree();
  PartDefinition const* x = *root->find(MachinePartId("x"));
  PartDefinition const single(CopyWithoutChildrenTag{}, *x);
  EXPECT_TRUE(single.children().empty());
  EXPECT_EQ(single.parent(), nullptr);
  EXPECT_EQ(single.type(), PartType::LINEAR);
  ASSERT_NE(single.axisDefinition(), nullptr);
  EXPECT_NE(single.axisDefinition(), x->axisDefinition());
}

TEST(PartDefinition, EditPartWithSettingsOfAnotherIdentifierRenamesThePart) {
  auto root = tree();
  PartDefinition const* x = *root->find(MachinePartId("x"));
  PartDefinition settings(MachinePartId("x2"), PartType::LINEAR, std::nullopt, std::nullopt, std::nullopt,
                          linearAxis());
  settings.setDisplayName(DisplayName("Renamed"));
  root->editPart(x, settings);
  EXPECT_FALSE(root->find(MachinePartId("x")));
  auto const renamed = root->find(MachinePartId("x2"));
  ASSERT_TRUE(renamed);
  EXPECT_EQ((*renamed)->displayName()->name(), "Renamed");
  EXPECT_EQ(idsOf(**renamed), std::vector<std::string>{"head"});  // subtree kept
}

TEST(PartDefinition, AttachPartAddsBelowTheParent) {
  auto root = tree();
  PartDefinition const* c = *root->find(MachinePartId("c"));
  root->attachPart(part("fixture", PartType::STATIC), c);
  EXPECT_EQ(idsOf(*c), (std::vector<std::string>{"table", "fixture"}));
  EXPECT_EQ((*root->find(MachinePartId("fixture")))->parent(), c);
}

TEST(PartDefinition, AttachPartToForeignParentFails) {
  mtkit_test::AssertRecorder rec;
  auto root = tree();
  auto other = tree();
  root->attachPart(part("fixture", PartType::STATIC), *other->find(MachinePartId("c")));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"parent == find(parent->m_identifier)",
                                                       "part == find(part->m_identifier)"}));
}

TEST(PartDefinition, DetachPartKeepsTheOrderOfTheOthers) {
  auto root = tree();
  PartDefinition const* base = *root->find(MachinePartId("base"));
  root->attachPart(part("third", PartType::STATIC), base);
  auto x = root->detachPart(*root->find(MachinePartId("x")));
  ASSERT_TRUE(x);
  EXPECT_EQ(x->parent(), nullptr);
  EXPECT_EQ(idsOf(*base), (std::vector<std::string>{"c", "third"}));
  EXPECT_FALSE(root->find(MachinePartId("head")));
  EXPECT_TRUE(x->find(MachinePartId("head")));
}

TEST(PartDefinition, DetachingTheNodeItselfFails) {
  mtkit_test::AssertRecorder rec;
  auto root = tree();
  auto none = root->detachPart(root.get());
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(rec.takeTexts(),
            (std::vector<std::string>{"part != this && part == find(part->m_identifier)", "detachedPart"}));
}

TEST(PartDefinition, DetachingAPartWithAStaleParentFailsChildIter) {
  mtkit_test::AssertRecorder rec;
  auto root = tree();
  // A part whose parent pointer says "base" but which base doesn't hold: its
  // own detached subtree keeps no link, so build the stale state by detaching
  // and re-reading through the copy of the tree.
  PartDefinition const* base = *root->find(MachinePartId("base"));
  auto x = root->detachPart(*root->find(MachinePartId("x")));
  rec.take();
  // x is no longer in the tree: the find check fails and so do the ones after.
  root->detachPart(x.get());
  auto const texts = rec.takeTexts();
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ(texts.front(), "part != this && part == find(part->m_identifier)");
  EXPECT_EQ(texts.back(), "detachedPart");
  EXPECT_EQ(idsOf(*base), std::vector<std::string>{"c"});
}

TEST(PartDefinition, IsTurretPartNeedsRotaryAndTurret) {
  PartDefinition p(MachinePartId("t"), PartType::ROTARY);
  EXPECT_FALSE(p.isTurretPart());
  p.setTurretDefinition(TurretDefinition(8));
  EXPECT_TRUE(p.isTurretPart());
  PartDefinition s(MachinePartId("s"), PartType::STATIC);
  s.setTurretDefinition(TurretDefinition(8));
  EXPECT_FALSE(s.isTurretPart());
}

TEST(PartDefinition, EmptyFrameLeavesIdentity) {
  PartDefinition const p(MachinePartId("p"), PartType::STATIC, std::nullopt, std::nullopt, std::nullopt, nullptr);
  EXPECT_EQ(p.attachFrame(), Orvo::Frame(Orvo::IdentityTag{}));
}

TEST(DisplayName, CarriageReturnAndLineFeedBetweenTwoLettersReadAsTheTwoLetters) {
  EXPECT_EQ(DisplayName("a\r\nb").name(), "ab");
  EXPECT_EQ(DisplayName(std::string("x\ny")).name(), "xy");
  EXPECT_EQ(DisplayName(std::string_view("p\rq")).name(), "pq");
  EXPECT_STREQ(DisplayName("a\r\nb").c_str(), "ab");
}
