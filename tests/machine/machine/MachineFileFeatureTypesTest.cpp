// The machine file reader with the tooling, machining time, post and additive
// feature types: each is read by its own class, the multi-axis type is still
// kept unread, and random values of every type survive a write and a read.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

#include "machine/machine/AdditiveExtruderDefinition.h"
#include "machine/machine/AdditiveLimitsDefinition.h"
#include "machine/machine/AdditivePlatformDefinition.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineDefinitionWriter.h"
#include "machine/machine/MachiningTimeInformation.h"
#include "machine/machine/MultiAxisPreferences.h"
#include "machine/machine/PostProcessingProperties.h"
#include "machine/machine/PostSettings.h"
#include "machine/machine/ToolingCapabilities.h"
#include "machine/machine/UnknownMachineFeatureDefinition.h"
#include "support/JsonText.h"
#include "support/SameJson.h"

using machine::MachineDefinition;
using mtkit_test::sameJson;

namespace {

std::unique_ptr<MachineDefinition> read(std::string const& text, std::string* error = nullptr) {
  std::istringstream in(text);
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) {
    if (error)
      *error = result.getReadErrorMessage();
    else
      ADD_FAILURE() << result.getReadErrorMessage();
    return nullptr;
  }
  return result.getMachineDefinition();
}

std::string write(MachineDefinition const& m) {
  std::ostringstream out;
  EXPECT_FALSE(machine::MachineDefinitionWriter::write(out, m).isError());
  return out.str();
}

template <typename T>
T const* featureAs(MachineDefinition const& m, char const* type) {
  return dynamic_cast<T const*>(m.getFeature(type, "default"));
}

/// Values from raw std::mt19937 output, whose sequence the standard fixes.
class Random {
public:
  explicit Random(std::uint32_t seed) : m_engine(seed) {}
  double real(double lo, double hi) { return lo + (hi - lo) * (static_cast<double>(m_engine()) / 4294967295.0); }
  bool chance(double p) { return real(0, 1) < p; }
  // The span is taken in 64 bits: hi - lo + 1 overflows an int for (0, INT_MAX).
  int integer(int lo, int hi) {
    auto const span = static_cast<std::uint64_t>(static_cast<std::int64_t>(hi) - lo + 1);
    return static_cast<int>(lo + static_cast<std::int64_t>(m_engine() % span));
  }
  std::string word() {
    static char const* const words[] = {"flood", "mist", "M8", "tool", "x y", "g\xc3\xbc" "n", "", "12a", "path/to"};
    return words[m_engine() % (sizeof words / sizeof words[0])];
  }
  Orvo::Variant scalar() {
    switch (m_engine() % 4) {
      case 0: return Orvo::Variant(chance(0.5));
      case 1: return Orvo::Variant(integer(-100000, 100000));
      case 2: return Orvo::Variant(real(-1e6, 1e6));
      default: return Orvo::Variant(word());
    }
  }

private:
  std::mt19937 m_engine;
};

