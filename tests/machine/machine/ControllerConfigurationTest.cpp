#include "machine/machine/ControllerConfiguration.h"

#include <gtest/gtest.h>
#include <json/value.h>

#include <sstream>
#include <stdexcept>

#include "machine/machine/MachineDefinitionReader.h"
#include "support/AssertRecorder.h"

using machine::AxisConfiguration;
using machine::ControllerConfiguration;
using machine::NcCodeKinematicInterpolationMode;
using Orvo::MachinePartId;
using Orvo::Quantity::Speed;

namespace {

ControllerConfiguration::AxisConfigurationMap twoAxes() {
  ControllerConfiguration::AxisConfigurationMap map;
  map.emplace(MachinePartId("X"), std::make_unique<AxisConfiguration>());
  auto c = std::make_unique<AxisConfiguration>();
  c->setName(Orvo::AxisName("C"));
  c->setWrapAroundAtRange(Orvo::AxisValueRange(0.0, 360.0));
  map.emplace(MachinePartId("C"), std::move(c));
  return map;
}

ControllerConfiguration fullConfiguration() {
  ControllerConfiguration configuration(twoAxes(), "main");
  configuration.setHeadInfoPartId(MachinePartId("head"));
  configuration.setTablePartId(MachinePartId("table"));
  configuration.setMaxNormalSpeed(Speed(5000.0));
  configuration.setMaximumBlockProcessingSpeed(1000);
  configuration.setNonTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  configuration.setTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::TCP_ONLY);
  return configuration;
}

}  // namespace

TEST(ControllerConfiguration, FeatureTypeIsController) {
  EXPECT_EQ(ControllerConfiguration::featureTypeIdStatic(), "controller");
  ControllerConfiguration const configuration;
  EXPECT_EQ(configuration.featureTypeId(), "controller");
}

TEST(ControllerConfiguration, DefaultHasNothingSet) {
  ControllerConfiguration const configuration;
  EXPECT_EQ(configuration.name(), "default");
  EXPECT_TRUE(configuration.axisConfigurations().empty());
  EXPECT_FALSE(configuration.headInfoPartId());
  EXPECT_FALSE(configuration.tablePartId());
  EXPECT_FALSE(configuration.maxNormalSpeed());
  EXPECT_FALSE(configuration.maximumBlockProcessingSpeed());
  EXPECT_FALSE(configuration.nonTcpRapidInterpolationMode());
  EXPECT_FALSE(configuration.tcpRapidInterpolationMode());
}

TEST(ControllerConfiguration, NameIsTheFeatureId) {
  ControllerConfiguration configuration(twoAxes(), "mill");
  EXPECT_EQ(configuration.name(), "mill");
  EXPECT_EQ(configuration.featureId(), "mill");
  configuration.setName("lathe");
  EXPECT_EQ(configuration.featureId(), "lathe");
}

TEST(ControllerConfiguration, AxisConfigurationOfUnknownIdIsNull) {
  ControllerConfiguration const configuration(twoAxes(), "main");
  AxisConfiguration const* found = nullptr;
  EXPECT_NO_THROW(found = configuration.axisConfiguration(MachinePartId("nowhere")));
  EXPECT_EQ(found, nullptr);
  ASSERT_NE(configuration.axisConfiguration(MachinePartId("C")), nullptr);
  EXPECT_EQ(configuration.axisConfiguration(MachinePartId("C"))->name()->name(), "C");
}

TEST(ControllerConfiguration, SetAndRemoveAxisConfiguration) {
  ControllerConfiguration configuration(twoAxes(), "main");
  auto replacement = std::make_unique<AxisConfiguration>();
  replacement->setCoordinate(7);
  AxisConfiguration const* raw = replacement.get();
  configuration.setAxisConfiguration(MachinePartId("X"), std::move(replacement));
  EXPECT_EQ(configuration.axisConfiguration(MachinePartId("X")), raw);
  EXPECT_EQ(configuration.axisConfigurations().size(), 2u);

  configuration.setAxisConfiguration(MachinePartId("Y"), std::make_unique<AxisConfiguration>());
  EXPECT_EQ(configuration.axisConfigurations().size(), 3u);

  auto removed = configuration.removeAxisConfiguration(MachinePartId("X"));
  ASSERT_TRUE(removed);
  EXPECT_EQ(removed.get(), raw);
  EXPECT_EQ(configuration.axisConfiguration(MachinePartId("X")), nullptr);
  EXPECT_EQ(configuration.removeAxisConfiguration(MachinePartId("X")), nullptr);
  EXPECT_EQ(configuration.axisConfigurations().size(), 2u);
}

