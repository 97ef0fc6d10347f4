#include "machine/machine/MachineUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/Machine.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/TurretDefinition.h"
#include "machine/machine/UnknownMachineFeatureDefinition.h"
#include "support/AssertRecorder.h"

using machine::AxisConfiguration;
using machine::ControllerConfiguration;
using machine::KinematicsDefinition;
using machine::MachineDefinition;
using machine::MachineUtils;
using machine::PartDefinition;
using machine::PartType;
using Orvo::MachinePartId;

namespace {

using PartPtr = std::unique_ptr<PartDefinition>;

PartPtr part(char const* id, PartType type, std::vector<PartPtr> children = {}) {
  auto p = std::make_unique<PartDefinition>(MachinePartId(id), type);
  for (auto& child : children) p->addChild(std::move(child));
  return p;
}

PartPtr turret(char const* id, std::vector<PartPtr> children) {
  auto p = part(id, PartType::ROTARY, std::move(children));
  p->setTurretDefinition(machine::TurretDefinition(8));
  return p;
}

PartPtr spindleTable(char const* id) {
  auto p = part(id, PartType::TABLE);
  p->setSpindleDefinition(machine::SpindleDefinition(0.0, 4000.0, "main spindle"));
  return p;
}

KinematicsDefinition kinematics(std::vector<PartPtr> baseParts) {
  return KinematicsDefinition(std::move(baseParts), machine::MTKIOConverter());
}

std::vector<PartPtr> list(PartPtr a) {
  std::vector<PartPtr> v;
  v.push_back(std::move(a));
  return v;
}
std::vector<PartPtr> list(PartPtr a, PartPtr b) {
  std::vector<PartPtr> v = list(std::move(a));
  v.push_back(std::move(b));
  return v;
}

std::unique_ptr<ControllerConfiguration> controller(char const* name, char const* head, char const* table) {
  ControllerConfiguration::AxisConfigurationMap map;
  map.emplace(MachinePartId("X"), std::make_unique<AxisConfiguration>());
  auto c = std::make_unique<ControllerConfiguration>(std::move(map), name);
  if (head) c->setHeadInfoPartId(MachinePartId(head));
  if (table) c->setTablePartId(MachinePartId(table));
  return c;
}

}  // namespace

TEST(MachineUtils, ConstantTexts) {
  EXPECT_STREQ(MachineUtils::primarySpindleId, "primary_spindle");
  EXPECT_STREQ(MachineUtils::secondarySpindleId, "secondary_spindle");
  EXPECT_STREQ(MachineUtils::tableId, "table");
  EXPECT_STREQ(MachineUtils::headId, "head");
  EXPECT_STREQ(MachineUtils::turretId, "turret");
}

TEST(MachineUtils, DefaultConfigurationHasEntriesForStaticAndLinearParts) {
  auto b = std::make_unique<PartDefinition>(
      MachinePartId("B"), PartType::LINEAR, std::nullopt, std::nullopt, std::nullopt,
      std::make_unique<machine::LinearAxisDefinition>(machine::ControlType::DRIVEN, Orvo::AxisValue(0.0),
                                                      Orvo::AxisValue(0.0), Orvo::AxisName("X"), std::nullopt,
                                                      Orvo::Vector3D(1.0, 0.0, 0.0), std::nullopt, std::nullopt));
  KinematicsDefinition const k = kinematics(list(part("A", PartType::STATIC, list(std::move(b)))));
  auto const configuration = MachineUtils::makeDefaultControllerConfiguration(k);
  ASSERT_TRUE(configuration);
  EXPECT_EQ(configuration->name(), "default");
  EXPECT_EQ(configuration->axisConfigurations().size(), 2u);
  ASSERT_NE(configuration->axisConfiguration(MachinePartId("A")), nullptr);
  ASSERT_NE(configuration->axisConfiguration(MachinePartId("B")), nullptr);
  EXPECT_EQ(*configuration->axisConfiguration(MachinePartId("A")), AxisConfiguration());
  EXPECT_EQ(*configuration->axisConfiguration(MachinePartId("B")), AxisConfiguration());
  EXPECT_EQ(configuration->axisConfiguration(MachinePartId("__root")), nullptr);
  EXPECT_FALSE(configuration->headInfoPartId());
  EXPECT_FALSE(configuration->tablePartId());
  EXPECT_FALSE(configuration->maxNormalSpeed());
  EXPECT_FALSE(configuration->nonTcpRapidInterpolationMode());
}

