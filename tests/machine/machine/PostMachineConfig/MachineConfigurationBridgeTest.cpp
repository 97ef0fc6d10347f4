// The script-facing configuration made from a machine definition: the
// translation step by step on small trees written here, and the
// configurations of the example machines, whose expected axes are read off
// the files by hand and listed below.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/JsonText.h"

using com::vantora::Vector;
using com::vantora::VectorPair;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::MultiAxisFeedrate;
using com::vantora::post::MultiAxisRetractAndReconfigure;
using com::vantora::post::MultiAxisSingularity;
using machine::MachineDefinition;
using mtkit_test::parseJson;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180;
constexpr double kAngleTolerance = 1e-12;

std::unique_ptr<MachineDefinition> readDefinition(std::string const& text) {
  std::istringstream in(text);
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) {
    ADD_FAILURE() << result.getReadErrorMessage();
    return nullptr;
  }
  return result.getMachineDefinition();
}

std::unique_ptr<MachineDefinition> readExample(std::string const& name) {
  std::ifstream in(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines" / name, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return readDefinition(text.str());
}

machine::KinematicsDefinition kinematics(std::string const& parts) {
  return machine::KinematicsDefinition("default", parseJson(R"({"conventions": {"rotation": "right-handed"},
      "units": {"length": "mm", "angle": "degrees"}, "parts": )" + parts + "}"));
}

bool same(Vector const& v, double x, double y, double z, double tolerance = 0) {
  return std::fabs(v.x - x) <= tolerance && std::fabs(v.y - y) <= tolerance && std::fabs(v.z - z) <= tolerance;
}

::testing::AssertionResult sameVector(Vector const& v, double x, double y, double z, double tolerance = 0) {
  if (same(v, x, y, z, tolerance)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "(" << v.x << ", " << v.y << ", " << v.z << ") is not (" << x << ", " << y
                                       << ", " << z << ")";
}

// A small milling machine: X and Y carry the table, Z carries the head; the
// Y axis's control is filled in by each test.
std::string threeAxisParts(std::string const& yControl) {
  return R"([{"id": "base", "type": "static", "parts": [
      {"id": "x_axis", "type": "linear", "control": "driven", "direction": [1, 0, 0], "min": -100, "max": 100,
       "parts": [{"id": "y_axis", "type": "linear", "control": ")" +
         yControl + R"(", "direction": [0, 1, 0], "min": -50, "max": 50,
         "parts": [{"id": "table", "type": "table",
                    "attach_frame": {"point": [0, 0, 10], "x_direction": [1, 0, 0], "z_direction": [0, 0, 1]}}]}]},
      {"id": "z_axis", "type": "linear", "control": "manual", "direction": [0, 0, 1], "min": -200, "max": 0,
       "parts": [{"id": "head", "type": "head",
                  "attach_frame": {"point": [0, 0, 100], "x_direction": [1, 0, 0], "z_direction": [0, 0, 1]}}]}]}])";
}

/// One expected axis of a configuration.
struct ExpectedAxis {
  MachineConfiguration::AxisId slot;
  char const* partId;
  bool table;
  bool linear;
  Vector axis;  // as stored: the definition's direction times the sign
  int coordinate;
  bool ranged;
  double minimum;  // mm or degrees
  double maximum;
  bool cyclic;
};

void expectAxes(MachineConfiguration const& c, std::vector<ExpectedAxis> const& expected) {
  ASSERT_EQ(c.getNumberOfAxes(), expected.size());
  for (unsigned int i = 0; i < expected.size(); ++i) {
    ExpectedAxis const& e = expected[i];
    SCOPED_TRACE(e.partId);
    EXPECT_EQ(c.getIndexOfAxisById(e.slot), static_cast<int>(i));
    Axis const& a = c.getAxisByOrder(i);
    EXPECT_TRUE(a.isEnabled());
    EXPECT_EQ(a.getMachinePartId().id(), e.partId);
    EXPECT_EQ(a.isTable(), e.table);
    EXPECT_EQ(a.isLinear(), e.linear);
    EXPECT_TRUE(sameVector(a.getAxis(), e.axis.x, e.axis.y, e.axis.z));
    // A head axis turns the tool, a table axis the part: the effective axis
    // of a head axis is reversed.
    double const sign = e.table ? 1 : -1;
    EXPECT_TRUE(sameVector(a.getEffectiveAxis(), sign * e.axis.x, sign * e.axis.y, sign * e.axis.z));
    EXPECT_EQ(a.getCoordinate(), e.coordinate);
    EXPECT_EQ(a.getRange().isNonRange(), !e.ranged);
    if (e.ranged) {
      double const scale = e.linear ? 1 : kDeg;
      EXPECT_NEAR(a.getRange().getMinimum(), e.minimum * scale, kAngleTolerance);
      EXPECT_NEAR(a.getRange().getMaximum(), e.maximum * scale, kAngleTolerance);
    }
    if (!e.linear) {
      EXPECT_EQ(a.isCyclic(), e.cyclic);
    }
  }
}

using MC = MachineConfiguration;

}  // namespace

// Edge cases.

TEST(MachineConfigurationBridge, AxisWhoseControlTypeIsSecondaryIsLeftOutAndManualOneStays) {
  auto const c = MachineConfiguration::createFromMachineDefinition(kinematics(threeAxisParts("secondary")));
  ASSERT_NE(c, nullptr);
  EXPECT_FALSE(c->hasAxis(MC::AXIS_Y));
  EXPECT_FALSE(c->getAxisY().isEnabled());
  ASSERT_TRUE(c->hasAxis(MC::AXIS_Z));
  EXPECT_EQ(c->getAxisZ().getControlType(), 5);
  EXPECT_TRUE(c->getAxisZ().isManual());
  EXPECT_TRUE(c->hasAxis(MC::AXIS_X));
  EXPECT_EQ(c->getAxisX().getControlType(), 0);
  EXPECT_EQ(c->getNumberOfAxes(), 2u);
}

TEST(MachineConfigurationBridge, OnlyDrivenAndManualAxesAreUsedInPostCalculations) {
  struct Case {
    char const* word;
    bool kept;
  };
  for (Case const& k : {Case{"driven", true}, Case{"secondary", false}, Case{"ancillary", false},
                        Case{"link", false}, Case{"subordinate", false}, Case{"manual", true}}) {
    SCOPED_TRACE(k.word);
    auto const c = MachineConfiguration::createFromMachineDefinition(kinematics(threeAxisParts(k.word)));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->hasAxis(MC::AXIS_Y), k.kept);
  }
}

