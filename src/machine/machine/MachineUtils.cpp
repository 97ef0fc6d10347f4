#include "machine/machine/MachineUtils.h"

#include <map>

namespace machine {

std::unique_ptr<ControllerConfiguration> MachineUtils::makeDefaultControllerConfiguration(
    KinematicsDefinition const& kinematics) {
  ControllerConfiguration::AxisConfigurationMap configurations;
  for (PartDefinition const& part : kinematics.allParts())
    configurations[part.identifier()] = std::make_unique<AxisConfiguration>();
  auto configuration = std::make_unique<ControllerConfiguration>(std::move(configurations), "default");
  setKinematicsChainForControllerConfiguration(kinematics, *configuration);
  return configuration;
}

void MachineUtils::setKinematicsChainForControllerConfiguration(KinematicsDefinition const& kinematics,
                                                                ControllerConfiguration& configuration) {
  if (!configuration.headInfoPartId()) {
    for (PartDefinition const& part : kinematics.allParts()) {
      if (part.type() != PartType::HEAD) continue;
      PartDefinition const* const parent = part.parent();
      configuration.setHeadInfoPartId(parent && parent->isTurretPart() ? parent->identifier() : part.identifier());
      break;
    }
  }
  if (!configuration.tablePartId()) {
    for (PartDefinition const& part : kinematics.allParts()) {
      if (part.type() != PartType::TABLE) continue;
      configuration.setTablePartId(part.identifier());
      break;
    }
  }
}

}  // namespace machine
