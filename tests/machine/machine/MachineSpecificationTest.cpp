#include "machine/machine/MachineSpecification.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "machine/machine/Machine.h"
#include "machine/machine/TurretDefinition.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::ControllerConfiguration;
using machine::Machine;
using machine::MachineDefinition;
using machine::MachineSpecification;
using machine::PartDefinition;
using machine::PartType;
using Orvo::MachinePartId;

namespace {

/// A turret (rotary with a turret definition) carrying the given heads in
/// that child order, and a table.
machine::KinematicsDefinition turretWith(std::vector<char const*> const& headIds) {
  auto turret = mtkit_test::rotaryPart("turret", "T", {0, 0, 0}, {0, 0, 1});
  turret->setTurretDefinition(machine::TurretDefinition(8));
  for (char const* id : headIds) turret->addChild(mtkit_test::staticPart(id, PartType::HEAD));
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(std::move(turret));
  base.push_back(mtkit_test::staticPart("table", PartType::TABLE));
  return mtkit_test::kinematicsOf(std::move(base));
}

std::string toolFrameId(machine::KinematicsDefinition const& kinematics) {
  MachineSpecification const specification(kinematics, nullptr, true);
  PartDefinition const* const part = specification.toolFramePart();
  return part ? part->identifier().id() : "<null>";
}

}  // namespace

TEST(MachineSpecification, WithoutAConfigurationADefaultIsMade) {
  auto const kinematics = mtkit_test::fiveAxisKinematics();
  MachineSpecification const specification(kinematics, nullptr, false);
  EXPECT_FALSE(specification.liveTool());
  EXPECT_NE(specification.kinematicsDefinition(), &kinematics);
  EXPECT_EQ(specification.controllerConfiguration()->name(), "default");
  EXPECT_EQ(specification.controllerConfiguration()->headInfoPartId(), MachinePartId("head"));
  EXPECT_EQ(specification.controllerConfiguration()->tablePartId(), MachinePartId("table"));
  EXPECT_NE(specification.controllerConfiguration()->axisConfiguration(MachinePartId("head")), nullptr);
}

TEST(MachineSpecification, AGivenConfigurationIsCopiedAndCompleted) {
  auto const kinematics = mtkit_test::fiveAxisKinematics();
  ControllerConfiguration configuration;
  configuration.setName("mine");
  configuration.setTablePartId(MachinePartId("c"));
  MachineSpecification const specification(kinematics, &configuration, true);
  EXPECT_NE(specification.controllerConfiguration(), &configuration);
  EXPECT_EQ(specification.controllerConfiguration()->name(), "mine");
  EXPECT_EQ(specification.controllerConfiguration()->headInfoPartId(), MachinePartId("head"));
  EXPECT_EQ(specification.controllerConfiguration()->tablePartId(), MachinePartId("c"));
  EXPECT_FALSE(configuration.headInfoPartId());
}

TEST(MachineSpecification, ConstRvalueCopyIsDeepAndLeavesTheSource) {
  MachineSpecification const source(mtkit_test::fiveAxisKinematics(), nullptr, true);
  MachineSpecification copy(std::move(source));
  EXPECT_NE(copy.kinematicsDefinition(), source.kinematicsDefinition());
  EXPECT_NE(copy.controllerConfiguration(), source.controllerConfiguration());
  EXPECT_EQ(*copy.controllerConfiguration(), *source.controllerConfiguration());
  MachineSpecification other(mtkit_test::threeAxisKinematics(), nullptr, false);
  other = std::move(source);
  EXPECT_TRUE(other.liveTool());
  EXPECT_EQ(other.kinematicsDefinition()->allParts().size(), 7u);
  EXPECT_NE(other.kinematicsDefinition(), source.kinematicsDefinition());
}

TEST(MachineSpecification, MakeDefaultForDefinitionUsesTheDefaultFeatures) {
  MachineDefinition empty;
  EXPECT_FALSE(MachineSpecification::makeDefaultForDefinition(empty, true));

  MachineDefinition::FeatureVector features;
  features.push_back(mtkit_test::fiveAxisKinematics().clone());
  auto configuration = std::make_unique<ControllerConfiguration>();
  configuration->setName("second");
  configuration->setTablePartId(MachinePartId("c"));
  features.push_back(std::move(configuration));
  MachineDefinition const definition(machine::MachineGeneralDefinition(), std::move(features), {});
  auto const specification = MachineSpecification::makeDefaultForDefinition(definition, false);
  ASSERT_TRUE(specification);
  EXPECT_FALSE(specification->liveTool());
  EXPECT_EQ(specification->controllerConfiguration()->name(), "second");
  EXPECT_EQ(Machine(*specification).tablePart()->definition()->identifier(), MachinePartId("c"));
}

TEST(MachineSpecification, ToolFramePartOnATurretWithHeadsTool12AndTool3GivesTool3) {
  EXPECT_EQ(toolFrameId(turretWith({"tool12", "tool3"})), "tool3");
}

TEST(MachineSpecification, AHeadIdThatNamesATurretGivesHeadPartTheFirstHeadBeneathItWhileToolFramePartTheLowestNumber) {
  auto const kinematics = turretWith({"tool12", "tool3"});
  MachineSpecification const specification(kinematics, nullptr, true);
  EXPECT_EQ(specification.controllerConfiguration()->headInfoPartId(), MachinePartId("turret"));
  Machine const m(specification);
  EXPECT_EQ(m.headPart()->definition()->identifier(), MachinePartId("tool12"));
  EXPECT_EQ(specification.toolFramePart()->identifier(), MachinePartId("tool3"));
}

TEST(MachineSpecification, ToolFramePartTiesNoDigitsAndTheLargestInt) {
  // On a tie the first in child order; no trailing digit counts as 0.
  EXPECT_EQ(toolFrameId(turretWith({"a7", "b7"})), "a7");
  EXPECT_EQ(toolFrameId(turretWith({"tool1", "spindle"})), "spindle");
  EXPECT_EQ(toolFrameId(turretWith({"t2147483647"})), "<null>");
  EXPECT_EQ(toolFrameId(turretWith({"t2147483647", "t2147483646"})), "t2147483646");
  // A turret with no head at all leaves the head id unset.
  EXPECT_THROW(toolFrameId(turretWith({})), std::bad_optional_access);
}

TEST(MachineSpecification, ToolFramePartThrowsTheStoiTextsForATooLargeNumber) {
  try {
    toolFrameId(turretWith({"tool3", "tool99999999999"}));
    FAIL() << "expected std::out_of_range";
  } catch (std::out_of_range const& e) {
    EXPECT_STREQ(e.what(), "stoi argument out of range");
  }
}

TEST(MachineSpecification, ToolFramePartOfAHeadOrANonTurretPart) {
  EXPECT_EQ(toolFrameId(mtkit_test::fiveAxisKinematics()), "head");
  auto const kinematics = mtkit_test::fiveAxisKinematics();
  ControllerConfiguration configuration;
  configuration.setHeadInfoPartId(MachinePartId("b"));
  MachineSpecification const specification(kinematics, &configuration, true);
  EXPECT_EQ(specification.toolFramePart(), nullptr);
}

TEST(MachineSpecification, ToolFramePartWithoutHeadIdThrowsBadOptionalAccess) {
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::staticPart("table", PartType::TABLE));
  MachineSpecification const specification(mtkit_test::kinematicsOf(std::move(base)), nullptr, true);
  EXPECT_THROW(specification.toolFramePart(), std::bad_optional_access);
}
