#include "machine/machine/KinematicsDefinition.h"

#include <gtest/gtest.h>

#include "machine/machine/LinearAxisDefinition.h"
#include "support/AssertRecorder.h"

using machine::CopyTag;
using machine::KinematicsDefinition;
using machine::MTKIOConverter;
using machine::PartDefinition;
using machine::PartType;

namespace {

std::unique_ptr<PartDefinition> part(char const* id, PartType type = PartType::STATIC) {
  return std::make_unique<PartDefinition>(Orvo::MachinePartId(id), type);
}

std::vector<std::string> ids(machine::DescendantRange const& range) {
  std::vector<std::string> out;
  for (PartDefinition const& p : range) out.push_back(p.identifier().id());
  return out;
}

template <typename Range>
std::vector<std::string> childIds(Range const& range) {
  std::vector<std::string> out;
  for (PartDefinition const& p : range) out.push_back(p.identifier().id());
  return out;
}

/// Root with child A (which has child B) and child C.
KinematicsDefinition abc() {
  std::vector<std::unique_ptr<PartDefinition>> base;
  base.push_back(part("A"));
  base.back()->addChild(part("B"));
  base.push_back(part("C"));
  return KinematicsDefinition(std::move(base), MTKIOConverter());
}

PartDefinition const* get(KinematicsDefinition const& k, char const* id) { return *k.find(Orvo::MachinePartId(id)); }

}  // namespace

TEST(KinematicsDefinition, AllPartsOfEmptyDefinitionIsEmpty) {
  KinematicsDefinition const k({}, MTKIOConverter());
  EXPECT_TRUE(k.allParts().empty());
  EXPECT_EQ(k.allParts().size(), 0u);
  EXPECT_TRUE(k.baseParts().empty());
  EXPECT_EQ(k.featureTypeId(), "kinematics");
  EXPECT_EQ(k.featureId(), "default");
}

