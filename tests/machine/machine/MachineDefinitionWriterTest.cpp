#include "machine/machine/MachineDefinitionWriter.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "support/RandomTree.h"
#include "util/utility/JsonUtils.h"

using machine::MachineDefinition;

namespace {

constexpr double kTolerance = 1e-9;

std::unique_ptr<MachineDefinition> readBack(std::string const& text) {
  std::istringstream in(text);
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) {
    ADD_FAILURE() << result.getReadErrorMessage();
    return nullptr;
  }
  return result.getMachineDefinition();
}

std::string writeOut(MachineDefinition const& m) {
  std::ostringstream out;
  EXPECT_FALSE(machine::MachineDefinitionWriter::write(out, m).isError());
  return out.str();
}

/// The same features, equal within the tolerance, and the same whole
/// document. (A read puts features in the key order of the file, which may
/// differ from the order they were put in.)
void expectSame(MachineDefinition const& a, MachineDefinition const& b) {
  ASSERT_EQ(a.getFeatures().size(), b.getFeatures().size());
  for (auto const& fa : a.getFeatures()) {
    auto const* fb = b.getFeature(fa.featureTypeId(), fa.featureId());
    ASSERT_NE(fb, nullptr) << fa.featureTypeId() << "/" << fa.featureId();
    EXPECT_TRUE(fa.equals(*fb, kTolerance)) << fa.featureTypeId() << "/" << fa.featureId();
  }
  EXPECT_EQ(a.defaults(), b.defaults());
  EXPECT_TRUE(Orvo::JsonUtils::areEqual(a.getPersistData(), b.getPersistData(), kTolerance));
}

std::vector<std::filesystem::path> exampleMachines() {
  std::vector<std::filesystem::path> files;
  for (auto const& entry : std::filesystem::directory_iterator(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines"))
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

std::string slurp(std::filesystem::path const& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

TEST(MachineDefinitionWriter, EveryExampleMachineSurvivesReadWriteRead) {
  auto const files = exampleMachines();
  ASSERT_GE(files.size(), 5u);
  for (auto const& file : files) {
    SCOPED_TRACE(file.filename().string());
    auto const first = readBack(slurp(file));
    ASSERT_NE(first, nullptr);
    auto const second = readBack(writeOut(*first));
    ASSERT_NE(second, nullptr);
    expectSame(*first, *second);
    // Every example has its kinematics and its controller, which agree on the part ids.
    auto const* kinematics = dynamic_cast<machine::KinematicsDefinition const*>(first->getDefaultFeature("kinematics"));
    auto const* controller = dynamic_cast<machine::ControllerConfiguration const*>(first->getDefaultFeature("controller"));
    ASSERT_NE(kinematics, nullptr);
    ASSERT_NE(controller, nullptr);
    for (auto const& axis : controller->axisConfigurations())
      EXPECT_TRUE(kinematics->find(axis.first).has_value()) << axis.first.id();
    ASSERT_TRUE(controller->headInfoPartId().has_value());
    EXPECT_TRUE(kinematics->find(*controller->headInfoPartId()).has_value());
    EXPECT_TRUE(kinematics->find(*controller->tablePartId()).has_value());
  }
}

TEST(MachineDefinitionWriter, RandomTreesSurviveReadWriteRead) {
  mtkit_test::RandomTree random(20261122u);
  for (int round = 0; round < 20; ++round) {
    SCOPED_TRACE(round);
    MachineDefinition m;
    m.setVendor("Vendor " + std::to_string(round));
    m.setCapability(machine::MachineCapability::MILLING, random.chance(0.5));
    m.putFeature(random.make(1 + static_cast<int>(random.index(40))));
    if (random.chance(0.5)) {
      auto second = random.make(5);
      second->setFeatureId("alternative");
      m.putFeature(std::move(second));
      m.setDefaultFeature("kinematics", "alternative");
    }
    auto const first = readBack(writeOut(m));
    ASSERT_NE(first, nullptr);
    expectSame(m, *first);
    auto const second = readBack(writeOut(*first));
    ASSERT_NE(second, nullptr);
    expectSame(*first, *second);
  }
}

TEST(MachineDefinitionWriter, RoundTripCatchesAChangedValue) {
  mtkit_test::RandomTree random(7u);
  MachineDefinition m;
  m.putFeature(random.make(20));
  auto const back = readBack(writeOut(m));
  ASSERT_NE(back, nullptr);
  auto const* kinematics = dynamic_cast<machine::KinematicsDefinition const*>(back->getDefaultFeature("kinematics"));
  ASSERT_NE(kinematics, nullptr);
  auto copy = std::make_unique<machine::KinematicsDefinition>(machine::CopyTag{}, *kinematics);
  copy->attachPart(std::make_unique<machine::PartDefinition>(Orvo::MachinePartId("extra"), machine::PartType::STATIC),
                   nullptr);
  EXPECT_FALSE(copy->equals(*kinematics, kTolerance));
}
