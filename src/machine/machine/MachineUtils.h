#pragma once
// Helpers that join a kinematics definition and its controller settings.

#include <memory>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"

namespace machine {

class MachineUtils {
public:
  /// A default axis configuration for every part, feature id "default", and
  /// the head and table found in the kinematics.
  static std::unique_ptr<ControllerConfiguration> makeDefaultControllerConfiguration(
      KinematicsDefinition const& kinematics);
  /// Fills in the head and table ids the configuration leaves unset.
  static void setKinematicsChainForControllerConfiguration(KinematicsDefinition const& kinematics,
                                                           ControllerConfiguration& configuration);
};

}  // namespace machine