TEST(MachineConfigurationBridge, RotaryAxisOnTableChainGetsNegativeDirectionAndPositiveEffectiveAxis) {
  // A C axis along +Z under the table and a B axis along +Y above the head.
  auto const c = MachineConfiguration::createFromMachineDefinition(kinematics(R"([{"id": "base", "type": "static",
      "parts": [{"id": "c_axis", "type": "rotary", "control": "driven",
                 "axis_of_rotation": {"direction": [0, 0, 1], "point": [0, 0, 0]},
                 "parts": [{"id": "table", "type": "table"}]},
                {"id": "b_axis", "type": "rotary", "control": "driven",
                 "axis_of_rotation": {"direction": [0, 1, 0], "point": [0, 0, 0]},
                 "parts": [{"id": "head", "type": "head"}]}]}])"));
  ASSERT_NE(c, nullptr);
  // Head axes first: U is B, V is C.
  Axis const& c_axis = c->getAxisV();
  ASSERT_TRUE(c_axis.isEnabled());
  EXPECT_TRUE(c_axis.isTable());
  // The direction is the definition's negated; the effective axis is that
  // direction taken positively (times +1), as for every table axis.
  EXPECT_TRUE(sameVector(c_axis.getAxis(), 0, 0, -1));
  EXPECT_TRUE(sameVector(c_axis.getEffectiveAxis(), 0, 0, -1));
  EXPECT_EQ(c_axis.getCoordinate(), 2);
  // A head axis has the same negated direction and reverses it again.
  Axis const& b_axis = c->getAxisU();
  EXPECT_TRUE(b_axis.isHead());
  EXPECT_TRUE(sameVector(b_axis.getAxis(), 0, -1, 0));
  EXPECT_TRUE(sameVector(b_axis.getEffectiveAxis(), 0, 1, 0));
}

TEST(MachineConfigurationBridge, NumberOfToolsFromDefinitionWithoutTurretAndWithoutToolingEndsAt100) {
  auto const definition = readDefinition(R"({"kinematics": {"default": )" +
                                         parseJson(R"({"conventions": {"rotation": "right-handed"},
      "units": {"length": "mm", "angle": "degrees"}, "parts": )" + threeAxisParts("driven") + "}")
                                             .toStyledString() +
                                         "}}");
  ASSERT_NE(definition, nullptr);
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getNumberOfTools(), 100u);
  // A MachineSpecification alone leaves the count unlimited.
  auto const spec = machine::MachineSpecification::makeDefaultForDefinition(*definition, true);
  EXPECT_EQ(MachineConfiguration::createFromMachineSpecification(*spec)->getNumberOfTools(), 4294967295u);
}

TEST(MachineConfigurationBridge, MachineWithTableChainOfAThenCAddsCFirst) {
  // Walked from the table towards the base: the table, A, then C. C stands
  // on the base and carries A, which carries the table.
  auto const c = MachineConfiguration::createFromMachineDefinition(kinematics(R"([{"id": "base", "type": "static",
      "parts": [{"id": "c_axis", "type": "rotary", "control": "driven",
                 "axis_of_rotation": {"direction": [0, 0, 1], "point": [0, 0, 0]},
                 "parts": [{"id": "a_axis", "type": "rotary", "control": "driven",
                            "axis_of_rotation": {"direction": [1, 0, 0], "point": [0, 0, 0]},
                            "parts": [{"id": "table", "type": "table"}]}]},
                {"id": "head", "type": "head"}]}])"));
  ASSERT_NE(c, nullptr);
  ASSERT_TRUE(c->getAxisU().isEnabled());
  ASSERT_TRUE(c->getAxisV().isEnabled());
  EXPECT_EQ(c->getAxisU().getMachinePartId().id(), "c_axis");
  EXPECT_EQ(c->getAxisU().getCoordinate(), 2);
  EXPECT_EQ(c->getAxisV().getMachinePartId().id(), "a_axis");
  EXPECT_EQ(c->getAxisV().getCoordinate(), 0);
  EXPECT_EQ(c->getIndexOfAxisById(MC::AXIS_U), 0);
  EXPECT_EQ(c->getIndexOfAxisById(MC::AXIS_V), 1);
}

// The steps of the configuration made from a MachineSpecification.

TEST(MachineConfigurationBridge, MissingHeadOrTablePartGivesNoConfiguration) {
  auto const k = kinematics(threeAxisParts("driven"));
  machine::ControllerConfiguration controller;
  controller.setHeadInfoPartId(Orvo::MachinePartId("head"));
  controller.setTablePartId(Orvo::MachinePartId("nowhere"));
  EXPECT_EQ(MachineConfiguration::createFromMachineDefinition(k, controller), nullptr);
  controller.setHeadInfoPartId(Orvo::MachinePartId("nowhere"));
  controller.setTablePartId(Orvo::MachinePartId("table"));
  EXPECT_EQ(MachineConfiguration::createFromMachineDefinition(k, controller), nullptr);
  // A tree without a head leaves the head unset: no configuration either.
  auto const headless = kinematics(R"([{"id": "base", "type": "static", "parts": [{"id": "table", "type": "table"}]}])");
  EXPECT_EQ(MachineConfiguration::createFromMachineDefinition(headless), nullptr);
  // And the definition form gives nothing for such a kinematics and controller pair.
  MachineDefinition const definition;
  EXPECT_EQ(MachineConfiguration::createFromMachineDefinition(
                definition, machine::MachineSpecification(k, &controller, true)),
            nullptr);
}