/// A definition holding one feature of each new type with random values.
std::unique_ptr<MachineDefinition> randomDefinition(std::uint32_t seed) {
  Random r(seed);
  auto definition = std::make_unique<MachineDefinition>();
  MachineDefinition& m = *definition;

  auto tooling = std::make_unique<machine::ToolingCapabilities>();
  tooling->setHasToolChanger(r.chance(0.5));
  tooling->setSupportsToolPreload(r.chance(0.5));
  // Within int range: a larger count is written but no longer reads.
  tooling->setNumberOfTools(static_cast<std::uint32_t>(r.integer(0, 2147483647)));
  m.putFeature(std::move(tooling));

  auto machining = std::make_unique<machine::MachiningTimeInformation>();
  machining->setFeedrateRatio(r.real(0, 3));
  machining->setToolChangeTime(r.real(0, 60));
  m.putFeature(std::move(machining));

  auto extruder = std::make_unique<machine::AdditiveExtruderDefinition>();
  if (r.chance(0.7)) extruder->setName(r.word());
  if (r.chance(0.7)) extruder->setDiameter(r.real(0.1, 1));
  if (r.chance(0.7)) extruder->setFilamentDiameter(r.real(1, 3));
  extruder->setFanEnabled(r.chance(0.5));
  if (r.chance(0.7)) extruder->setMaxVolPerSec(r.real(0, 50));
  if (r.chance(0.7)) extruder->setMaxTemp(r.real(150, 400));
  if (r.chance(0.7)) extruder->setOffset(Orvo::Vector3D(r.real(-50, 50), r.real(-50, 50), r.real(-50, 50)));
  m.putFeature(std::move(extruder));

  auto limits = std::make_unique<machine::AdditiveLimitsDefinition>();
  if (r.chance(0.7)) limits->setBedTempMax(r.real(0, 150));
  if (r.chance(0.7)) limits->setSpeedXYMax(r.real(0, 500));
  if (r.chance(0.7)) limits->setSpeedZMax(r.real(0, 50));
  if (r.chance(0.7)) limits->setAccelerationXYMax(r.real(0, 10000));
  if (r.chance(0.7)) limits->setAccelerationZMax(r.real(0, 1000));
  if (r.chance(0.7)) limits->setHomePosition(Orvo::Point3D(r.real(-300, 300), r.real(-300, 300), r.real(0, 300)));
  if (r.chance(0.7)) limits->setParkPosition(Orvo::Point3D(r.real(-300, 300), r.real(-300, 300), r.real(0, 300)));
  m.putFeature(std::move(limits));

  auto platform = std::make_unique<machine::AdditivePlatformDefinition>();
  if (r.chance(0.7)) {
    machine::AdditivePlatformDimensions d;
    d.size = Orvo::Vector3D(r.real(0, 500), r.real(0, 500), r.real(0, 500));
    d.origin = Orvo::Point3D(r.real(-250, 0), r.real(-250, 0), 0);
    d.clearance = r.real(0, 10);
    d.frameWidth = r.real(0, 10);
    d.ceilingClearance = r.real(0, 10);
    d.cornerRadius = r.real(0, 10);
    platform->setDimensions(d);
  }
  if (r.chance(0.7)) {
    machine::AdditivePlatformMeshOptions o;
    o.positioning = r.chance(0.5);
    o.scaling = r.chance(0.5);
    o.mesh = r.word();
    o.model = r.word();
    o.noBuildZoneMesh = r.word();
    o.noBuildZoneModel = r.word();
    platform->setMeshOptions(o);
  }
  m.putFeature(std::move(platform));

  auto post = std::make_unique<machine::PostProcessingProperties>();
  post->setPostPath("posts/" + r.word() + ".cps");
  if (r.chance(0.7)) post->setOutputFolder("out/" + r.word());
  for (int i = r.integer(0, 6); i > 0; --i) post->setProperty("property" + std::to_string(r.integer(0, 20)), r.scalar());
  m.putFeature(std::move(post));

  auto settings = std::make_unique<machine::PostSettings>();
  settings->setPostPath("posts/" + r.word() + ".cps");
  // Leaves two levels deep, so that no setting is the branch of another.
  for (int i = r.integer(0, 8); i > 0; --i)
    settings->setPostSetting("group" + std::to_string(r.integer(0, 3)) + ".setting" + std::to_string(r.integer(0, 5)),
                             r.scalar(), r.chance(0.5));
  // Coolants 0 and 1 always, so that none is lost to the order of writing;
  // values as they read back: integers, bracketed lists, words.
  for (int id = 0, last = r.integer(1, 4); id <= last; ++id) {
    for (char const* side : {".on", ".off"}) {
      Orvo::Variant value;
      switch (r.integer(0, 2)) {
        case 0: value = Orvo::Variant(r.integer(0, 99)); break;
        case 1: value = Orvo::Variant("[" + std::to_string(r.integer(0, 9)) + ", " + std::to_string(r.integer(10, 99)) + "]"); break;
        default: value = Orvo::Variant("M" + std::to_string(r.integer(0, 9)) + " coolant"); break;
      }
      settings->setPostSetting("coolant.coolants." + std::to_string(id) + side, value, r.chance(0.5));
    }
  }
  m.putFeature(std::move(settings));
  return definition;
}

}  // namespace

TEST(MachineFileFeatureTypes, EachNewTypeIsReadByItsOwnClassAndOthersStayUnknown) {
  auto const m = read(R"({
    "additive_extruder": {"default": {"name": "E0"}}, "limits": {"default": {}}, "platform": {"default": {}},
    "machining": {"default": {}}, "post": {"default": {}}, "post_settings": {"default": {}}, "tooling": {"default": {}},
    "multiaxis": {"default": {"anything": 1}}, "gadgets": {"default": {"anything": 1}}})");
  ASSERT_NE(m, nullptr);
  EXPECT_NE(featureAs<machine::AdditiveExtruderDefinition>(*m, "additive_extruder"), nullptr);
  EXPECT_NE(featureAs<machine::AdditiveLimitsDefinition>(*m, "limits"), nullptr);
  EXPECT_NE(featureAs<machine::AdditivePlatformDefinition>(*m, "platform"), nullptr);
  EXPECT_NE(featureAs<machine::MachiningTimeInformation>(*m, "machining"), nullptr);
  EXPECT_NE(featureAs<machine::PostProcessingProperties>(*m, "post"), nullptr);
  EXPECT_NE(featureAs<machine::PostSettings>(*m, "post_settings"), nullptr);
  EXPECT_NE(featureAs<machine::ToolingCapabilities>(*m, "tooling"), nullptr);
  EXPECT_NE(featureAs<machine::MultiAxisPreferences>(*m, "multiaxis"), nullptr);
  EXPECT_NE(featureAs<machine::UnknownMachineFeatureDefinition>(*m, "gadgets"), nullptr);
  EXPECT_EQ(featureAs<machine::AdditiveExtruderDefinition>(*m, "additive_extruder")->name(), "E0");
}

