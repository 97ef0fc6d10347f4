#pragma once
// Checks the round-trip fuzz harnesses share.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/DefinitionCheck.h"
#include "machine/machine/DescendantRange.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/Machine.h"
#include "machine/machine/Part.h"
#include "machine/machine/PartDefinition.h"
#include "util/utility/Messages.h"

namespace fuzz_support {

/// Strict UTF-8. The JSON writer re-encodes malformed sequences, so only a
/// well-formed input can be expected to come back byte for byte.
inline bool isValidUtf8(std::uint8_t const* data, std::size_t size) {
  return Orvo::Messages::isValidUtf8(std::string_view(reinterpret_cast<char const*>(data), size));
}

/// Whether the model can be written and read back. A zero or non-finite
/// "direction" is read as the formats allow, but has no unit vector: the
/// model holds NaN, which writes as null. The library's check names it.
inline bool writesBack(machine::KinematicsDefinition const& kinematics) {
  for (machine::DefinitionCheck::Problem const& problem : machine::DefinitionCheck::check(kinematics))
    if (problem.kind == machine::DefinitionCheck::Kind::DIRECTION) return false;
  return true;
}

inline bool isFinite(Orvo::Frame const& frame) {
  for (Orvo::Vector3D const v : {Orvo::Vector3D(frame.origin().x, frame.origin().y, frame.origin().z), frame.xAxis(),
                                 frame.zAxis()})
    if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) return false;
  return true;
}

/// What the check promises: a kinematics it passes gives finite forward
/// kinematics with every axis anywhere within the check's bound. Aborts when
/// it does not. The first head and the first table are the machine's.
inline void checkForwardKinematicsIsFinite(machine::KinematicsDefinition const& kinematics) {
  if (!machine::DefinitionCheck::isUsable(kinematics)) return;
  machine::ControllerConfiguration configuration;
  machine::DescendantRange const all = kinematics.allParts();
  for (machine::PartDefinition const& part : all) {
    if (part.type() == machine::PartType::HEAD && !configuration.headInfoPartId())
      configuration.setHeadInfoPartId(part.id());
    if (part.type() == machine::PartType::TABLE && !configuration.tablePartId())
      configuration.setTablePartId(part.id());
  }
  machine::Machine machine(kinematics, configuration);
  double const reach = machine::DefinitionCheck::kMaximumMagnitude;
  for (double const position : {0.0, reach, -reach, 12345.678}) {
    for (int i = 0; i < machine.numOrderedParts(); ++i) machine.moveAxis(machine.orderedPart(i), position);
    if (!isFinite(machine.headAttachFrame()) || !isFinite(machine.tableAttachFrame())) std::abort();
    for (machine::Part const* part : machine.allParts()) {
      Orvo::Transform3D const t = part->transform3DFromBase();
      for (Orvo::Vector3D const v : {t.rotation().column(0), t.rotation().column(1), t.rotation().column(2),
                                     t.translation()})
        if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) std::abort();
    }
  }
}

}  // namespace fuzz_support