TEST(MachineConfigurationBridge, SpecificationGivesReceivedControlAndSpeeds) {
  auto const k = kinematics(threeAxisParts("driven"));
  machine::ControllerConfiguration controller;
  controller.setName("fast \xc3\xbc");
  controller.setMaxNormalSpeed(Orvo::Quantity::Speed(8000));
  controller.setMaximumBlockProcessingSpeed(750);
  auto const c = MachineConfiguration::createFromMachineDefinition(k, controller);
  ASSERT_NE(c, nullptr);
  EXPECT_TRUE(c->isReceived());
  EXPECT_EQ(c->getControl(), L"fast \u00fc");
  EXPECT_EQ(c->getMaximumFeedrate(), 8000.0);
  EXPECT_EQ(c->getMaximumCuttingFeedrate(), 8000.0);
  EXPECT_EQ(c->getMaximumBlockProcessingSpeed(), 750u);
  // Head attach point from the head's frame, table attach point from the
  // table's; a spindle-less tree keeps the default spindle axis.
  EXPECT_TRUE(sameVector(c->getHeadAttachPoint(), 0, 0, 100));
  EXPECT_TRUE(sameVector(c->getTableAttachPoint(), 0, 0, 10));
  EXPECT_TRUE(sameVector(c->getSpindleAxis(), 0, 0, 1));
  EXPECT_FALSE(c->isSubSpindleZAxisReversed());
  // Without those settings the configuration keeps its zeros.
  auto const bare = MachineConfiguration::createFromMachineDefinition(k);
  EXPECT_EQ(bare->getMaximumFeedrate(), 0.0);
  EXPECT_EQ(bare->getMaximumBlockProcessingSpeed(), 0u);
  // The name of a controller configuration is its feature id, "default"
  // for an empty one.
  EXPECT_EQ(bare->getControl(), L"default");
}

TEST(MachineConfigurationBridge, ToolStationGivesToolSizesInterfaceAndCoolantsOneUp) {
  auto const k = kinematics(R"([{"id": "base", "type": "static", "parts": [{"id": "table", "type": "table"},
      {"id": "head", "type": "head", "tool_station": {"coolants": ["suction", "flood_mist", "flood"],
       "max_tool_length": 123.5, "max_tool_diameter": 40, "tool_interface": ["sk40"]}}]}])");
  auto const c = MachineConfiguration::createFromMachineDefinition(k);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getMaximumToolLength(), 123.5);
  EXPECT_EQ(c->getMaximumToolDiameter(), 40.0);
  EXPECT_EQ(c->getToolInterface(), L"SK40");
  // Coolant bit i is mode i + 1: flood 0 -> 1, suction 5 -> 6, flood mist 6 -> 7.
  std::vector<bool> const expected{false, true, false, false, false, false, true, true, false};
  EXPECT_EQ(c->getCoolants(), expected);
  EXPECT_TRUE(c->getCoolant(MC::COOLANT_SUCTION));
  EXPECT_FALSE(c->getCoolant(MC::COOLANT_FLOOD_THROUGH_TOOL));
}

TEST(MachineConfigurationBridge, SpindleSettingsComeFromTheSpindlePartEachIfPresent) {
  auto const k = kinematics(R"([{"id": "base", "type": "static", "parts": [
      {"id": "table", "type": "table", "spindle": {"description": "Work spindle", "max_speed": 3000, "power": 7.5},
       "attach_frame": {"point": [0, 0, 0], "x_direction": [0, 1, 0], "z_direction": [1, 0, 0]}},
      {"id": "head", "type": "head", "spindle": {"description": "Tool spindle", "min_speed": 10, "max_speed": 9000,
       "power": 5, "peak_torque": 30, "peak_torque_speed": 900},
       "attach_frame": {"point": [0, 0, 0], "x_direction": [1, 0, 0], "z_direction": [0, 0, -1]}}]}])");
  machine::ControllerConfiguration const controller;
  auto const live = MachineConfiguration::createFromMachineSpecification(machine::MachineSpecification(k, &controller, true));
  ASSERT_NE(live, nullptr);
  EXPECT_TRUE(sameVector(live->getSpindleAxis(), 0, 0, -1));
  EXPECT_EQ(live->getMinimumSpindleSpeed(), 10.0);
  EXPECT_EQ(live->getMaximumSpindleSpeed(), 9000.0);
  EXPECT_EQ(live->getMaximumSpindlePower(), 5.0);
  EXPECT_EQ(live->getSpindlePeakTorque(), 30.0);
  EXPECT_EQ(live->getSpindlePeakTorqueSpeed(), 900.0);
  // Not live: the part turns, and what its spindle leaves out stays 0.
  auto const turning =
      MachineConfiguration::createFromMachineSpecification(machine::MachineSpecification(k, &controller, false));
  ASSERT_NE(turning, nullptr);
  EXPECT_TRUE(sameVector(turning->getSpindleAxis(), 1, 0, 0));
  EXPECT_EQ(turning->getMinimumSpindleSpeed(), 0.0);
  EXPECT_EQ(turning->getMaximumSpindleSpeed(), 3000.0);
  EXPECT_EQ(turning->getMaximumSpindlePower(), 7.5);
  EXPECT_EQ(turning->getSpindlePeakTorque(), 0.0);
  EXPECT_EQ(turning->getSpindlePeakTorqueSpeed(), 0.0);
}

TEST(MachineConfigurationBridge, TurretCountsTheToolsAndItsLowestHeadIsTheHeadAttachPoint) {
  auto const k = kinematics(R"([{"id": "base", "type": "static", "parts": [{"id": "table", "type": "table"},
      {"id": "turret", "type": "rotary", "control": "ancillary", "turret": {"index_count": 8},
       "axis_of_rotation": {"direction": [0, 0, 1], "point": [0, 0, 0]},
       "parts": [{"id": "station_2", "type": "head",
                  "attach_frame": {"point": [0, 50, 0], "x_direction": [1, 0, 0], "z_direction": [0, 1, 0]}},
                 {"id": "station_1", "type": "head",
                  "attach_frame": {"point": [50, 0, 0], "x_direction": [0, 1, 0], "z_direction": [1, 0, 0]}}]}]}])");
  machine::ControllerConfiguration controller;
  controller.setHeadInfoPartId(Orvo::MachinePartId("turret"));
  auto const c = MachineConfiguration::createFromMachineDefinition(k, controller);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getNumberOfTools(), 8u);
  EXPECT_TRUE(sameVector(c->getHeadAttachPoint(), 50, 0, 0));
  // The turret's own axis is ancillary: no rotary axis.
  EXPECT_FALSE(c->hasRotational());
}