TEST(ControllerConfiguration, SetNonTcpRapidInterpolationModeWithTcpOnlyAssertsAndStores) {
  mtkit_test::AssertRecorder rec;
  ControllerConfiguration configuration;
  configuration.setNonTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::TCP_ONLY);
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression,
            "EXPECTS:mode == NcCodeKinematicInterpolationMode::UNSYNCHRONIZED || mode == "
            "NcCodeKinematicInterpolationMode::SYNCHRONIZED");
  EXPECT_EQ(failures[0].file, "machine\\machine\\ControllerConfiguration");
  EXPECT_EQ(configuration.nonTcpRapidInterpolationMode(), NcCodeKinematicInterpolationMode::TCP_ONLY);
}

TEST(ControllerConfiguration, NonTcpModeAcceptsTheTwoRapidModesSilently) {
  mtkit_test::AssertRecorder rec;
  ControllerConfiguration configuration;
  configuration.setNonTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::UNSYNCHRONIZED);
  configuration.setNonTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(configuration.nonTcpRapidInterpolationMode(), NcCodeKinematicInterpolationMode::SYNCHRONIZED);
}

TEST(ControllerConfiguration, TcpModeSetterAssertsNothing) {
  mtkit_test::AssertRecorder rec;
  ControllerConfiguration configuration;
  configuration.setTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::MIXED);
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(configuration.tcpRapidInterpolationMode(), NcCodeKinematicInterpolationMode::MIXED);
}

TEST(ControllerConfiguration, ConfigurationsDifferingInOneAxisTcpAreUnequal) {
  ControllerConfiguration a = fullConfiguration();
  ControllerConfiguration b = fullConfiguration();
  EXPECT_EQ(a, b);
  auto changed = std::make_unique<AxisConfiguration>(machine::CopyTag{}, *b.axisConfiguration(MachinePartId("X")));
  changed->setTCPEnabled(false);
  b.setAxisConfiguration(MachinePartId("X"), std::move(changed));
  EXPECT_NE(a, b);
  EXPECT_FALSE(a == b);
}

TEST(ControllerConfiguration, EqualityCoversEveryField) {
  ControllerConfiguration const base = fullConfiguration();
  auto differs = [&base](auto change) {
    ControllerConfiguration other = fullConfiguration();
    change(other);
    return base != other;
  };
  EXPECT_TRUE(differs([](ControllerConfiguration& c) { c.setHeadInfoPartId(std::nullopt); }));
  EXPECT_TRUE(differs([](ControllerConfiguration& c) { c.setTablePartId(MachinePartId("other")); }));
  EXPECT_TRUE(differs([](ControllerConfiguration& c) { c.setMaxNormalSpeed(Speed(5000.5)); }));
  EXPECT_TRUE(differs([](ControllerConfiguration& c) { c.setMaximumBlockProcessingSpeed(999); }));
  EXPECT_TRUE(differs([](ControllerConfiguration& c) {
    c.setNonTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::UNSYNCHRONIZED);
  }));
  EXPECT_TRUE(differs([](ControllerConfiguration& c) {
    c.setTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  }));
  EXPECT_TRUE(differs([](ControllerConfiguration& c) { c.setName("other"); }));
  EXPECT_TRUE(differs([](ControllerConfiguration& c) { c.removeAxisConfiguration(MachinePartId("C")); }));
  EXPECT_TRUE(differs([](ControllerConfiguration& c) {
    auto axis = c.removeAxisConfiguration(MachinePartId("C"));
    c.setAxisConfiguration(MachinePartId("D"), std::move(axis));
  }));
  EXPECT_FALSE(differs([](ControllerConfiguration&) {}));
}

TEST(ControllerConfiguration, CopyTagIsDeep) {
  ControllerConfiguration const source = fullConfiguration();
  ControllerConfiguration copy(machine::CopyTag{}, source);
  EXPECT_EQ(copy, source);
  EXPECT_NE(copy.axisConfiguration(MachinePartId("C")), source.axisConfiguration(MachinePartId("C")));
  copy.removeAxisConfiguration(MachinePartId("C"));
  EXPECT_NE(source.axisConfiguration(MachinePartId("C")), nullptr);
}

