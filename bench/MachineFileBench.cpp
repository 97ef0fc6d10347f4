// Reading a machine file with a 2,000-part kinematic tree, against a bare
// JSON parse of the same text. The goal is a read at most 1.5 times the parse.
// A second file holds the same tree, its controller and a feature of every
// other type (tooling, machining time, post properties and settings with
// coolants, additive extruder, limits and platform, multi-axis preferences
// with every option, and an "interactions" body); its goal is at most 1.3
// times the parse.

#include <benchmark/benchmark.h>
#include <json/reader.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "mtkit.h"

namespace {

using namespace machine;

/// A fixed pseudo-random sequence (a 64-bit LCG), so every run reads the same text.
class Sequence {
public:
  std::uint32_t next() {
    m_state = m_state * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<std::uint32_t>(m_state >> 33);
  }
  double real(double lo, double hi) { return lo + (hi - lo) * (next() / 2147483648.0); }

private:
  std::uint64_t m_state = 20261122;
};

std::unique_ptr<PartDefinition> makePart(int i, Sequence& seq) {
  Orvo::MachinePartId const id("part_" + std::to_string(i));
  switch (seq.next() % 5) {
    case 0: {
      auto axis = std::make_unique<LinearAxisDefinition>(
          ControlType::DRIVEN, 0.0, seq.real(-100, 100), Orvo::AxisName("X" + std::to_string(i)), Orvo::AxisValue(0.001),
          Orvo::Vector3D(seq.real(-1, 1), seq.real(-1, 1), 1), Orvo::AxisValue(seq.real(-1000, 0)),
          Orvo::AxisValue(seq.real(0, 1000)));
      return std::make_unique<PartDefinition>(id, PartType::LINEAR, std::nullopt, std::nullopt, std::nullopt,
                                              std::move(axis));
    }
    case 1: {
      auto axis = std::make_unique<LimitedRotaryAxisDefinition>(
          ControlType::DRIVEN, 0.0, 0.0, Orvo::AxisName("A" + std::to_string(i)), Orvo::AxisValue(0.001),
          Orvo::Point3D(seq.real(-100, 100), 0, seq.real(-100, 100)), Orvo::Vector3D(1, 0, 0), Orvo::AxisValue(-120),
          Orvo::AxisValue(30));
      return std::make_unique<PartDefinition>(id, PartType::ROTARY, std::nullopt, std::nullopt, std::nullopt,
                                              std::move(axis));
    }
    case 2: {
      auto part = std::make_unique<PartDefinition>(id, PartType::STATIC);
      part->setDisplayName(DisplayName("Static part " + std::to_string(i)));
      return part;
    }
    case 3: {
      Orvo::EnumBitset<MachineCoolant> coolants;
      coolants.set(MachineCoolant::FLOOD).set(MachineCoolant::THROUGH_TOOL);
      return std::make_unique<PartDefinition>(
          id, PartType::HEAD, Orvo::Frame::make(Orvo::Point3D(0, 0, seq.real(0, 300)), {1, 0, 0}, {0, 0, 1}),
          SpindleDefinition(0.0, 12000.0, 15.0, 120.0, 1200.0, "spindle"),
          ToolStationDefinition(Orvo::Quantity::Distance(250), Orvo::Quantity::Distance(80), coolants,
                                ToolStationInterfaceName("HSK63A")),
          nullptr);
    }
    default:
      return std::make_unique<PartDefinition>(id, PartType::TABLE,
                                              Orvo::Frame::make(Orvo::Point3D(seq.real(-10, 10), 0, 0), {1, 0, 0}, {0, 0, 1}),
                                              std::nullopt, std::nullopt, nullptr);
  }
}

/// The machine file text: general data, a 2,000-part kinematics and a controller.
std::string const& machineFileText() {
  static std::string const text = [] {
    Sequence seq;
    auto kinematics = std::make_unique<KinematicsDefinition>(std::vector<std::unique_ptr<PartDefinition>>{}, MTKIOConverter());
    std::vector<PartDefinition const*> parts;
    for (int i = 0; i < 2000; ++i) {
      PartDefinition const* parent = parts.empty() || seq.next() % 20 == 0 ? nullptr : parts[seq.next() % parts.size()];
      kinematics->attachPart(makePart(i, seq), parent);
      parts.push_back(*kinematics->find(Orvo::MachinePartId("part_" + std::to_string(i))));
    }
    MachineDefinition machine;
    machine.setVendor("Bench");
    machine.setCapability(MachineCapability::MILLING, true);
    machine.putFeature(std::move(kinematics));
    std::ostringstream out;
    MachineDefinitionWriter::write(out, machine);
    return out.str();
  }();
  return text;
}

/// The machine file text with every feature type.
std::string const& everyFeatureText() {
  static std::string const text = [] {
    Sequence seq;
    std::istringstream in(machineFileText());
    auto machine = MachineDefinitionReader().read(in).getMachineDefinition();
    auto const* kinematics = dynamic_cast<KinematicsDefinition const*>(machine->getDefaultFeature("kinematics"));
    // A controller lists the axes, as a machine's does, not the static parts.
    auto controller = MachineUtils::makeDefaultControllerConfiguration(*kinematics);
    for (int i = 0; i < 2000; ++i) {
      Orvo::MachinePartId const id("part_" + std::to_string(i));
      if (!(*kinematics->find(id))->axisDefinition()) controller->removeAxisConfiguration(id);
    }
    machine->putFeature(std::move(controller));
    machine->putFeature(std::make_unique<ToolingCapabilities>("default", Json::Value(Json::objectValue)));
    machine->putFeature(std::make_unique<MachiningTimeInformation>("default", Json::Value(Json::objectValue)));
    auto post = std::make_unique<PostProcessingProperties>();
    post->setPostPath("posts/bench.cps");
    post->setOutputFolder("nc/bench");
    for (int i = 0; i < 200; ++i) post->setProperty("property_" + std::to_string(i), Orvo::Variant(seq.real(0, 1000)));
    machine->putFeature(std::move(post));
    auto settings = std::make_unique<PostSettings>();
    settings->setPostPath("posts/bench.cps");
    for (int i = 0; i < 200; ++i)
      settings->setPostSetting("group_" + std::to_string(i % 20) + ".setting_" + std::to_string(i),
                               Orvo::Variant(static_cast<int>(seq.next() % 1000)), i % 3 != 0);
    for (int i = 0; i < 8; ++i) {
      settings->setPostSetting("coolant.coolants." + std::to_string(i) + ".on", Orvo::Variant("[8, " + std::to_string(i + 10) + "]"), true);
      settings->setPostSetting("coolant.coolants." + std::to_string(i) + ".off", Orvo::Variant(9), true);
    }
    machine->putFeature(std::move(settings));
    auto extruder = std::make_unique<AdditiveExtruderDefinition>();
    extruder->setName("E0");
    extruder->setDiameter(0.4);
    extruder->setOffset(Orvo::Vector3D(0, 20, -5));
    machine->putFeature(std::move(extruder));
    auto limits = std::make_unique<AdditiveLimitsDefinition>();
    limits->setBedTempMax(100);
    limits->setHomePosition(Orvo::Point3D(0, 0, 300));
    machine->putFeature(std::move(limits));
    auto platform = std::make_unique<AdditivePlatformDefinition>();
    platform->setDimensions(AdditivePlatformDimensions{});
    platform->setMeshOptions(AdditivePlatformMeshOptions{});
    machine->putFeature(std::move(platform));
    // In the interactions' own form, so that a build that reads them does.
    Json::Value interactions;
    for (int i = 0; i < 50; ++i) {
      Json::Value pair;
      for (int j : {i, i + 1}) {
        Json::Value solid;
        solid["id"] = "part_" + std::to_string(j);
        solid["type"] = "machine_part";
        pair["solids"].append(solid);
      }
      pair["setting"].append(i % 2 == 0 ? "check_collisions" : "cut_stock");
      interactions["pairs"].append(pair);
    }
    machine->putFeature(std::make_unique<UnknownMachineFeatureDefinition>("interactions", "default", interactions));
    // Every option present, so that each of its word tables is read.
    auto multiaxis = std::make_unique<machine::MultiAxisPreferences>();
    multiaxis->setUseVirtualToolTip(true);
    multiaxis->setSingularity(machine::MultiAxisPreferences::Singularity());
    machine::MultiAxisPreferences::Feedrate feedrate;
    feedrate.setFeedMode(machine::MultiAxisPreferences::Feedrate::FEED_DPM);
    feedrate.setMaximumFeedrate(3600);
    multiaxis->setFeedrateOptions(feedrate);
    multiaxis->setRetractAndReconfigure(machine::MultiAxisPreferences::RetractAndReconfigure());
    machine->putFeature(std::move(multiaxis));
    std::ostringstream out;
    MachineDefinitionWriter::write(out, *machine);
    return out.str();
  }();
  return text;
}

void readBench(benchmark::State& state, std::string const& text) {
  MachineDefinitionReader const reader;
  for (auto _ : state) {
    std::istringstream in(text);
    MachineDefinitionReaderResult result = reader.read(in);
    if (result.isError()) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(result);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void parseBench(benchmark::State& state, std::string const& text) {
  Json::CharReaderBuilder const builder;
  for (auto _ : state) {
    std::istringstream in(text);
    Json::Value root;
    if (!Json::parseFromStream(builder, in, &root, nullptr)) state.SkipWithError("parse failed");
    benchmark::DoNotOptimize(root);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void BM_ReadEveryFeatureFile(benchmark::State& state) { readBench(state, everyFeatureText()); }
BENCHMARK(BM_ReadEveryFeatureFile)->Unit(benchmark::kMillisecond);

void BM_ParseEveryFeatureFileJsonOnly(benchmark::State& state) { parseBench(state, everyFeatureText()); }
BENCHMARK(BM_ParseEveryFeatureFileJsonOnly)->Unit(benchmark::kMillisecond);

void BM_ReadMachineFile(benchmark::State& state) {
  std::string const& text = machineFileText();
  MachineDefinitionReader const reader;
  for (auto _ : state) {
    std::istringstream in(text);
    MachineDefinitionReaderResult result = reader.read(in);
    if (result.isError()) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(result);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ReadMachineFile)->Unit(benchmark::kMillisecond);

void BM_ParseJsonOnly(benchmark::State& state) {
  std::string const& text = machineFileText();
  Json::CharReaderBuilder const builder;
  for (auto _ : state) {
    std::istringstream in(text);
    Json::Value root;
    if (!Json::parseFromStream(builder, in, &root, nullptr)) state.SkipWithError("parse failed");
    benchmark::DoNotOptimize(root);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ParseJsonOnly)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