TEST(MachineConfigurationBridge, SubSpindleZReversedFollowsTheSecondarySpindlesConfiguration) {
  std::string const parts = R"([{"id": "base", "type": "static", "parts": [{"id": "head", "type": "head"},
      {"id": "secondary_spindle", "type": "table", "spindle": {"max_speed": 4000}}]}])";
  auto const k = kinematics(parts);
  machine::ControllerConfiguration controller;
  controller.setTablePartId(Orvo::MachinePartId("secondary_spindle"));
  EXPECT_FALSE(MachineConfiguration::createFromMachineDefinition(k, controller)->isSubSpindleZAxisReversed());
  auto reversed = std::make_unique<machine::AxisConfiguration>();
  reversed->setIsReversed(true);
  controller.setAxisConfiguration(Orvo::MachinePartId("secondary_spindle"), std::move(reversed));
  EXPECT_TRUE(MachineConfiguration::createFromMachineDefinition(k, controller)->isSubSpindleZAxisReversed());
  // Another table part keeps false, whatever its configuration says.
  machine::ControllerConfiguration other;
  other.setTablePartId(Orvo::MachinePartId("table2"));
  auto flag = std::make_unique<machine::AxisConfiguration>();
  flag->setIsReversed(true);
  other.setAxisConfiguration(Orvo::MachinePartId("table2"), std::move(flag));
  auto const k2 = kinematics(R"([{"id": "base", "type": "static", "parts": [{"id": "head", "type": "head"},
      {"id": "table2", "type": "table", "spindle": {"max_speed": 4000}}]}])");
  EXPECT_FALSE(MachineConfiguration::createFromMachineDefinition(k2, other)->isSubSpindleZAxisReversed());
}

// The definition's steps.

namespace {

std::string threeAxisKinematicsJson() {
  return parseJson(R"({"conventions": {"rotation": "right-handed"}, "units": {"length": "mm", "angle": "degrees"},
      "parts": )" + threeAxisParts("driven") + "}")
      .toStyledString();
}

}  // namespace

TEST(MachineConfigurationBridge, DefinitionWithoutKinematicsGivesDefaultConfigurationWithItsTexts) {
  auto const definition = readDefinition(R"({"general": {"vendor": "V\u00e9ndor", "model": "M", "description": "D",
      "capabilities": ["turning", "inspection"]}, "tooling": {"default": {"number_of_tools": 250}}})");
  ASSERT_NE(definition, nullptr);
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getVendor(), L"V\u00e9ndor");
  EXPECT_EQ(c->getModel(), L"M");
  EXPECT_EQ(c->getDescription(), L"D");
  EXPECT_FALSE(c->getMilling());
  EXPECT_TRUE(c->getTurning());
  EXPECT_TRUE(c->getInspection());
  EXPECT_FALSE(c->isReceived());
  // The default configuration holds 100 tools, the smaller count.
  EXPECT_EQ(c->getNumberOfTools(), 100u);
  EXPECT_EQ(c->getNumberOfAxes(), 3u);
  EXPECT_EQ(MachineConfiguration::createFromMachineDefinition(*definition, std::nullopt)->getNumberOfTools(), 100u);
}

TEST(MachineConfigurationBridge, EachCapabilityBitSetsItsFlagAndWireIsLeftAlone) {
  struct Case {
    char const* word;
    bool milling, turning, jet, inspection, additive;
  };
  for (Case const& k : {Case{"milling", true, false, false, false, false}, Case{"turning", false, true, false, false, false},
                        Case{"cutting", false, false, true, false, false},
                        Case{"inspection", false, false, false, true, false},
                        Case{"additive", false, false, false, false, true}}) {
    SCOPED_TRACE(k.word);
    auto const definition = readDefinition(std::string(R"({"general": {"capabilities": [")") + k.word + R"("]}})");
    auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
    EXPECT_EQ(c->getMilling(), k.milling);
    EXPECT_EQ(c->getTurning(), k.turning);
    EXPECT_EQ(c->getJet(), k.jet);
    EXPECT_EQ(c->getInspection(), k.inspection);
    EXPECT_EQ(c->getAdditiveFFF(), k.additive);
    EXPECT_FALSE(c->getWire());
  }
}

TEST(MachineConfigurationBridge, ToolingLimitsTheCountToTheSmallerOne) {
  auto const definition = readDefinition(R"({"kinematics": {"default": )" + threeAxisKinematicsJson() +
                                         R"(}, "tooling": {"default": {"number_of_tools": 250, "has_tool_changer": false,
      "supports_tool_preload": false}}})");
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getNumberOfTools(), 250u);
  EXPECT_FALSE(c->getToolChanger());
  EXPECT_FALSE(c->getToolPreload());
}

TEST(MachineConfigurationBridge, MachiningTimeGivesRatioAndToolChangeTime) {
  auto const definition =
      readDefinition(R"({"machining": {"default": {"feedrate_ratio": 0.75, "tool_change_time": 3.5}}})");
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  EXPECT_EQ(c->getFeedrateRatio(), 0.75);
  EXPECT_EQ(c->getToolChangeTime(), 3.5);
  auto const none = MachineConfiguration::createFromMachineDefinition(*readDefinition("{}"), true);
  EXPECT_EQ(none->getFeedrateRatio(), 1.0);
  EXPECT_EQ(none->getToolChangeTime(), 15.0);
}

TEST(MachineConfigurationBridge, MultiAxisPreferencesCopyFlagsAndPresentOptionsOnly) {
  auto const definition = readDefinition(R"({"multiaxis": {"default": {"virtual_tool_tip": true,
      "use_tilted_workplane": true, "feedrate": {"method": "inverse time", "max_feedrate": 99, "unit": "seconds"}}}})");
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  EXPECT_TRUE(c->getVirtualTooltip());
  EXPECT_TRUE(c->isTWPEnabled());
  EXPECT_EQ(c->getMultiAxisFeedrateMode(), 0);
  EXPECT_EQ(c->getMultiAxisFeedrateMaximum(), 99.0);
  EXPECT_EQ(c->getMultiAxisFeedrateInverseTimeUnits(), 0);
  // Absent options keep the configuration's own.
  EXPECT_EQ(c->getSingularity(), MultiAxisSingularity());
  EXPECT_EQ(c->getMultiAxisRetractAndReconfigure(), MultiAxisRetractAndReconfigure());
  // Without the feature, the flags stay at the configuration's defaults.
  auto const none = MachineConfiguration::createFromMachineDefinition(*readDefinition("{}"), true);
  EXPECT_FALSE(none->getVirtualTooltip());
  EXPECT_FALSE(none->isTWPEnabled());
  auto const off = readDefinition(R"({"multiaxis": {"default": {"use_tilted_workplane": false,
      "singularity": {"method": "off"}, "retract_and_reconfigure": {"enabled": true, "safe_retract_distance": 7}}}})");
  auto const d = MachineConfiguration::createFromMachineDefinition(*off, true);
  EXPECT_FALSE(d->isTWPEnabled());
  EXPECT_EQ(d->getSingularity().getMethod(), 0);
  EXPECT_EQ(d->getSingularity().getCone(), 0.05235987755982989);
  EXPECT_TRUE(d->performRewinds());
  EXPECT_EQ(d->getSafeRetractDistance(), 7.0);
  EXPECT_EQ(d->getMultiAxisFeedrate(), MultiAxisFeedrate());
}