TEST(MachineFileFeatureTypes, FeatureFailuresEndTheReadWithTheirText) {
  std::string error;
  EXPECT_EQ(read(R"({"platform": {"default": {"dimensions": {"origin": [1]}}}})", &error), nullptr);
  EXPECT_EQ(error, "Error reading Machine Definition data from machine file:\n\nExpected a 3D vector.");
  EXPECT_EQ(read(R"({"post_settings": {"default": {"path": "p", "settings_version": 1, "settings": {"a": 1}}}})", &error),
            nullptr);
  EXPECT_EQ(read(R"({"tooling": {"default": {"number_of_tools": "many"}}})", &error), nullptr);
  EXPECT_EQ(read(R"({"limits": {"default": 5}})", &error), nullptr);
}

TEST(MachineFileFeatureTypes, DefaultsOfTheNewTypesChooseBetweenIds) {
  auto const m = read(R"({"defaults": {"tooling": "small"},
    "tooling": {"large": {"number_of_tools": 120}, "small": {"number_of_tools": 12}}})");
  ASSERT_NE(m, nullptr);
  auto const* tooling = dynamic_cast<machine::ToolingCapabilities const*>(m->getDefaultFeature("tooling"));
  ASSERT_NE(tooling, nullptr);
  EXPECT_EQ(tooling->numberOfTools(), 12u);
}

TEST(MachineFileFeatureTypes, RandomFeatureValuesRoundTripWithFixedSeeds) {
  for (std::uint32_t seed : {1u, 7u, 42u, 2024u, 31337u, 99991u}) {
    SCOPED_TRACE(seed);
    auto const originalPointer = randomDefinition(seed);
    MachineDefinition const& original = *originalPointer;
    auto const back = read(write(original));
    ASSERT_NE(back, nullptr);
    ASSERT_EQ(back->getFeatures().size(), original.getFeatures().size());
    for (auto const& feature : original.getFeatures()) {
      auto const* other = back->getFeature(feature.featureTypeId(), feature.featureId());
      ASSERT_NE(other, nullptr) << feature.featureTypeId();
      EXPECT_EQ(typeid(*other), typeid(feature)) << feature.featureTypeId();
      EXPECT_TRUE(sameJson(other->getPersistData(), feature.getPersistData())) << feature.featureTypeId();
    }
    auto const* settings = dynamic_cast<machine::PostSettings const*>(back->getFeature("post_settings", "default"));
    auto const* source = dynamic_cast<machine::PostSettings const*>(original.getFeature("post_settings", "default"));
    ASSERT_NE(settings, nullptr);
    EXPECT_EQ(settings->settings(), source->settings());
    auto const* post = dynamic_cast<machine::PostProcessingProperties const*>(back->getFeature("post", "default"));
    auto const* postSource = dynamic_cast<machine::PostProcessingProperties const*>(original.getFeature("post", "default"));
    EXPECT_EQ(post->properties(), postSource->properties());
    EXPECT_EQ(write(*back), write(original));
  }
}

TEST(MachineFileFeatureTypes, EveryExampleMachineReadsAndWritesBackEqual) {
  std::vector<std::filesystem::path> files;
  for (auto const& entry : std::filesystem::directory_iterator(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines"))
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  ASSERT_GE(files.size(), 5u);
  int withPlatform = 0;
  for (auto const& file : files) {
    SCOPED_TRACE(file.filename().string());
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    auto const m = read(text.str());
    ASSERT_NE(m, nullptr);
    for (char const* type : {"tooling", "machining", "post_settings"})
      EXPECT_NE(m->getFeature(type, "default"), nullptr) << type;
    auto const* settings = dynamic_cast<machine::PostSettings const*>(m->getFeature("post_settings", "default"));
    ASSERT_NE(settings, nullptr);
    EXPECT_FALSE(settings->getPostSetting("coolant.coolants.1.on").value.isEmpty());
    if (m->getFeature("platform", "default")) ++withPlatform;
    Json::Value const written = mtkit_test::parseJson(write(*m));
    Json::Value const original = mtkit_test::parseJson(text.str());
    EXPECT_EQ(written.getMemberNames(), original.getMemberNames());
    for (auto const& key : original.getMemberNames()) EXPECT_TRUE(sameJson(written[key], original[key])) << key;
  }
  EXPECT_EQ(withPlatform, 1);
}
