#pragma once
// Small kinematic trees built in code for the runtime machine and solver tests.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <optional>
#include <vector>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineDefinitionWriter.h"
#include "machine/machine/PartDefinition.h"

namespace mtkit_test {

using PartPtr = std::unique_ptr<machine::PartDefinition>;

inline PartPtr staticPart(char const* id, machine::PartType type = machine::PartType::STATIC) {
  return std::make_unique<machine::PartDefinition>(Orvo::MachinePartId(id), type);
}

inline PartPtr linearPart(char const* id, char const* name, Orvo::Vector3D direction,
                          machine::ControlType control = machine::ControlType::DRIVEN,
                          std::optional<Orvo::AxisValue> min = std::nullopt,
                          std::optional<Orvo::AxisValue> max = std::nullopt) {
  auto axis = std::make_unique<machine::LinearAxisDefinition>(
      control, 0.0, 0.0, name ? std::optional<Orvo::AxisName>(Orvo::AxisName(name)) : std::nullopt, std::nullopt,
      direction, min, max);
  return std::make_unique<machine::PartDefinition>(Orvo::MachinePartId(id), machine::PartType::LINEAR, std::nullopt,
                                                   std::nullopt, std::nullopt, std::move(axis));
}

inline PartPtr rotaryPart(char const* id, char const* name, Orvo::Point3D point, Orvo::Vector3D direction,
                          machine::ControlType control = machine::ControlType::DRIVEN) {
  auto axis = std::make_unique<machine::InfiniteRotaryAxisDefinition>(
      control, 0.0, 0.0, name ? std::optional<Orvo::AxisName>(Orvo::AxisName(name)) : std::nullopt, std::nullopt,
      point, direction);
  return std::make_unique<machine::PartDefinition>(Orvo::MachinePartId(id), machine::PartType::ROTARY, std::nullopt,
                                                   std::nullopt, std::nullopt, std::move(axis));
}

inline PartPtr limitedRotaryPart(char const* id, char const* name, Orvo::Point3D point, Orvo::Vector3D direction,
                                 double min, double max) {
  auto axis = std::make_unique<machine::LimitedRotaryAxisDefinition>(
      machine::ControlType::DRIVEN, 0.0, 0.0, Orvo::AxisName(name), std::nullopt, point, direction,
      Orvo::AxisValue(min), Orvo::AxisValue(max));
  return std::make_unique<machine::PartDefinition>(Orvo::MachinePartId(id), machine::PartType::ROTARY, std::nullopt,
                                                   std::nullopt, std::nullopt, std::move(axis));
}

inline PartPtr with(PartPtr parent, PartPtr child) {
  parent->addChild(std::move(child));
  return parent;
}

inline Orvo::Frame frameAt(double x, double y, double z) {
  return *Orvo::Frame::make(Orvo::Point3D(x, y, z), Orvo::Vector3D(1, 0, 0), Orvo::Vector3D(0, 0, 1));
}

inline machine::KinematicsDefinition kinematicsOf(std::vector<PartPtr> baseParts) {
  return machine::KinematicsDefinition(std::move(baseParts), machine::MTKIOConverter());
}

/// base - x - y - z - head and base - table; axes X, Y, Z along the world
/// axes, identity frames everywhere.
inline machine::KinematicsDefinition threeAxisKinematics() {
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}),
                      with(linearPart("y", "Y", {0, 1, 0}),
                           with(linearPart("z", "Z", {0, 0, 1}), staticPart("head", machine::PartType::HEAD)))));
  base.push_back(staticPart("table", machine::PartType::TABLE));
  return kinematicsOf(std::move(base));
}

/// base - x - y - head and base - table: the tip moves in the plane z = 0.
inline machine::KinematicsDefinition twoAxisKinematics(Orvo::Vector3D secondDirection = {0, 1, 0}) {
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}),
                      with(linearPart("y", "Y", secondDirection), staticPart("head", machine::PartType::HEAD))));
  base.push_back(staticPart("table", machine::PartType::TABLE));
  return kinematicsOf(std::move(base));
}

/// A head-table 5-axis machine: X, Y, Z carry a B head (about Y through
/// (0, 0, 150)) whose head attaches 200 below the pivot; a C table turns
/// about Z with the table on it. The head's attach frame is offset from the
/// B part's frame, and the table's from C's.
inline machine::KinematicsDefinition fiveAxisKinematics() {
  auto b = rotaryPart("b", "B", {0, 0, 150}, {0, 1, 0});
  b->setAttachFrame(frameAt(0, 0, -50));
  auto head = staticPart("head", machine::PartType::HEAD);
  head->setAttachFrame(frameAt(0, 0, 10));
  b->addChild(std::move(head));
  auto c = rotaryPart("c", "C", {0, 0, 0}, {0, 0, 1});
  auto table = staticPart("table", machine::PartType::TABLE);
  table->setAttachFrame(frameAt(20, 10, 5));
  c->addChild(std::move(table));
  auto z = linearPart("z", "Z", {0, 0, 1});
  z->setAttachFrame(frameAt(0, 0, 100));
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("x", "X", {1, 0, 0}), with(linearPart("y", "Y", {0, 1, 0}), with(std::move(z), std::move(b)))));
  base.push_back(std::move(c));
  return kinematicsOf(std::move(base));
}

/// Writes a machine file with the kinematics alone to the temporary
/// directory and returns its path. The file keeps attach frames of head and
/// table parts only, as every machine file does.
inline std::string writeMachineFile(std::string const& name, machine::KinematicsDefinition const& kinematics) {
  machine::MachineDefinition::FeatureVector features;
  features.push_back(kinematics.clone());
  machine::MachineDefinition const definition(machine::MachineGeneralDefinition(), std::move(features), {});
  std::filesystem::path const path =
      std::filesystem::temp_directory_path() / (name + "_" + std::to_string(::getpid()) + ".json");
  std::ofstream out(path, std::ios::binary);
  machine::MachineDefinitionWriter::write(out, definition);
  return path.string();
}

}  // namespace mtkit_test