TEST(MachineConfigurationBridge, TheDefaultFeatureOfATypeIsTheOneUsed) {
  std::string const features = R"("multiaxis": {"a": {"virtual_tool_tip": true}, "b": {"virtual_tool_tip": false}},
      "tooling": {"a": {"number_of_tools": 10}, "b": {"number_of_tools": 20}})";
  auto const first = readDefinition("{" + features + "}");
  auto const c = MachineConfiguration::createFromMachineDefinition(*first, true);
  EXPECT_TRUE(c->getVirtualTooltip());
  EXPECT_EQ(c->getNumberOfTools(), 10u);
  auto const named = readDefinition(R"({"defaults": {"multiaxis": "b", "tooling": "b"}, )" + features + "}");
  auto const d = MachineConfiguration::createFromMachineDefinition(*named, true);
  EXPECT_FALSE(d->getVirtualTooltip());
  EXPECT_EQ(d->getNumberOfTools(), 20u);
}

TEST(MachineConfigurationBridge, PlatformDimensionsGiveSizeAndCenterAndLimitsGiveHomeAndPark) {
  auto const definition = readDefinition(R"({"kinematics": {"default": )" + threeAxisKinematicsJson() +
                                         R"(}, "platform": {"default": {"dimensions": {"size": [200, 150, 100],
      "origin": [100, 75, 0]}}}, "limits": {"default": {"home_position": [1, 2, 3], "park_position": [4, 5, 6]}}})");
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  EXPECT_TRUE(sameVector(c->getDimensions(), 200, 150, 100));
  ASSERT_TRUE(c->hasCenterPosition());
  EXPECT_EQ(c->getCenterPositionX(), 100.0);
  EXPECT_EQ(c->getCenterPositionY(), 75.0);
  EXPECT_EQ(c->getCenterPositionZ(), 0.0);
  EXPECT_EQ(c->getHomePositionX(), 1.0);
  EXPECT_EQ(c->getHomePositionY(), 2.0);
  EXPECT_EQ(c->getHomePositionZ(), 3.0);
  EXPECT_TRUE(c->hasHomePositionZ());
  ASSERT_TRUE(c->hasParkPosition());
  EXPECT_EQ(c->getParkPositionX(), 4.0);
  EXPECT_EQ(c->getParkPositionY(), 5.0);
  EXPECT_EQ(c->getParkPositionZ(), 6.0);
  // A platform without dimensions gives no center.
  auto const bare = readDefinition(R"({"platform": {"default": {}}})");
  EXPECT_FALSE(MachineConfiguration::createFromMachineDefinition(*bare, true)->hasCenterPosition());
}

namespace {

std::string extruderDefinition(char const* first, char const* second) {
  return R"({"kinematics": {"default": {"conventions": {"rotation": "right-handed"},
      "units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": "base", "type": "static", "parts": [
        {"id": "bed", "type": "table"},
        {"id": "carriage", "type": "static", "parts": [
          {"id": ")" +
         std::string(first) + R"(", "type": "head",
           "attach_frame": {"point": [-20, 0, -5], "x_direction": [1, 0, 0], "z_direction": [0, 0, 1]}},
          {"id": ")" +
         second + R"(", "type": "head",
           "attach_frame": {"point": [20, 1, -4], "x_direction": [1, 0, 0], "z_direction": [0, 0, 1]}}]}]}]}}})";
}

std::string extruderFailure(char const* first, char const* second) {
  auto const definition = readDefinition(extruderDefinition(first, second));
  try {
    MachineConfiguration::createFromMachineDefinition(*definition, true);
  } catch (std::invalid_argument const& e) {
    return std::string("invalid_argument: ") + e.what();
  } catch (std::out_of_range const& e) {
    return std::string("out_of_range: ") + e.what();
  }
  return std::string();
}

}  // namespace

TEST(MachineConfigurationBridge, ExtruderOffsetsComeFromTheirPartsAtTheNumberInTheirNames) {
  // Listed second-first, numbered by the digits that end their identifiers.
  auto const definition = readDefinition(extruderDefinition("extruder_2", "extruder1"));
  ASSERT_NE(definition, nullptr);
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getNumberExtruders(), 2u);
  EXPECT_EQ(c->getExtruderOffsetX(1), 20.0);
  EXPECT_EQ(c->getExtruderOffsetY(1), 1.0);
  EXPECT_EQ(c->getExtruderOffsetZ(1), -4.0);
  EXPECT_EQ(c->getExtruderOffsetX(2), -20.0);
  EXPECT_EQ(c->getExtruderOffsetY(2), 0.0);
  EXPECT_EQ(c->getExtruderOffsetZ(2), -5.0);
  // Without extruder parts there are none, whatever "additive_extruder"
  // features say.
  auto const none = MachineConfiguration::createFromMachineDefinition(*readExample("headhead_5axis.json"), true);
  EXPECT_EQ(none->getNumberExtruders(), 0u);
}

TEST(MachineConfigurationBridge, ExtruderWithoutUsableNumberFailsWithTheStandardTexts) {
  EXPECT_EQ(extruderFailure("extruder", "extruder1"), "invalid_argument: invalid stoi argument");
  EXPECT_EQ(extruderFailure("extruder1", "extruder2a"), "invalid_argument: invalid stoi argument");
  EXPECT_EQ(extruderFailure("extruder1", "extruder99999999999"), "out_of_range: stoi argument out of range");
  // Numbers count from 1 up to the number of extruders.
  EXPECT_EQ(extruderFailure("extruder0", "extruder1"), "out_of_range: stoi argument out of range");
  EXPECT_EQ(extruderFailure("extruder1", "extruder3"), "out_of_range: stoi argument out of range");
  EXPECT_EQ(extruderFailure("extruder1", "extruder2"), "");
}

// The example machines. Expected values worked out from the files: a linear
// head axis keeps the definition's direction, a linear table axis and every
// rotary axis take it negated; rotary limits are the definition's limits
// narrowed by the controller's restricted ones, or the controller's
// wrap-around range when the definition has none; head axes are added from
// the tool towards the base, table axes from the base towards the table.

