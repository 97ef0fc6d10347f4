#pragma once
// The pair of definitions a Machine is made from: a kinematics definition and
// a controller configuration completed for it, with the live tool flag.

#include <memory>
#include <optional>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/PartDefinition.h"

namespace machine {

class MachineSpecification {
public:
  /// Deep copies. A given configuration is completed with the head and table
  /// of the kinematics where it names none; without one a default is made.
  MachineSpecification(KinematicsDefinition const& kinematics, ControllerConfiguration const* configuration,
                       bool liveTool);
  /// Deep copies through the features' clone(); the source keeps its
  /// definitions.
  MachineSpecification(MachineSpecification const&& other);
  MachineSpecification& operator=(MachineSpecification const&& other);
  ~MachineSpecification();

  /// The default "kinematics" feature with the default "controller" feature
  /// (or none); empty when the definition has no kinematics.
  static std::optional<MachineSpecification> makeDefaultForDefinition(MachineDefinition const& definition,
                                                                      bool liveTool);

  KinematicsDefinition const* kinematicsDefinition() const;
  ControllerConfiguration const* controllerConfiguration() const;
  bool liveTool() const noexcept { return m_liveTool; }
  /// The part the tool is measured from: the head the configuration names,
  /// or on a turret its head with the lowest trailing number; null if none.
  /// Throws std::bad_optional_access when the head id is unset or unknown,
  /// and std::out_of_range ("stoi argument out of range") for a trailing
  /// number too large for an int.
  PartDefinition const* toolFramePart() const;

private:
  std::unique_ptr<KinematicsDefinition> m_kinematicsDefinition;
  std::unique_ptr<ControllerConfiguration> m_controllerConfiguration;
  bool m_liveTool;
};

}  // namespace machine