TEST(ControllerConfiguration, CloneKeepsTypeAndContent) {
  ControllerConfiguration const source = fullConfiguration();
  std::unique_ptr<ControllerConfiguration> typed = source.clone();
  ASSERT_TRUE(typed);
  EXPECT_EQ(*typed, source);
  machine::MachineFeatureDefinition const& base = source;
  auto cloned = base.clone();
  auto const* asController = dynamic_cast<ControllerConfiguration const*>(cloned.get());
  ASSERT_NE(asController, nullptr);
  EXPECT_EQ(*asController, source);
  EXPECT_TRUE(cloned->equals(source, 0.0));
}

TEST(ControllerConfiguration, MoveTakesEverything) {
  ControllerConfiguration source = fullConfiguration();
  AxisConfiguration const* c = source.axisConfiguration(MachinePartId("C"));
  ControllerConfiguration moved(std::move(source));
  EXPECT_EQ(moved, fullConfiguration());
  EXPECT_EQ(moved.axisConfiguration(MachinePartId("C")), c);

  ControllerConfiguration assigned;
  assigned = std::move(moved);
  EXPECT_EQ(assigned, fullConfiguration());
  EXPECT_EQ(assigned.name(), "main");
}

TEST(ControllerConfiguration, FeatureConstructorReadsTheBody) {
  Json::Value body;
  body["parts"]["X"]["home"] = 12.5;
  body["table_part_id"] = "table";
  ControllerConfiguration const configuration("mill", body);
  EXPECT_EQ(configuration.name(), "mill");
  ASSERT_NE(configuration.axisConfiguration(MachinePartId("X")), nullptr);
  EXPECT_EQ(configuration.axisConfiguration(MachinePartId("X"))->home()->value(), 12.5);
  EXPECT_EQ(configuration.tablePartId(), MachinePartId("table"));
}

TEST(ControllerConfiguration, FeatureConstructorPassesReaderFailuresOn) {
  Json::Value body(Json::objectValue);
  try {
    ControllerConfiguration const configuration("mill", body);
    FAIL() << "no exception";
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(), "Missing parts node in controller configuration node.");
  }
}

TEST(ControllerConfiguration, PersistDataIsTheConfigurationObject) {
  ControllerConfiguration const configuration = fullConfiguration();
  Json::Value const json = configuration.getPersistData();
  EXPECT_EQ(json.getMemberNames(),
            (std::vector<std::string>{"head_info_part_id", "max_block_processing_speed", "max_normal_speed",
                                      "non_tcp_rapid_interpolation_mode", "parts", "table_part_id",
                                      "tcp_rapid_interpolation_mode"}));
  EXPECT_FALSE(json.isMember("main"));
  ControllerConfiguration const readBack("main", json);
  EXPECT_EQ(readBack, configuration);
}

TEST(ControllerConfiguration, EqualsComparesPersistedFormWithTolerance) {
  ControllerConfiguration a = fullConfiguration();
  ControllerConfiguration b = fullConfiguration();
  b.setMaxNormalSpeed(Speed(5000.0 + 1e-9));
  EXPECT_NE(a, b);
  EXPECT_TRUE(a.equals(b, 1e-6));
  EXPECT_FALSE(a.equals(b, 0.0));
  b.setName("other");  // the feature id isn't in the persisted form
  EXPECT_TRUE(a.equals(b, 1e-6));
}

TEST(ControllerConfiguration, ReadAsControllerFeatureOfMachineFile) {
  std::istringstream in(R"({"controller": {"mill": {"parts": {"X": {"home": 5}}, "table_part_id": "t"}}})");
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  ASSERT_FALSE(result.isError()) << result.getReadErrorMessage();
  auto const definition = result.getMachineDefinition();
  auto const* feature = definition->getFeature("controller", "mill");
  ASSERT_NE(feature, nullptr);
  auto const* configuration = dynamic_cast<ControllerConfiguration const*>(feature);
  ASSERT_NE(configuration, nullptr);
  EXPECT_EQ(configuration->tablePartId(), MachinePartId("t"));
  EXPECT_EQ(configuration->axisConfiguration(MachinePartId("X"))->home(), Orvo::AxisValue(5.0));
  EXPECT_EQ(definition->getPersistData()["controller"]["mill"], configuration->getPersistData());
}

TEST(ControllerConfiguration, MachineFileWithBadControllerFailsWithTheReadersMessage) {
  std::istringstream in(R"({"controller": {"mill": {"parts": {"X": {}}, "tcp_rapid_interpolation_mode": "Fast"}}})");
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  ASSERT_TRUE(result.isError());
  EXPECT_EQ(result.getReadErrorMessage(),
            "Error reading Machine Definition data from machine file:\n\nFast is no supported");
}