TEST(MachineConfigurationBridge, ExampleVmc3Axis) {
  auto const definition = readExample("vmc_3axis.json");
  ASSERT_NE(definition, nullptr);
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  expectAxes(*c, {
                     {MC::AXIS_Z, "z_axis", false, true, Vector(0, 0, 1), 2, true, -500, 0, false},
                     {MC::AXIS_Y, "y_axis", true, true, Vector(0, 1, 0), 1, true, -255, 255, false},
                     {MC::AXIS_X, "x_axis", true, true, Vector(1, 0, 0), 0, true, -380, 380, false},
                 });
  EXPECT_EQ(c->getVendor(), L"Orvo Demo Works");
  EXPECT_EQ(c->getModel(), L"VM-3 760");
  EXPECT_TRUE(c->getMilling());
  EXPECT_TRUE(sameVector(c->getSpindleAxis(), 0, 0, 1));
  EXPECT_TRUE(sameVector(c->getHeadAttachPoint(), 0, 0, 150));
  EXPECT_TRUE(sameVector(c->getTableAttachPoint(), 0, 0, 0));
  EXPECT_EQ(c->getMaximumSpindleSpeed(), 12000.0);
  EXPECT_EQ(c->getMinimumSpindleSpeed(), 50.0);
  EXPECT_EQ(c->getMaximumSpindlePower(), 15.0);
  EXPECT_EQ(c->getSpindlePeakTorque(), 120.0);
  EXPECT_EQ(c->getSpindlePeakTorqueSpeed(), 1200.0);
  EXPECT_EQ(c->getMaximumToolLength(), 250.0);
  EXPECT_EQ(c->getMaximumToolDiameter(), 80.0);
  EXPECT_EQ(c->getToolInterface(), L"BT40");
  // air (bit 3), flood (0), through tool (2): modes 4, 1, 3.
  EXPECT_EQ(c->getCoolants(), (std::vector<bool>{false, true, false, true, true, false, false, false, false}));
  EXPECT_EQ(c->getNumberOfTools(), 24u);
  EXPECT_EQ(c->getMaximumBlockProcessingSpeed(), 1000u);
  EXPECT_EQ(c->getMaximumFeedrate(), 10000.0);
  EXPECT_EQ(c->getControl(), L"default");
  EXPECT_EQ(c->getFeedrateRatio(), 0.95);
  EXPECT_EQ(c->getToolChangeTime(), 6.5);
  EXPECT_FALSE(c->isTWPEnabled());
  EXPECT_TRUE(c->is3DConfiguration());
}

TEST(MachineConfigurationBridge, ExampleTrunnion5Axis) {
  auto const definition = readExample("trunnion_5axis.json");
  ASSERT_NE(definition, nullptr);
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  expectAxes(*c, {
                     {MC::AXIS_Z, "z_axis", false, true, Vector(0, 0, 1), 2, true, -450, 50, false},
                     {MC::AXIS_Y, "y_axis", true, true, Vector(0, 1, 0), 1, true, -300, 300, false},
                     {MC::AXIS_X, "x_axis", true, true, Vector(1, 0, 0), 0, true, -325, 325, false},
                     // A: -120..30 in the tree, restricted to -110..30.
                     {MC::AXIS_U, "a_axis", true, false, Vector(-1, 0, 0), 0, true, -110, 30, false},
                     // C: no limits in the tree, wraps around at 0..360.
                     {MC::AXIS_V, "c_axis", true, false, Vector(0, 0, -1), 2, true, 0, 360, true},
                 });
  EXPECT_TRUE(sameVector(c->getAxisU().getOffset(), 0, 0, -120));
  EXPECT_EQ(c->getAxisU().getPreference(), -1);
  EXPECT_EQ(c->getAxisU().getName(), L"A");
  EXPECT_TRUE(c->isTableConfiguration());
  EXPECT_TRUE(sameVector(c->getHeadAttachPoint(), 0, 0, 250));
  EXPECT_EQ(c->getNumberOfTools(), 60u);
  EXPECT_EQ(c->getMaximumBlockProcessingSpeed(), 2000u);
  EXPECT_EQ(c->getMaximumFeedrate(), 12000.0);
  // flood, mist, through tool: modes 1, 2, 3.
  EXPECT_EQ(c->getCoolants(), (std::vector<bool>{false, true, true, true, false, false, false, false, false}));
  // Its multi-axis feature.
  EXPECT_FALSE(c->getVirtualTooltip());
  EXPECT_TRUE(c->isTWPEnabled());
  EXPECT_EQ(c->getMultiAxisFeedrateMode(), 0);
  EXPECT_EQ(c->getMultiAxisFeedrateMaximum(), 1000.0);
  EXPECT_EQ(c->getMultiAxisFeedrateInverseTimeUnits(), 1);
  EXPECT_TRUE(c->performRewinds());
  EXPECT_TRUE(sameVector(c->getRewindStockExpansion(), 2.5, 2.5, 2.5));
  EXPECT_EQ(c->getSafeRetractDistance(), 50.0);
  EXPECT_EQ(c->getSafeRetractFeedrate(), 5000.0);
  EXPECT_EQ(c->getSafePlungeFeedrate(), 500.0);
  EXPECT_EQ(c->getSingularityMethod(), 2);
  EXPECT_EQ(c->getSingularityCone(), 0.05235987755982989);
}

TEST(MachineConfigurationBridge, ExampleHeadTable5Axis) {
  auto const definition = readExample("headtable_5axis.json");
  ASSERT_NE(definition, nullptr);
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  expectAxes(*c, {
                     // The file is left-handed: its axial vectors read
                     // negated, so B along -Y in the file is +Y in the tree.
                     {MC::AXIS_U, "b_axis", false, false, Vector(0, -1, 0), 1, true, -120, 120, false},
                     {MC::AXIS_Z, "z_axis", false, true, Vector(0, 0, 1), 2, true, -600, 0, false},
                     {MC::AXIS_Y, "y_axis", false, true, Vector(0, 1, 0), 1, true, -350, 350, false},
                     {MC::AXIS_X, "x_axis", true, true, Vector(1, 0, 0), 0, true, -600, 600, false},
                     // C along -Z in the file, +Z in the tree, wrapping at
                     // 0..360.
                     {MC::AXIS_V, "c_axis", true, false, Vector(0, 0, -1), 2, true, 0, 360, true},
                 });
  EXPECT_TRUE(sameVector(c->getAxisU().getOffset(), 0, 0, -250));
  EXPECT_TRUE(sameVector(c->getSpindleAxis(), 0, 0, 1));
  EXPECT_TRUE(sameVector(c->getHeadAttachPoint(), 0, 0, -250));
  EXPECT_EQ(c->getNumberOfTools(), 40u);
  EXPECT_EQ(c->getMaximumFeedrate(), 0.0);
  EXPECT_EQ(c->getMultiAxisFeedrateMode(), 1);
  EXPECT_EQ(c->getMultiAxisFeedrateDPMType(), 1);
  EXPECT_EQ(c->getMultiAxisFeedrateOutputTolerance(), 0.01);
  EXPECT_EQ(c->getMultiAxisFeedrateBpwRatio(), 1.0);
  EXPECT_EQ(c->getSingularityMethod(), 1);
  EXPECT_EQ(c->getSingularityLinearizationTolerance(), 0.02);
}