TEST(KinematicsDefinition, AllPartsIsDepthFirstPreOrderWithoutRoot) {
  KinematicsDefinition const k = abc();
  EXPECT_EQ(ids(k.allParts()), (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_EQ(childIds(k.baseParts()), (std::vector<std::string>{"A", "C"}));
  EXPECT_EQ(get(k, "B")->parent(), get(k, "A"));
  EXPECT_EQ(get(k, "A")->parent(), nullptr);
}

TEST(KinematicsDefinition, AllPartsIsASnapshot) {
  KinematicsDefinition k = abc();
  machine::DescendantRange const before = k.allParts();
  k.attachPart(part("D"), nullptr);
  EXPECT_EQ(ids(before), (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_EQ(k.allParts().size(), 4u);
}

TEST(KinematicsDefinition, FindingRootIdFindsHiddenRoot) {
  KinematicsDefinition const k = abc();
  auto const root = k.find(Orvo::MachinePartId("__root"));
  ASSERT_TRUE(root.has_value());
  EXPECT_EQ((*root)->type(), PartType::ROOT);
  EXPECT_EQ((*root)->children().size(), 2u);
  EXPECT_FALSE(k.find(Orvo::MachinePartId("nope")).has_value());
}

TEST(KinematicsDefinition, AttachPartWithNullParentMakesBasePart) {
  KinematicsDefinition k = abc();
  mtkit_test::AssertRecorder rec;
  k.attachPart(part("D"), nullptr);
  EXPECT_EQ(childIds(k.baseParts()), (std::vector<std::string>{"A", "C", "D"}));
  EXPECT_EQ(get(k, "D")->parent(), nullptr);
  k.attachPart(part("E"), get(k, "B"));
  EXPECT_EQ(get(k, "E")->parent(), get(k, "B"));
  EXPECT_TRUE(rec.takeTexts().empty());
}

TEST(KinematicsDefinition, GetPartsByTypeSortedOrdersByIdentifierNotTreePosition) {
  std::vector<std::unique_ptr<PartDefinition>> base;
  base.push_back(part("zeta", PartType::HEAD));
  base.back()->addChild(part("alpha", PartType::HEAD));
  base.push_back(part("mid", PartType::TABLE));
  base.push_back(part("beta", PartType::HEAD));
  KinematicsDefinition const k(std::move(base), MTKIOConverter());
  std::vector<std::string> out;
  for (auto const* p : k.getPartsByTypeSorted(PartType::HEAD)) out.push_back(p->identifier().id());
  EXPECT_EQ(out, (std::vector<std::string>{"alpha", "beta", "zeta"}));
  EXPECT_EQ(k.getPartsByTypeSorted(PartType::TABLE).size(), 1u);
  EXPECT_TRUE(k.getPartsByTypeSorted(PartType::ROTARY).empty());
}

TEST(KinematicsDefinition, CopyWithCopyTagSharesNoNode) {
  KinematicsDefinition k = abc();
  k.setFeatureId("mine");
  KinematicsDefinition copy(CopyTag{}, k);
  EXPECT_EQ(copy.featureId(), "mine");
  EXPECT_NE(get(copy, "B"), get(k, "B"));
  EXPECT_EQ(get(copy, "B")->parent(), get(copy, "A"));

  PartDefinition settings(Orvo::MachinePartId("B2"), PartType::HEAD);
  copy.editPart(get(copy, "B"), settings);
  EXPECT_TRUE(copy.find(Orvo::MachinePartId("B2")).has_value());
  EXPECT_FALSE(k.find(Orvo::MachinePartId("B2")).has_value());
  EXPECT_EQ(get(k, "B")->type(), PartType::STATIC);
  k.detachPart(get(k, "C"));
  EXPECT_EQ(ids(copy.allParts()), (std::vector<std::string>{"A", "B2", "C"}));
  EXPECT_EQ(ids(k.allParts()), (std::vector<std::string>{"A", "B"}));
  auto const clone = copy.clone();
  EXPECT_EQ(ids(clone->allParts()), (std::vector<std::string>{"A", "B2", "C"}));
}

TEST(KinematicsDefinition, TransferPartAndLinksOntoCurrentParentMovesToEnd) {
  std::vector<std::unique_ptr<PartDefinition>> base;
  base.push_back(part("P"));
  base.back()->addChild(part("X"));
  base.back()->addChild(part("Y"));
  base.back()->addChild(part("Z"));
  base.front()->children();
  KinematicsDefinition k(std::move(base), MTKIOConverter());
  k.attachPart(part("X1"), get(k, "X"));
  k.transferPartAndLinks(get(k, "X"), get(k, "P"));
  EXPECT_EQ(childIds(get(k, "P")->children()), (std::vector<std::string>{"Y", "Z", "X"}));
  EXPECT_EQ(childIds(get(k, "X")->children()), std::vector<std::string>{"X1"});
  k.transferPartAndLinks(get(k, "Y"), nullptr);
  EXPECT_EQ(childIds(k.baseParts()), (std::vector<std::string>{"P", "Y"}));
  EXPECT_EQ(get(k, "Y")->parent(), nullptr);
}

TEST(KinematicsDefinition, DetachPartHandsBackSubtree) {
  KinematicsDefinition k = abc();
  auto const detached = k.detachPart(get(k, "A"));
  ASSERT_NE(detached, nullptr);
  EXPECT_EQ(detached->children().size(), 1u);
  EXPECT_EQ(ids(k.allParts()), std::vector<std::string>{"C"});
}

TEST(KinematicsDefinition, ForeignPointersBreakTheirAssertions) {
  KinematicsDefinition k = abc();
  KinematicsDefinition other = abc();
  mtkit_test::AssertRecorder rec;
  PartDefinition const settings(Orvo::MachinePartId("C"), PartType::HEAD);
  k.editPart(get(other, "C"), settings);
  auto texts = rec.takeTexts();
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ(texts.front(), "existingPart == find(existingPart->identifier())");

  PartDefinition const stranger(Orvo::MachinePartId("S"), PartType::STATIC);
  k.attachPart(part("T"), get(other, "B"));
  texts = rec.takeTexts();
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ(texts.front(), "parent == find(parent->identifier())");

  auto const d = k.detachPart(&stranger);
  texts = rec.takeTexts();
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ(texts.front(), "part == find(part->identifier())");
  EXPECT_EQ(d, nullptr);
}