TEST(MachineUtils, DefaultConfigurationFindsHeadAndTable) {
  KinematicsDefinition const k = kinematics(list(
      part("base", PartType::STATIC,
           list(part("Z", PartType::LINEAR, list(part("head", PartType::HEAD))), part("table", PartType::TABLE)))));
  auto const configuration = MachineUtils::makeDefaultControllerConfiguration(k);
  EXPECT_EQ(configuration->headInfoPartId(), MachinePartId("head"));
  EXPECT_EQ(configuration->tablePartId(), MachinePartId("table"));
  EXPECT_EQ(configuration->axisConfigurations().size(), 4u);
}

TEST(MachineUtils, SetKinematicsChainKeepsNamedHead) {
  KinematicsDefinition const k = kinematics(
      list(part("base", PartType::STATIC, list(part("head", PartType::HEAD), part("table", PartType::TABLE)))));
  auto configuration = controller("c", "my head", nullptr);
  MachineUtils::setKinematicsChainForControllerConfiguration(k, *configuration);
  EXPECT_EQ(configuration->headInfoPartId(), MachinePartId("my head"));
  EXPECT_EQ(configuration->tablePartId(), MachinePartId("table"));

  auto both = controller("d", "h", "t");
  MachineUtils::setKinematicsChainForControllerConfiguration(k, *both);
  EXPECT_EQ(both->headInfoPartId(), MachinePartId("h"));
  EXPECT_EQ(both->tablePartId(), MachinePartId("t"));
}

TEST(MachineUtils, FirstHeadAndTableInDepthFirstOrder) {
  KinematicsDefinition const k = kinematics(
      list(part("a", PartType::STATIC,
                list(part("z", PartType::STATIC, list(part("head2", PartType::HEAD))), part("head1", PartType::HEAD))),
           part("b", PartType::STATIC, list(part("tableB", PartType::TABLE), part("tableA", PartType::TABLE)))));
  auto configuration = controller("c", nullptr, nullptr);
  MachineUtils::setKinematicsChainForControllerConfiguration(k, *configuration);
  EXPECT_EQ(configuration->headInfoPartId(), MachinePartId("head2"));
  EXPECT_EQ(configuration->tablePartId(), MachinePartId("tableB"));
}

TEST(MachineUtils, HeadBelowRotaryWithoutTurretGivesHeadId) {
  KinematicsDefinition const k =
      kinematics(list(part("B", PartType::ROTARY, list(part("spindle head", PartType::HEAD)))));
  auto const configuration = MachineUtils::makeDefaultControllerConfiguration(k);
  EXPECT_EQ(configuration->headInfoPartId(), MachinePartId("spindle head"));
}

TEST(MachineUtils, HeadBelowTurretGivesTurretId) {
  KinematicsDefinition const k = kinematics(list(turret("turret", list(part("station 1", PartType::HEAD)))));
  auto const configuration = MachineUtils::makeDefaultControllerConfiguration(k);
  EXPECT_EQ(configuration->headInfoPartId(), MachinePartId("turret"));
}

TEST(MachineUtils, NoHeadPartLeavesHeadIdEmpty) {
  KinematicsDefinition const k = kinematics(list(part("base", PartType::STATIC, list(part("table", PartType::TABLE)))));
  auto const configuration = MachineUtils::makeDefaultControllerConfiguration(k);
  EXPECT_FALSE(configuration->headInfoPartId());
  EXPECT_EQ(configuration->tablePartId(), MachinePartId("table"));

  KinematicsDefinition const empty = kinematics({});
  auto const none = MachineUtils::makeDefaultControllerConfiguration(empty);
  EXPECT_TRUE(none->axisConfigurations().empty());
  EXPECT_FALSE(none->headInfoPartId());
  EXPECT_FALSE(none->tablePartId());
}

TEST(MachineUtils, GetControllerConfigurationMatchesBothIdsExactly) {
  MachineDefinition definition;
  definition.putFeature(controller("only head", "head", nullptr));
  definition.putFeature(std::make_unique<machine::UnknownMachineFeatureDefinition>("other", "x", Json::Value()));
  definition.putFeature(controller("first", "head", "table"));
  definition.putFeature(controller("second", "head", "table"));
  definition.putFeature(controller("upper", "HEAD", "table"));

  ControllerConfiguration const* found = MachineUtils::getControllerConfiguration(definition, "head", "table");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->name(), "first");
  found = MachineUtils::getControllerConfiguration(definition, "HEAD", "table");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->name(), "upper");
  EXPECT_EQ(MachineUtils::getControllerConfiguration(definition, "head", ""), nullptr);
  EXPECT_EQ(MachineUtils::getControllerConfiguration(definition, "head", "tabl"), nullptr);
  EXPECT_EQ(MachineUtils::getControllerConfiguration(MachineDefinition(), "head", "table"), nullptr);
}