TEST(MachineConfigurationBridge, ExampleHeadHead5Axis) {
  auto const definition = readExample("headhead_5axis.json");
  ASSERT_NE(definition, nullptr);
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  expectAxes(*c, {
                     // B: -110..110 in the tree, restricted to -105..105.
                     {MC::AXIS_U, "b_axis", false, false, Vector(0, -1, 0), 1, true, -105, 105, false},
                     // C: -360..360 in the tree, restricted to -355..355.
                     {MC::AXIS_V, "c_axis", false, false, Vector(0, 0, -1), 2, true, -355, 355, false},
                     {MC::AXIS_Z, "z_axis", false, true, Vector(0, 0, 1), 2, true, -1000, 0, false},
                     {MC::AXIS_Y, "y_axis", false, true, Vector(0, 1, 0), 1, true, 0, 2000, false},
                     {MC::AXIS_X, "x_axis", false, true, Vector(1, 0, 0), 0, true, 0, 3000, false},
                 });
  EXPECT_TRUE(c->isHeadConfiguration());
  EXPECT_TRUE(sameVector(c->getAxisU().getOffset(), 0, 0, -180));
  EXPECT_TRUE(sameVector(c->getSpindleAxis(), 0, 0, 1));
  EXPECT_TRUE(sameVector(c->getHeadAttachPoint(), 0, 0, -400));
  EXPECT_EQ(c->getMaximumSpindleSpeed(), 24000.0);
  EXPECT_EQ(c->getMaximumSpindlePower(), 30.0);
  EXPECT_EQ(c->getSpindlePeakTorque(), 0.0);
  EXPECT_EQ(c->getMaximumToolLength(), 350.0);
  EXPECT_EQ(c->getMaximumToolDiameter(), 160.0);
  // Capabilities additive, cutting, milling.
  EXPECT_TRUE(c->getMilling());
  EXPECT_TRUE(c->getJet());
  EXPECT_TRUE(c->getAdditiveFFF());
  EXPECT_FALSE(c->getTurning());
  // Tooling: no changer, one tool.
  EXPECT_FALSE(c->getToolChanger());
  EXPECT_EQ(c->getNumberOfTools(), 1u);
  EXPECT_EQ(c->getMaximumFeedrate(), 15000.0);
  // Platform and limits.
  EXPECT_TRUE(sameVector(c->getDimensions(), 3000, 2000, 800));
  EXPECT_EQ(c->getCenterPositionX(), 0.0);
  EXPECT_EQ(c->getHomePositionX(), 0.0);
  EXPECT_EQ(c->getHomePositionZ(), 800.0);
  EXPECT_EQ(c->getParkPositionX(), 2900.0);
  EXPECT_EQ(c->getParkPositionY(), 1900.0);
  EXPECT_EQ(c->getParkPositionZ(), 800.0);
  // Its multi-axis feature.
  EXPECT_TRUE(c->getVirtualTooltip());
  EXPECT_FALSE(c->isTWPEnabled());
  EXPECT_FALSE(c->getSingularityAdjust());
  EXPECT_EQ(c->getSingularity().getMethod(), 0);
  EXPECT_EQ(c->getMultiAxisFeedrateMode(), 2);
  EXPECT_EQ(c->getMultiAxisFeedrateMaximum(), 15000.0);
  EXPECT_FALSE(c->performRewinds());
  EXPECT_EQ(c->getMachineRewindPreference(), 2);
  EXPECT_EQ(c->getMachineRetractPreference(), 2);
  EXPECT_EQ(c->getMultiAxisRetractAndReconfigure().getRewindStrategy(), 1);
}

