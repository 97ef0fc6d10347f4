#pragma once
// Random kinematic trees for round-trip tests, from a fixed seed so that a
// failure repeats. Values come from raw std::mt19937 output (whose sequence
// the standard fixes), not from distributions (whose results it doesn't).

#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"

namespace mtkit_test {

class RandomTree {
public:
  explicit RandomTree(std::uint32_t seed) : m_engine(seed) {}

  /// A definition with `partCount` parts hung at random places.
  std::unique_ptr<machine::KinematicsDefinition> make(int partCount) {
    machine::MTKIOConverter const converter(chance(0.3) ? machine::Handedness::LEFT_HANDED
                                                         : machine::Handedness::RIGHT_HANDED);
    auto k = std::make_unique<machine::KinematicsDefinition>(std::vector<std::unique_ptr<machine::PartDefinition>>{},
                                                             converter);
    std::vector<Orvo::MachinePartId> ids;
    for (int i = 0; i < partCount; ++i) {
      machine::PartDefinition const* parent = nullptr;
      if (!ids.empty() && !chance(0.15)) parent = *k->find(ids[index(ids.size())]);
      Orvo::MachinePartId const id("part_" + std::to_string(i));
      k->attachPart(makePart(id), parent);
      ids.push_back(id);
    }
    return k;
  }

  double real(double lo, double hi) { return lo + (hi - lo) * (static_cast<double>(m_engine()) / 4294967295.0); }
  bool chance(double p) { return real(0, 1) < p; }
  std::size_t index(std::size_t n) { return static_cast<std::size_t>(m_engine() % n); }

private:
  Orvo::Vector3D direction() {
    for (;;) {
      Orvo::Vector3D const v(real(-1, 1), real(-1, 1), real(-1, 1));
      if (std::sqrt(Orvo::Vector3D::dot(v, v)) > 0.1) return v;
    }
  }
  Orvo::Point3D point() { return Orvo::Point3D(real(-500, 500), real(-500, 500), real(-500, 500)); }
  template <typename T>
  std::optional<T> maybe(T value, double p = 0.5) {
    return chance(p) ? std::optional<T>(value) : std::nullopt;
  }

  std::unique_ptr<machine::PartDefinition> makePart(Orvo::MachinePartId const& id) {
    using machine::PartType;
    PartType const types[] = {PartType::LINEAR, PartType::ROTARY, PartType::STATIC, PartType::HEAD, PartType::TABLE};
    PartType const type = types[index(5)];
    auto const control = static_cast<machine::ControlType>(index(6));
    std::optional<Orvo::AxisName> const name = maybe(Orvo::AxisName(std::string(1, static_cast<char>('A' + index(26)))));
    std::optional<Orvo::AxisValue> const step = maybe(Orvo::AxisValue(real(0.0001, 1)));
    Orvo::AxisValue const home = chance(0.5) ? Orvo::AxisValue(real(-100, 100)) : Orvo::AxisValue(0.0);
    Orvo::AxisValue const asModelled = chance(0.3) ? Orvo::AxisValue(real(-100, 100)) : Orvo::AxisValue(0.0);
    std::unique_ptr<machine::AxisDefinition> axis;
    if (type == PartType::LINEAR) {
      double const lo = real(-1000, 0);
      axis = std::make_unique<machine::LinearAxisDefinition>(control, asModelled, home, name, step, direction(),
                                                             maybe(Orvo::AxisValue(lo)),
                                                             maybe(Orvo::AxisValue(lo + real(1, 2000))));
    } else if (type == PartType::ROTARY) {
      std::unique_ptr<machine::RotaryAxisDefinition> rotary;
      if (chance(0.5))
        rotary = std::make_unique<machine::LimitedRotaryAxisDefinition>(control, asModelled, home, name, step, point(),
                                                                        direction(), real(-360, 0), real(0, 360));
      else
        rotary = std::make_unique<machine::InfiniteRotaryAxisDefinition>(control, asModelled, home, name, step, point(),
                                                                         direction());
      rotary->setOffset(maybe(point(), 0.3));
      axis = std::move(rotary);
    }
    if (axis) axis->setDefaultToolChangePosition(maybe(Orvo::AxisValue(real(-50, 50)), 0.3));

    std::optional<Orvo::Frame> frame;
    if (type == PartType::HEAD || type == PartType::TABLE) frame = Orvo::Frame::make(point(), direction(), direction());
    std::optional<machine::SpindleDefinition> spindle;
    if (chance(0.3)) {
      double const lo = real(0, 1000), hi = lo + real(0, 20000);
      spindle = machine::SpindleDefinition(maybe(lo), maybe(hi), maybe(real(0, 50)), maybe(real(0, 500)),
                                           maybe(real(lo, hi)), chance(0.5) ? "spindle " + id.id() : "");
    }
    std::optional<machine::ToolStationDefinition> station;
    if (chance(0.3)) {
      Orvo::EnumBitset<machine::MachineCoolant> coolants;
      for (int c = 0; c < 8; ++c)
        if (chance(0.3)) coolants.set(static_cast<machine::MachineCoolant>(c));
      station = machine::ToolStationDefinition(maybe(Orvo::Quantity::Distance(real(0, 500))),
                                               maybe(Orvo::Quantity::Distance(real(0, 200))), coolants,
                                               maybe(machine::ToolStationInterfaceName("HSK" + std::to_string(index(100)))));
    }
    auto part = std::make_unique<machine::PartDefinition>(id, type, frame, spindle, station, std::move(axis));
    if (chance(0.3)) part->setDisplayName(machine::DisplayName("Part \"" + id.id() + "\" \xc3\xa9"));
    if (chance(0.2)) part->setTurretDefinition(machine::TurretDefinition(static_cast<unsigned>(index(24))));
    return part;
  }

  std::mt19937 m_engine;
};

}  // namespace mtkit_test