TEST(MachineUtils, TurningSpindleIsATableThatSpins) {
  auto const primary = spindleTable("primary_spindle");
  auto const secondary = spindleTable("my_secondary_spindle_2");
  auto const plainTable = part("primary_spindle", PartType::TABLE);
  auto head = part("primary_spindle", PartType::HEAD);
  head->setSpindleDefinition(machine::SpindleDefinition(0.0, 1.0, ""));

  EXPECT_TRUE(MachineUtils::isPrimarySpindlePart(primary.get()));
  EXPECT_FALSE(MachineUtils::isSecondarySpindlePart(primary.get()));
  EXPECT_TRUE(MachineUtils::isSecondarySpindlePart(secondary.get()));
  EXPECT_FALSE(MachineUtils::isPrimarySpindlePart(secondary.get()));
  EXPECT_FALSE(MachineUtils::isPrimarySpindlePart(plainTable.get()));
  EXPECT_FALSE(MachineUtils::isPrimarySpindlePart(head.get()));
  EXPECT_TRUE(MachineUtils::isTurningSpindlePart(secondary.get(), ""));
  EXPECT_TRUE(MachineUtils::isTurningSpindlePart(secondary.get(), "spindle_2"));
  EXPECT_FALSE(MachineUtils::isTurningSpindlePart(secondary.get(), "Spindle"));
  EXPECT_FALSE(MachineUtils::isTurningSpindlePart(plainTable.get(), ""));
}

TEST(MachineUtils, TurningSpindleOfNullPartAsserts) {
  mtkit_test::AssertRecorder rec;
  EXPECT_FALSE(MachineUtils::isTurningSpindlePart(nullptr, ""));
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "EXPECTS:partDefinition");
  EXPECT_EQ(failures[0].file, "machine\\machine\\MachineUtils");
  EXPECT_FALSE(MachineUtils::isPrimarySpindlePart(nullptr));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"EXPECTS:partDefinition"}));
}

TEST(MachineUtils, DefaultConfigurationRoundTripsThroughJson) {
  KinematicsDefinition const k = kinematics(
      list(part("base", PartType::STATIC, list(part("head", PartType::HEAD), part("table", PartType::TABLE)))));
  auto const configuration = MachineUtils::makeDefaultControllerConfiguration(k);
  ControllerConfiguration const readBack(configuration->name(), configuration->getPersistData());
  EXPECT_EQ(readBack, *configuration);
}

namespace {

struct ExampleMachine {
  char const* file;
  std::size_t partCount;
  char const* defaultHead;
  char const* defaultTable;
};

std::unique_ptr<MachineDefinition> readExample(char const* file) {
  std::ifstream in(std::string(MTKIT_EXAMPLES_DIR) + "/machines/" + file);
  EXPECT_TRUE(in.good()) << file;
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  EXPECT_FALSE(result.isError()) << file << ": " << result.getReadErrorMessage();
  return result.isError() ? nullptr : result.getMachineDefinition();
}

}  // namespace

TEST(MachineUtils, ExampleMachinesGiveTheirDefaultConfigurations) {
  // Head and table as found depth first in each example's tree.
  ExampleMachine const examples[] = {
      {"headhead_5axis.json", 9, "fork_head", "table"},
      {"headtable_5axis.json", 9, "b_head", "rotary_table"},
      {"millturn_turret.json", 18, "turret", "primary_spindle"},
      {"trunnion_5axis.json", 9, "spindle_head", "rotary_table"},
      {"vmc_3axis.json", 7, "spindle_head", "table"},
  };
  for (ExampleMachine const& example : examples) {
    auto const definition = readExample(example.file);
    ASSERT_TRUE(definition);
    auto const* kinematics = dynamic_cast<KinematicsDefinition const*>(definition->getDefaultFeature("kinematics"));
    ASSERT_NE(kinematics, nullptr) << example.file;
    auto const configuration = MachineUtils::makeDefaultControllerConfiguration(*kinematics);
    EXPECT_EQ(configuration->axisConfigurations().size(), example.partCount) << example.file;
    for (PartDefinition const& part : kinematics->allParts())
      EXPECT_NE(configuration->axisConfiguration(part.identifier()), nullptr) << example.file << " " << part.id().id();
    EXPECT_EQ(configuration->headInfoPartId(), MachinePartId(example.defaultHead)) << example.file;
    EXPECT_EQ(configuration->tablePartId(), MachinePartId(example.defaultTable)) << example.file;
  }
}