TEST(MachineConfigurationBridge, ExampleMillTurnWithItsThreeControllers) {
  auto const definition = readExample("millturn_turret.json");
  ASSERT_NE(definition, nullptr);
  auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
  ASSERT_NE(c, nullptr);
  expectAxes(*c, {
                     {MC::AXIS_U, "b_axis", false, false, Vector(0, -1, 0), 1, true, -30, 210, false},
                     {MC::AXIS_Z, "z1_axis", false, true, Vector(0, 0, 1), 2, true, -50, 1000, false},
                     {MC::AXIS_Y, "y1_axis", false, true, Vector(0, 1, 0), 1, true, -105, 105, false},
                     {MC::AXIS_X, "x1_axis", false, true, Vector(1, 0, 0), 0, true, -100, 450, false},
                     {MC::AXIS_V, "c1_axis", true, false, Vector(0, 0, -1), 2, true, 0, 360, true},
                 });
  // The milling spindle with a live tool, the main spindle without.
  EXPECT_TRUE(sameVector(c->getSpindleAxis(), 0, 0, 1));
  EXPECT_EQ(c->getMaximumSpindleSpeed(), 12000.0);
  auto const turning = MachineConfiguration::createFromMachineDefinition(*definition, false);
  EXPECT_TRUE(sameVector(turning->getSpindleAxis(), 0, 0, 1));
  EXPECT_EQ(turning->getMaximumSpindleSpeed(), 5000.0);
  EXPECT_EQ(turning->getSpindlePeakTorque(), 560.0);
  EXPECT_EQ(c->getToolInterface(), L"CAPTO C6");
  // air through tool (bit 4), flood (0), through tool (2): modes 5, 1, 3.
  EXPECT_EQ(c->getCoolants(), (std::vector<bool>{false, true, false, true, false, true, false, false, false}));
  EXPECT_EQ(c->getNumberOfTools(), 12u);
  EXPECT_EQ(c->getMaximumBlockProcessingSpeed(), 1500u);
  EXPECT_TRUE(c->getTurning());
  EXPECT_TRUE(c->isTWPEnabled());

  auto const* kinematics = dynamic_cast<machine::KinematicsDefinition const*>(definition->getDefaultFeature("kinematics"));
  ASSERT_NE(kinematics, nullptr);
  // The lower turret: its own axis is ancillary, and it holds 12 stations;
  // its lowest-numbered head gives the head attach point.
  auto const* turret = dynamic_cast<machine::ControllerConfiguration const*>(definition->getFeature("controller", "lower_turret"));
  ASSERT_NE(turret, nullptr);
  auto const t = MachineConfiguration::createFromMachineDefinition(
      *definition, machine::MachineSpecification(*kinematics, turret, true));
  ASSERT_NE(t, nullptr);
  expectAxes(*t, {
                     {MC::AXIS_Z, "z2_axis", false, true, Vector(0, 0, 1), 2, true, -20, 700, false},
                     {MC::AXIS_X, "x2_axis", false, true, Vector(1, 0, 0), 0, true, -50, 260, false},
                     {MC::AXIS_U, "c1_axis", true, false, Vector(0, 0, -1), 2, true, 0, 360, true},
                 });
  EXPECT_FALSE(t->getAxisU().isTCPEnabled());
  EXPECT_EQ(t->getNumberOfTools(), 12u);
  EXPECT_TRUE(sameVector(t->getHeadAttachPoint(), 180, 0, 0));
  EXPECT_EQ(t->getControl(), L"lower_turret");
  EXPECT_EQ(t->getCoolants(), std::vector<bool>(9, false));

  // The sub spindle: W (coordinate 8) is no X, Y or Z and is left out; B
  // and Y1 have no settings there, so their coordinates follow their
  // directions and B keeps the tree's limits.
  auto const* sub = dynamic_cast<machine::ControllerConfiguration const*>(definition->getFeature("controller", "sub_spindle"));
  ASSERT_NE(sub, nullptr);
  auto const s = MachineConfiguration::createFromMachineDefinition(
      *definition, machine::MachineSpecification(*kinematics, sub, true));
  ASSERT_NE(s, nullptr);
  expectAxes(*s, {
                     {MC::AXIS_U, "b_axis", false, false, Vector(0, -1, 0), 1, true, -30, 210, false},
                     {MC::AXIS_Z, "z1_axis", false, true, Vector(0, 0, 1), 2, true, -50, 1000, false},
                     {MC::AXIS_Y, "y1_axis", false, true, Vector(0, 1, 0), 1, true, -105, 105, false},
                     {MC::AXIS_X, "x1_axis", false, true, Vector(1, 0, 0), 0, true, -100, 450, false},
                     {MC::AXIS_V, "c2_axis", true, false, Vector(0, 0, 1), 2, true, 0, 360, true},
                 });
  // The reversed flag is the secondary spindle part's own, which has none.
  EXPECT_FALSE(s->isSubSpindleZAxisReversed());
}

TEST(MachineConfigurationBridge, EveryExampleMachineConverts) {
  int count = 0;
  for (auto const& entry : std::filesystem::directory_iterator(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines")) {
    if (entry.path().extension() != ".json") continue;
    SCOPED_TRACE(entry.path().filename().string());
    auto const definition = readExample(entry.path().filename().string());
    ASSERT_NE(definition, nullptr);
    for (bool live : {true, false}) {
      auto const c = MachineConfiguration::createFromMachineDefinition(*definition, live);
      ASSERT_NE(c, nullptr);
      EXPECT_TRUE(c->isReceived());
      EXPECT_TRUE(c->getAxisX().isEnabled());
      EXPECT_TRUE(c->getAxisY().isEnabled());
      EXPECT_TRUE(c->getAxisZ().isEnabled());
    }
    ++count;
  }
  EXPECT_EQ(count, 5);
}

// For each example machine with two rotary axes: random directions the
// machine reaches, solved for both solutions, point the spindle back along
// the direction.

TEST(MachineConfigurationBridge, ExampleMachinesWithTwoRotaryAxesSolveRandomDirectionsBothWays) {
  constexpr int kSamples = 1000;
  constexpr double kTolerance = 1e-9;
  // The solver answers directions within 0.005 degrees of the spindle axis
  // with zero rotary values; the samples keep twice that away from it.
  double const awayFromSpindle = std::cos(0.01 * kDeg);
  int machines = 0;
  for (char const* name : {"headhead_5axis.json", "headtable_5axis.json", "millturn_turret.json",
                           "trunnion_5axis.json", "vmc_3axis.json"}) {
    SCOPED_TRACE(name);
    auto const definition = readExample(name);
    ASSERT_NE(definition, nullptr);
    auto const c = MachineConfiguration::createFromMachineDefinition(*definition, true);
    ASSERT_NE(c, nullptr);
    if (!(c->getAxisU().isEnabled() && c->getAxisV().isEnabled() && !c->getAxisW().isEnabled())) continue;
    ++machines;
    Vector const spindle = c->getSpindleAxis().getNormalized();
    std::mt19937 engine(20261125u);
    auto uniform = [&engine](double lo, double hi) {
      return lo + (hi - lo) * (static_cast<double>(engine()) / 4294967295.0);
    };
    int solved = 0;
    while (solved < kSamples) {
      // A pose inside the ranges, read as the direction it gives.
      Vector abc;
      for (Axis const* axis : {&c->getAxisU(), &c->getAxisV()}) {
        double const lo = axis->getRange().isNonRange() ? -kPi : axis->getRange().getMinimum();
        double const hi = axis->getRange().isNonRange() ? kPi : axis->getRange().getMaximum();
        abc.setCoordinate(static_cast<unsigned int>(axis->getCoordinate()), uniform(lo, hi));
      }
      Vector const direction = c->getDirection(abc);
      if (Vector::dot(direction, spindle) >= awayFromSpindle) continue;
      VectorPair const both = c->getABCByDirectionBoth(direction);
      for (Vector const& solution : {both.first, both.second}) {
        Vector const back = c->getDirection(solution);
        ASSERT_TRUE(sameVector(back, direction.x, direction.y, direction.z, kTolerance))
            << "from (" << abc.x << ", " << abc.y << ", " << abc.z << ")";
      }
      ++solved;
    }
  }
  EXPECT_EQ(machines, 4);
}
