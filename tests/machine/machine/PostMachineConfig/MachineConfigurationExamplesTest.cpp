// Every example machine through both forms of the script-facing
// configuration: made from its machine file by the bridge, written as XML
// and read back, the two configurations give the same rotary solutions.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineDefinitionReaderResult.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "util/utility/Messages.h"

using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::Vector;
using com::vantora::VectorPair;

namespace {

std::vector<std::filesystem::path> exampleMachines() {
  std::vector<std::filesystem::path> paths;
  for (auto const& entry : std::filesystem::directory_iterator(std::string(MTKIT_EXAMPLES_DIR) + "/machines"))
    if (entry.path().extension() == ".json") paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::unique_ptr<MachineConfiguration> bridged(std::filesystem::path const& path) {
  std::ifstream in(path);
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  EXPECT_FALSE(result.isError()) << path;
  if (result.isError()) return nullptr;
  return MachineConfiguration::createFromMachineDefinition(*result.getMachineDefinition(), true);
}

std::vector<Axis const*> rotaries(MachineConfiguration const& c) {
  std::vector<Axis const*> axes;
  for (Axis const* axis : {&c.getAxisU(), &c.getAxisV(), &c.getAxisW()})
    if (axis->isEnabled()) axes.push_back(axis);
  return axes;
}

void expectSameVector(Vector const& a, Vector const& b, double tolerance, std::string const& what) {
  EXPECT_NEAR(a.x, b.x, tolerance) << what;
  EXPECT_NEAR(a.y, b.y, tolerance) << what;
  EXPECT_NEAR(a.z, b.z, tolerance) << what;
}

}  // namespace

TEST(MachineConfigurationExamplesTest, EveryExampleMachineSurvivesTheBridgeAndItsXml) {
  auto const paths = exampleMachines();
  ASSERT_EQ(paths.size(), 5u);
  int solvedMachines = 0;
  for (auto const& path : paths) {
    SCOPED_TRACE(path.filename().string());
    std::unique_ptr<MachineConfiguration> const made = bridged(path);
    ASSERT_TRUE(made);
    // Table axes move the table against their axis letter, so every example
    // is one the configuration supports: X, Y and Z on their own unit vectors.
    EXPECT_EQ(made->getValidityStatus(), 0)
        << Orvo::Messages::wideToUtf8(MachineConfiguration::getStatusDescription(made->getValidityStatus()));
    std::wstring const xml = made->getXML();
    std::unique_ptr<MachineConfiguration> const read(MachineConfiguration::createFromXML(xml));
    ASSERT_TRUE(read);
    // The same text again: nothing the writer writes is lost on reading.
    EXPECT_EQ(Orvo::Messages::wideToUtf8(read->getXML()), Orvo::Messages::wideToUtf8(xml));
    EXPECT_EQ(read->getNumberOfAxes(), made->getNumberOfAxes());

    auto const axes = rotaries(*made);
    ASSERT_EQ(rotaries(*read).size(), axes.size());
    if (axes.size() < 2) continue;
    // Directions the machine reaches: those of random rotary positions
    // inside the axes' ranges (a full turn for an axis without one).
    std::mt19937_64 random(20261125);
    int solved = 0;
    for (int i = 0; i < 1000; ++i) {
      Vector abc;
      for (Axis const* axis : axes) {
        auto const& range = axis->getRange();
        double const low = range.isNonRange() ? -M_PI : range.getInternalMinimum();
        double const high = range.isNonRange() ? M_PI : range.getInternalMaximum();
        double const value = std::uniform_real_distribution<double>(low, high)(random);
        (axis->getCoordinate() == 0 ? abc.x : axis->getCoordinate() == 1 ? abc.y : abc.z) = value;
      }
      Vector const direction = made->getDirection(abc);
      VectorPair const a = made->getABCByDirectionBoth(direction);
      VectorPair const b = read->getABCByDirectionBoth(direction);
      expectSameVector(a.first, b.first, 1e-9, "first solution");
      expectSameVector(a.second, b.second, 1e-9, "second solution");
      // And each points the tool along the direction.
      expectSameVector(read->getDirection(b.first), direction, 1e-9, "direction of the first solution");
      ++solved;
    }
    EXPECT_EQ(solved, 1000);
    ++solvedMachines;
  }
  // The head-head, head-table and trunnion machines and the mill-turn with
  // its B and C.
  EXPECT_EQ(solvedMachines, 4);
}
