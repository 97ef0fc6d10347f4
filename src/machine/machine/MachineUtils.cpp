#include "machine/machine/MachineUtils.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/Machine.h"
#include "machine/machine/Part.h"
#include "util/utility/Basic.h"
#include "util/utility/math/Transform3D.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MachineUtils";
}

namespace machine {

std::unique_ptr<ControllerConfiguration> MachineUtils::makeDefaultControllerConfiguration(
    KinematicsDefinition const& kinematics) {
  ControllerConfiguration::AxisConfigurationMap axisConfigurations;
  // Static parts get an entry too; a repeated identifier keeps the last one.
  for (PartDefinition const& part : kinematics.allParts())
    axisConfigurations[part.identifier()] = std::make_unique<AxisConfiguration>();
  auto configuration =
      std::make_unique<ControllerConfiguration>(std::move(axisConfigurations), MachineFeatureDefinition::defaultId);
  setKinematicsChainForControllerConfiguration(kinematics, *configuration);
  return configuration;
}

void MachineUtils::setKinematicsChainForControllerConfiguration(KinematicsDefinition const& kinematics,
                                                                ControllerConfiguration& configuration) {
  DescendantRange const parts = kinematics.allParts();
  if (!configuration.headInfoPartId()) {
    for (PartDefinition const& part : parts) {
      if (part.type() != PartType::HEAD) continue;
      // A head on a turret is reached through the turret, which selects the
      // station that carries the tool.
      PartDefinition const* parent = part.parent();
      configuration.setHeadInfoPartId(parent && parent->isTurretPart() ? parent->identifier() : part.identifier());
      break;
    }
  }
  if (!configuration.tablePartId()) {
    for (PartDefinition const& part : parts) {
      if (part.type() != PartType::TABLE) continue;
      configuration.setTablePartId(part.identifier());
      break;
    }
  }
}

ControllerConfiguration const* MachineUtils::getControllerConfiguration(MachineDefinition const& definition,
                                                                        std::string const& headPartId,
                                                                        std::string const& tablePartId) {
  for (MachineFeatureDefinition const& feature : definition.getFeatures()) {
    auto const* configuration = dynamic_cast<ControllerConfiguration const*>(&feature);
    if (!configuration) continue;
    auto const head = configuration->headInfoPartId();
    auto const table = configuration->tablePartId();
    if (head && table && head->id() == headPartId && table->id() == tablePartId) return configuration;
  }
  return nullptr;
}

bool MachineUtils::isTurningSpindlePart(PartDefinition const* partDefinition, char const* name) {
  EXPECTS(partDefinition);
  // The assertion only reports; a null part is no spindle rather than a crash.
  if (!partDefinition) return false;
  if (partDefinition->type() != PartType::TABLE || !partDefinition->spindleDefinition()) return false;
  // A null name counts as the empty one, found everywhere.
  return partDefinition->identifier().id().find(name ? name : "") != std::string::npos;
}

bool MachineUtils::isPrimarySpindlePart(PartDefinition const* partDefinition) {
  return isTurningSpindlePart(partDefinition, primarySpindleId);
}

bool MachineUtils::isSecondarySpindlePart(PartDefinition const* partDefinition) {
  return isTurningSpindlePart(partDefinition, secondarySpindleId);
}

Orvo::AxisOrdering MachineUtils::chainFirstOrdering(Machine const& machine) {
  std::vector<Orvo::MachinePartId> onChains;
  auto const collect = [&](Part const& part) { onChains.push_back(part.definition()->identifier()); };
  Part::visitChainToBase(machine.headPart(), collect);
  Part::visitChainToBase(machine.tablePart(), collect);
  Orvo::AxisOrdering const full = machine.fullOrdering();
  Orvo::AxisOrdering ordering;
  for (bool const wanted : {true, false})
    for (int i = 0; i < full.size(); ++i) {
      bool const on = std::find(onChains.begin(), onChains.end(), full.machinePartId(i)) != onChains.end();
      if (on == wanted) ordering.append(full.axisInfo(i));
    }
  return ordering;
}

std::optional<Orvo::AxisValueRange> MachineUtils::travelOf(Part const& part) {
  std::optional<Axis> const& axis = part.axis();
  if (!axis || axis->isCyclic()) return std::nullopt;
  Orvo::AxisValueRange const range = axis->range();
  if (range.isInfinite()) return std::nullopt;
  return range;
}

Orvo::Frame MachineUtils::headFrameInTable(Machine const& machine) {
  return Orvo::Frame(Orvo::IdentityTag{})
      .transformedBy(Orvo::coordinateTransform3D(machine.headAttachFrame(), machine.tableAttachFrame()));
}

Orvo::Frame MachineUtils::toolReferenceFrame(double length) {
  return *Orvo::Frame::make(Orvo::Point3D(0, 0, length), Orvo::Vector3D(1, 0, 0), Orvo::Vector3D(0, 0, 1));
}

}  // namespace machine