TEST(MachineUtils, ExampleMachineControllersAreFoundByHeadAndTable) {
  auto const millTurn = readExample("millturn_turret.json");
  ASSERT_TRUE(millTurn);
  ControllerConfiguration const* found =
      MachineUtils::getControllerConfiguration(*millTurn, "milling_head", "secondary_spindle");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->name(), "sub_spindle");
  found = MachineUtils::getControllerConfiguration(*millTurn, "turret", "primary_spindle");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->name(), "lower_turret");
  EXPECT_EQ(MachineUtils::getControllerConfiguration(*millTurn, "turret", "secondary_spindle"), nullptr);

  // Two configurations with the same head and table: the first one counts.
  auto const trunnion = readExample("trunnion_5axis.json");
  ASSERT_TRUE(trunnion);
  found = MachineUtils::getControllerConfiguration(*trunnion, "spindle_head", "rotary_table");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->name(), "default");
}

TEST(MachineUtils, ExampleMillTurnSpindles) {
  auto const millTurn = readExample("millturn_turret.json");
  ASSERT_TRUE(millTurn);
  auto const* kinematics = dynamic_cast<KinematicsDefinition const*>(millTurn->getDefaultFeature("kinematics"));
  ASSERT_NE(kinematics, nullptr);
  std::vector<std::string> primary, secondary;
  for (PartDefinition const& part : kinematics->allParts()) {
    if (MachineUtils::isPrimarySpindlePart(&part)) primary.push_back(part.id().id());
    if (MachineUtils::isSecondarySpindlePart(&part)) secondary.push_back(part.id().id());
  }
  EXPECT_EQ(primary, std::vector<std::string>{"primary_spindle"});
  EXPECT_EQ(secondary, std::vector<std::string>{"secondary_spindle"});
}

namespace {

// The machine of an example machine file's default kinematics and
// controller, in the full ordering; null when the file does not give one.
std::unique_ptr<machine::Machine> defaultMachineOf(char const* file) {
  std::ifstream in(std::string(MTKIT_EXAMPLES_DIR) + "/machines/" + file);
  auto const definition = machine::MachineDefinitionReader().read(in).getMachineDefinition();
  if (!definition) return nullptr;
  auto const specification = machine::MachineSpecification::makeDefaultForDefinition(*definition, true);
  if (!specification) return nullptr;
  return std::make_unique<machine::Machine>(*specification);
}

}  // namespace

TEST(MachineUtilsTest, ChainFirstOrderingPutsTheHeadAndTableChainsFirst) {
  // The mill-turn: its controller drives the milling head (b, z1, y1, x1
  // towards the base) and the primary spindle (c1); the second spindle's W
  // and C2 and the turret's X2, Z2 and turret axis come after them.
  std::unique_ptr<machine::Machine> const built = defaultMachineOf("millturn_turret.json");
  ASSERT_TRUE(built);
  machine::Machine const& mill = *built;
  Orvo::AxisOrdering const full = mill.fullOrdering();
  Orvo::AxisOrdering const ordering = machine::MachineUtils::chainFirstOrdering(mill);
  ASSERT_EQ(ordering.size(), full.size());
  ASSERT_EQ(ordering.size(), 10);
  std::vector<std::string> const chains = {"b_axis", "c1_axis", "x1_axis", "y1_axis", "z1_axis"};
  std::vector<std::string> first, rest;
  for (int i = 0; i < ordering.size(); ++i) (i < 5 ? first : rest).push_back(ordering.machinePartId(i).id());
  std::vector<std::string> sortedFirst = first;
  std::sort(sortedFirst.begin(), sortedFirst.end());
  EXPECT_EQ(sortedFirst, chains);
  // Each group keeps the full ordering's order.
  auto positionInFull = [&](std::string const& id) {
    for (int i = 0; i < full.size(); ++i)
      if (full.machinePartId(i).id() == id) return i;
    return -1;
  };
  for (auto const* group : {&first, &rest})
    for (std::size_t i = 1; i < group->size(); ++i)
      EXPECT_LT(positionInFull((*group)[i - 1]), positionInFull((*group)[i])) << (*group)[i];
}

TEST(MachineUtils, TravelOfIsTheAxisRangeOfALimitedAxis) {
  // The 5-axis example: X -600..600, B -120..120 in its kinematics; C wraps
  // around from 0 to 360 in its controller; the bed has no axis.
  std::unique_ptr<machine::Machine> const built = defaultMachineOf("headtable_5axis.json");
  ASSERT_TRUE(built);
  machine::Machine const& mill = *built;
  auto const travelOf = [&](char const* id) {
    auto const found = mill.find(MachinePartId(id));
    EXPECT_TRUE(found) << id;
    return found ? MachineUtils::travelOf(**found) : std::nullopt;
  };
  auto const x = travelOf("x_axis");
  ASSERT_TRUE(x);
  EXPECT_EQ(x->min().value(), -600.0);
  EXPECT_EQ(x->max().value(), 600.0);
  auto const b = travelOf("b_axis");
  ASSERT_TRUE(b);
  EXPECT_EQ(b->min().value(), -120.0);
  EXPECT_EQ(b->max().value(), 120.0);
  EXPECT_FALSE(travelOf("c_axis")) << "a cyclic axis has no travel";
  EXPECT_FALSE(travelOf("bed")) << "a part without an axis has no travel";
}

TEST(MachineUtils, TravelOfAnAxisWithoutLimitsIsNone) {
  // A linear axis with neither minimum nor maximum: its range is infinite.
  std::vector<PartPtr> base;
  auto x = std::make_unique<PartDefinition>(
      MachinePartId("x"), PartType::LINEAR, std::nullopt, std::nullopt, std::nullopt,
      std::make_unique<machine::LinearAxisDefinition>(machine::ControlType::DRIVEN, 0.0, 0.0, Orvo::AxisName("X"),
                                                      std::nullopt, Orvo::Vector3D(1, 0, 0), std::nullopt,
                                                      std::nullopt));
  x->addChild(part("head", PartType::HEAD));
  base.push_back(std::move(x));
  base.push_back(part("table", PartType::TABLE));
  machine::Machine const free(kinematics(std::move(base)));
  auto const found = free.find(MachinePartId("x"));
  ASSERT_TRUE(found);
  ASSERT_TRUE((*found)->axis());
  EXPECT_TRUE((*found)->axis()->range().isInfinite());
  EXPECT_FALSE(MachineUtils::travelOf(**found));
}

TEST(MachineUtils, HeadFrameInTableIsWhatFkPrints) {
  // The 3-axis mill at X=10, Y=-5, Z=-20: the head's attach frame sits at
  // (10, -5, 130) in the table's coordinates, axes those of the table.
  std::unique_ptr<machine::Machine> const built = defaultMachineOf("vmc_3axis.json");
  ASSERT_TRUE(built);
  machine::Machine& mill = *built;
  for (auto const& [id, value] : {std::pair<char const*, double>{"x_axis", 10.0}, {"y_axis", -5.0}, {"z_axis", -20.0}}) {
    auto const part = mill.find(MachinePartId(id));
    ASSERT_TRUE(part) << id;
    mill.moveAxis(*part, value);
  }
  Orvo::Frame const head = MachineUtils::headFrameInTable(mill);
  EXPECT_NEAR(head.origin().x, 10.0, 1e-9);
  EXPECT_NEAR(head.origin().y, -5.0, 1e-9);
  EXPECT_NEAR(head.origin().z, 130.0, 1e-9);
  EXPECT_NEAR(head.zAxis().z, 1.0, 1e-12);
  EXPECT_NEAR(head.xAxis().x, 1.0, 1e-12);
}

TEST(MachineUtils, ToolReferenceFrameLiesTheToolLengthUpTheToolAxis) {
  Orvo::Frame const frame = MachineUtils::toolReferenceFrame(40.0);
  EXPECT_EQ(frame.origin().x, 0.0);
  EXPECT_EQ(frame.origin().y, 0.0);
  EXPECT_EQ(frame.origin().z, 40.0);
  EXPECT_EQ(frame.xAxis().x, 1.0);
  EXPECT_EQ(frame.zAxis().z, 1.0);
}
